// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/INotifyTarget.h"

#include <map>
#include <mutex>
#include <string>

namespace {

constexpr unsigned kFirstRegisteredMessage = 0xC000;
constexpr unsigned kLastRegisteredMessage = 0xFFFF;

} // namespace

unsigned RegisterWindowMessage(std::string_view name) {
    static std::mutex lock;
    static std::map<std::string, unsigned, std::less<>> registered;
    if (name.empty()) {
        return 0;
    }
    std::lock_guard guard(lock);
    if (const auto found = registered.find(name); found != registered.end()) {
        return found->second;
    }
    const unsigned next = kFirstRegisteredMessage + static_cast<unsigned>(registered.size());
    if (next > kLastRegisteredMessage) {
        return 0;
    }
    registered.emplace(std::string(name), next);
    return next;
}
