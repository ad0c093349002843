// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

/// The per-user application profile: integer and string values by section and value name.
/// Reads never fail (a missing or unreadable value yields the caller's default) and nothing is
/// cached, so every read sees the last write.
class IProfile {
public:
    virtual ~IProfile() = default;

    virtual int GetInt(std::string_view section, std::string_view entry,
                       int defaultValue) const = 0;
    /// @return false when the value could not be stored.
    virtual bool WriteInt(std::string_view section, std::string_view entry, int value) = 0;

    virtual std::string GetString(std::string_view section, std::string_view entry,
                                  std::string_view defaultValue) const = 0;
    virtual bool WriteString(std::string_view section, std::string_view entry,
                             std::string_view value) = 0;
};
