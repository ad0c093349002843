// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEvent>
#include <cstdint>

/// A message posted by the sound classes, delivered to the view on the user-interface thread.
class CAppMessageEvent : public QEvent {
public:
    CAppMessageEvent(unsigned message, std::uintptr_t wParam, std::intptr_t lParam)
        : QEvent(EventType()), m_message(message), m_wParam(wParam), m_lParam(lParam) {}

    /// The one event type of every posted message, registered on first use.
    static QEvent::Type EventType() {
        static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
        return type;
    }

    unsigned Message() const { return m_message; }
    std::uintptr_t WParam() const { return m_wParam; }
    std::intptr_t LParam() const { return m_lParam; }

private:
    unsigned m_message;
    std::uintptr_t m_wParam;
    std::intptr_t m_lParam;
};
