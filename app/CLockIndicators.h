// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <array>
#include <functional>
#include <optional>

class QLabel;
class QStatusBar;

/// The CAP, NUM and SCRL panes of the status bar. They follow the keyboard's lock keys where the
/// window system tells their state (X11, through XKB), read again after every key and whenever a
/// window of the program becomes active; elsewhere they stay grey.
class CLockIndicators : public QObject {
    Q_OBJECT

public:
    struct State {
        bool caps = false;
        bool num = false;
        bool scroll = false;
    };
    using Reader = std::function<std::optional<State>()>;

    /// Adds the three panes to the end of the bar.
    explicit CLockIndicators(QStatusBar* bar);
    ~CLockIndicators() override;

    /// The lock keys as the window system tells them, or nothing where it does not.
    static std::optional<State> ReadLockKeys();

    /// Reads the state from elsewhere than the window system (tests); an empty reader restores it.
    void SetReader(Reader reader);
    /// Reads the state and lights the panes.
    void Refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Reader m_reader;
    std::array<QLabel*, 3> m_panes{};
};
