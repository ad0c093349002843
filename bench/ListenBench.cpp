// SPDX-License-Identifier: GPL-3.0-or-later
// From the Listen button pressed to the first tone heard at the sound server's sink (goal: at
// most 30 ms), and from the straight key's Enter released to its tone (goal: at most 20 ms),
// against the baseline of the same run: a tone written to an output that is already open.
// Needs a server with a null sink named "nullsink" (scripts/bench starts one); runs offscreen
// on a throw-away profile; prints figures, asserts nothing.
#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "SinkRecorder.h"
#include "app/CMainFrame.h"
#include "app/CModalSeam.h"
#include "app/CTonwerkView.h"
#include "audio/CPomelSyncPlay.h"
#include "profile/CQtProfile.h"

namespace {

constexpr int kRuns = 10;
constexpr double kDitSeconds = 0.1;

double NowNs() {
    return static_cast<double>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                   std::chrono::steady_clock::now().time_since_epoch())
                                   .count());
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Milliseconds from each moment to the first tone heard after it.
std::vector<double> Delays(const SinkRecorder& recorder, const std::vector<double>& momentsNs,
                           const std::vector<HeardTone>& tones) {
    std::vector<double> delays;
    for (const double moment : momentsNs) {
        for (const HeardTone& tone : tones) {
            const double heardNs = recorder.AnchorNs() + tone.startMs * 1e6;
            if (heardNs >= moment) {
                delays.push_back((heardNs - moment) / 1e6);
                break;
            }
        }
    }
    return delays;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir profileDir;
    CQtProfile profile(profileDir.filePath(QStringLiteral("bench.conf")));
    CModalSeam::SetScripted(true);  // the MIDI notice must not wait for a click
    CMainFrame frame(profile);

    SinkRecorder recorder;
    if (!recorder.Running()) {
        std::fprintf(stderr, "no recording from nullsink.monitor: is the sound server up?\n");
        return 1;
    }

    // Baseline: a tone written to an output opened beforehand.
    std::vector<double> writes;
    {
        CPomelSyncPlay player;
        player.OpenDevice();
        for (int i = 0; i < kRuns; ++i) {
            writes.push_back(NowNs());
            player.PlayTone(700.0, kDitSeconds);
            QTest::qWait(200);
        }
        player.CloseDevice();
    }

    // Listen on one E, one session after the other.
    auto* practice = qobject_cast<QTextEdit*>(frame.View()->Control(1002));
    auto* listen = qobject_cast<QAbstractButton*>(frame.View()->Control(1005));
    practice->setPlainText(QStringLiteral("E"));
    std::vector<double> presses;
    for (int i = 0; i < kRuns; ++i) {
        presses.push_back(NowNs());
        listen->click();
        if (!QTest::qWaitFor([listen] { return listen->text() == QLatin1String("&Listen"); },
                             5000)) {
            std::printf("a session did not end\n");
            return 1;
        }
        QTest::qWait(200);
    }

    // The straight key: Enter held 100 ms on the focused lamp, then released.
    QWidget* lamp = frame.View()->Control(1000);
    lamp->setFocus();
    const auto sendEnter = [lamp](QEvent::Type type) {
        QKeyEvent event(type, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
        QApplication::sendEvent(lamp, &event);
    };
    std::vector<double> releases;
    for (int i = 0; i < kRuns; ++i) {
        sendEnter(QEvent::KeyPress);
        QTest::qWait(100);
        releases.push_back(NowNs());
        sendEnter(QEvent::KeyRelease);  // returns once the tone has been heard
        QTest::qWait(200);
    }

    const std::vector<HeardTone> tones = SinkRecorder::FindTones(recorder.Stop());
    const std::vector<double> written = Delays(recorder, writes, tones);
    const std::vector<double> listened = Delays(recorder, presses, tones);
    const std::vector<double> keyed = Delays(recorder, releases, tones);
    if (written.size() != kRuns || listened.size() != kRuns || keyed.size() != kRuns) {
        std::printf("heard %zu tones for %d: the recording is not usable\n", tones.size(),
                    3 * kRuns);
        return 1;
    }
    const double baseline = Median(written);
    std::printf("  baseline, write to an open output: median %.1f ms\n", baseline);
    const auto report = [baseline](const char* what, const std::vector<double>& delays,
                                   int goalMs) {
        const double median = Median(delays);
        std::printf("%s: median %.1f ms, max %.1f ms (goal: %d ms); ratio %.2f\n", what, median,
                    *std::max_element(delays.begin(), delays.end()), goalMs, median / baseline);
    };
    report("Listen to first tone at the sink", listened, 30);
    report("Straight key released to its tone at the sink", keyed, 20);
    return 0;
}
