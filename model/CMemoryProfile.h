// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <string>
#include <variant>

#include "model/IProfile.h"

/// A profile held in memory, for tests and for running without a settings store.
class CMemoryProfile final : public IProfile {
public:
    int GetInt(std::string_view section, std::string_view entry, int defaultValue) const override;
    bool WriteInt(std::string_view section, std::string_view entry, int value) override;
    std::string GetString(std::string_view section, std::string_view entry,
                          std::string_view defaultValue) const override;
    bool WriteString(std::string_view section, std::string_view entry,
                     std::string_view value) override;

    /// Whether a value of that name was ever written.
    bool Contains(std::string_view section, std::string_view entry) const;
    void Clear() { m_values.clear(); }

private:
    using Value = std::variant<int, std::string>;
    static std::string Key(std::string_view section, std::string_view entry);

    std::map<std::string, Value, std::less<>> m_values;
};
