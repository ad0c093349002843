// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/INotifyTarget.h"

#include <chrono>
#include <cstdint>
#include <mutex>
#include <vector>

/// An owner that keeps every posted message with the time it came, for checking order.
class RecordingTarget final : public INotifyTarget {
public:
    struct Message {
        unsigned message = 0;
        std::uintptr_t wParam = 0;
        std::intptr_t lParam = 0;
        std::chrono::steady_clock::time_point when;
    };
    void PostMessage(unsigned message, std::uintptr_t wParam, std::intptr_t lParam) override {
        std::lock_guard lock(m_lock);
        m_messages.push_back({message, wParam, lParam, std::chrono::steady_clock::now()});
    }
    std::vector<Message> Messages() const {
        std::lock_guard lock(m_lock);
        return m_messages;
    }

private:
    mutable std::mutex m_lock;
    std::vector<Message> m_messages;
};
