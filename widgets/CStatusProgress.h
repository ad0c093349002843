// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPixmap>
#include <QString>
#include <QWidget>
#include <functional>
#include <memory>

/// The status-bar progress bar, filled with a tiled bar image. Range, step and position live in
/// atomics shared with any thread: StepIt and SetPos may be called from a worker while the bar
/// is shown, and the bar repaints itself on its own thread shortly after. Stepping past the
/// upper end stops there.
class CStatusProgress : public QWidget {
    Q_OBJECT
public:
    explicit CStatusProgress(QWidget* parent = nullptr);
    ~CStatusProgress() override;

    /// Sets the range; an upper end below the lower one makes an empty range at the lower end.
    /// The position is clamped into the new range.
    void SetRange(int lower, int upper);
    int Lower() const;
    int Upper() const;
    void SetStep(int step);
    int Step() const;

    /// Advances by the step; safe from any thread. Returns the position before the step.
    int StepIt();
    /// Moves to a position (clamped to the range); safe from any thread. Returns the old one.
    int SetPos(int position);
    int Pos() const;

    /// A callable that steps this bar and stays safe to call, doing nothing visible, after the
    /// bar has been deleted (a worker may hold it while the frame replaces the bar).
    std::function<void()> Stepper() const;

    /// Tiles this image over the filled part; false (and a plain fill) if it does not load.
    bool SetBarImage(const QString& resourcePath);
    QString BarImage() const { return m_barImagePath; }

    /// The position the bar last painted or took up to paint; follows Pos() while shown.
    int ShownPos() const { return m_shownPos; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void RepaintIfOwnThread();

    struct State;
    std::shared_ptr<State> m_state;
    QString m_barImagePath;
    QPixmap m_barImage;
    int m_shownPos = 0;
    unsigned m_shownGeneration = 0;
    int m_timerId = 0;
};
