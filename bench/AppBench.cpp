// SPDX-License-Identifier: GPL-3.0-or-later
// The window's two waits a user feels: from start-up to the main window shown (goal: at most
// 0.5 s, including the 150 ms pause before the command line is acted on), and "Text to Morse
// Code" on a 100,000-character practice text (goal: at most 1 s). Runs under the display in
// DISPLAY (scripts/bench uses Xvfb), else offscreen, on a throw-away profile.
#include <QAbstractButton>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <cstdio>

#include "app/CMainFrame.h"
#include "app/CModalSeam.h"
#include "app/CTonwerkApp.h"
#include "app/CTonwerkDoc.h"
#include "app/CTonwerkView.h"
#include "model/CCrtRandom.h"
#include "model/CMorseAlphabet.h"
#include "model/CRandomText.h"

int main(int argc, char** argv) {
    QElapsedTimer launch;
    launch.start();
    QTemporaryDir profileDir;
    qputenv("XDG_CONFIG_HOME", profileDir.path().toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    CTonwerkApp app(argc, argv);
    CModalSeam::SetScripted(true);  // the MIDI notice must not wait for a click
    if (!app.InitInstance()) {
        return 1;
    }
    CMainFrame* frame = app.MainFrame();
    if (!QTest::qWaitForWindowExposed(frame)) {
        std::printf("the window was never shown\n");
        return 1;
    }
    const double startSeconds = static_cast<double>(launch.nsecsElapsed()) / 1e9;
    std::printf("start-up to window shown: %.3f s (goal: at most 0.5 s)\n", startSeconds);

    CCrtRandom rng(1);
    const std::string selection(CMorseAlphabet::SelectableCharacters());
    std::string text;
    while (text.size() < 100'000) {
        text += CRandomText::Groups(selection, 1000, 5, rng);
    }
    text.resize(100'000);
    auto* practice = qobject_cast<QTextEdit*>(frame->View()->Control(1002));
    auto* convert = qobject_cast<QAbstractButton*>(frame->View()->Control(1007));
    practice->setPlainText(QString::fromLatin1(text));
    QElapsedTimer timer;
    timer.start();
    convert->click();
    const double convertSeconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    std::printf("Text to Morse Code, 100,000 characters: %.3f s (goal: at most 1 s)\n",
                convertSeconds);
    frame->Document()->SetModifiedFlag(false);
    return 0;
}
