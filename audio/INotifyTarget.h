// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string_view>

/// First message number that the sound classes post; their messages are kAppMessage + 1 to + 4.
constexpr unsigned kAppMessage = 0x8000;

/// The owner of the sound classes' notifications (what a window handle was to them). Posting
/// queues the message for the owner's own thread and returns at once; the handler never runs in
/// the caller's thread.
class INotifyTarget {
public:
    virtual ~INotifyTarget() = default;
    virtual void PostMessage(unsigned message, std::uintptr_t wParam, std::intptr_t lParam) = 0;
};

/// A process-wide message number for a name, the same for every call with that name
/// (0xC000 to 0xFFFF, as registered messages always were); 0 when the numbers are used up.
unsigned RegisterWindowMessage(std::string_view name);
