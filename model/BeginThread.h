// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

/// Starts one worker thread running proc: the single way the system starts its threads.
/// @return the running thread, or nullopt when the system could not start one.
inline std::optional<std::thread> BeginThread(std::function<void()> proc) {
    try {
        return std::thread(std::move(proc));
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}
