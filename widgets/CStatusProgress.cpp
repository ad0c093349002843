// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CStatusProgress.h"

#include "res/TonwerkResources.h"

#include <QIcon>
#include <QPainter>
#include <QThread>
#include <QTimerEvent>
#include <algorithm>
#include <atomic>
#include <cstdint>

namespace {
constexpr int kRefreshMs = 30;  // how soon a worker's step shows
constexpr int kBarImageHeight = 32;
}  // namespace

// Shared with whoever steps the bar, so a worker's stepper outlives a replaced bar.
struct CStatusProgress::State {
    std::atomic<int> lower{0};
    std::atomic<int> upper{100};
    std::atomic<int> step{10};
    std::atomic<int> pos{0};
    std::atomic<unsigned> generation{0};

    int Clamp(int value) const {
        const int lo = lower.load();
        const int hi = std::max(lo, upper.load());
        return std::clamp(value, lo, hi);
    }
    int Move(int (*next)(int current, int argument), int argument) {
        int old = pos.load();
        while (!pos.compare_exchange_weak(old, Clamp(next(old, argument)))) {
        }
        generation.fetch_add(1);
        return old;
    }
    int StepIt() {
        return Move(
            [](int current, int by) {
                // Saturating, so a step near the int limits cannot overflow.
                const long long sum = static_cast<long long>(current) + by;
                return static_cast<int>(std::clamp<long long>(sum, INT32_MIN, INT32_MAX));
            },
            step.load());
    }
    int SetPos(int position) {
        return Move([](int, int to) { return to; }, position);
    }
};

CStatusProgress::CStatusProgress(QWidget* parent)
    : QWidget(parent), m_state(std::make_shared<State>()) {
    tonwerk::res::InitResources();
}

CStatusProgress::~CStatusProgress() = default;

void CStatusProgress::SetRange(int lower, int upper) {
    m_state->lower = lower;
    m_state->upper = std::max(lower, upper);
    m_state->SetPos(m_state->pos.load());
    RepaintIfOwnThread();
}

int CStatusProgress::Lower() const {
    return m_state->lower.load();
}

int CStatusProgress::Upper() const {
    return m_state->upper.load();
}

void CStatusProgress::SetStep(int step) {
    m_state->step = step;
}

int CStatusProgress::Step() const {
    return m_state->step.load();
}

int CStatusProgress::StepIt() {
    const int old = m_state->StepIt();
    RepaintIfOwnThread();
    return old;
}

int CStatusProgress::SetPos(int position) {
    const int old = m_state->SetPos(position);
    RepaintIfOwnThread();
    return old;
}

void CStatusProgress::RepaintIfOwnThread() {
    // Other threads only touch the atomics; the timer picks their changes up.
    if (QThread::currentThread() == thread()) {
        update();
    }
}

void CStatusProgress::showEvent(QShowEvent* event) {
    // Polling only while visible keeps an idle program from waking up for nothing.
    if (m_timerId == 0) {
        m_timerId = startTimer(kRefreshMs);
    }
    QWidget::showEvent(event);
}

void CStatusProgress::hideEvent(QHideEvent* event) {
    if (m_timerId != 0) {
        killTimer(m_timerId);
        m_timerId = 0;
    }
    QWidget::hideEvent(event);
}

int CStatusProgress::Pos() const {
    return m_state->pos.load();
}

std::function<void()> CStatusProgress::Stepper() const {
    std::shared_ptr<State> state = m_state;
    return [state] { state->StepIt(); };
}

bool CStatusProgress::SetBarImage(const QString& resourcePath) {
    const QIcon icon(resourcePath);
    m_barImage = icon.isNull() ? QPixmap() : icon.pixmap(QSize(kBarImageHeight, kBarImageHeight));
    m_barImagePath = m_barImage.isNull() ? QString() : resourcePath;
    update();
    return !m_barImage.isNull();
}

QSize CStatusProgress::sizeHint() const {
    return {160, 16};
}

void CStatusProgress::timerEvent(QTimerEvent* event) {
    if (event->timerId() != m_timerId) {
        QWidget::timerEvent(event);
        return;
    }
    const unsigned generation = m_state->generation.load();
    if (generation != m_shownGeneration) {
        m_shownGeneration = generation;
        m_shownPos = m_state->pos.load();
        update();
    }
}

void CStatusProgress::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRect frame = rect().adjusted(0, 0, -1, -1);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(frame);

    m_shownPos = m_state->pos.load();
    const int lower = m_state->lower.load();
    const int upper = m_state->upper.load();
    const QRect inside = frame.adjusted(1, 1, 0, 0);
    if (upper <= lower || m_shownPos <= lower || inside.isEmpty()) {
        return;
    }
    const double share =
        static_cast<double>(m_shownPos - lower) / static_cast<double>(upper - lower);
    QRect filled = inside;
    filled.setWidth(static_cast<int>(inside.width() * std::min(1.0, share)));
    if (filled.width() <= 0) {
        return;
    }
    if (m_barImage.isNull()) {
        painter.fillRect(filled, palette().color(QPalette::Highlight));
    } else {
        // The image gives the bar its shading; scaled to the bar's height, tiled along it.
        const QPixmap tile = m_barImage.scaled(m_barImage.width(), filled.height(),
                                               Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        painter.drawTiledPixmap(filled, tile);
    }
}
