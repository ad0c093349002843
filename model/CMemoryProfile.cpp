// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CMemoryProfile.h"

std::string CMemoryProfile::Key(std::string_view section, std::string_view entry) {
    std::string key(section);
    key += '/';
    key += entry;
    return key;
}

int CMemoryProfile::GetInt(std::string_view section, std::string_view entry,
                           int defaultValue) const {
    const auto it = m_values.find(Key(section, entry));
    if (it == m_values.end()) {
        return defaultValue;
    }
    const int* value = std::get_if<int>(&it->second);
    return value ? *value : defaultValue;
}

bool CMemoryProfile::WriteInt(std::string_view section, std::string_view entry, int value) {
    m_values[Key(section, entry)] = value;
    return true;
}

std::string CMemoryProfile::GetString(std::string_view section, std::string_view entry,
                                      std::string_view defaultValue) const {
    const auto it = m_values.find(Key(section, entry));
    if (it == m_values.end()) {
        return std::string(defaultValue);
    }
    const std::string* value = std::get_if<std::string>(&it->second);
    return value ? *value : std::string(defaultValue);
}

bool CMemoryProfile::WriteString(std::string_view section, std::string_view entry,
                                 std::string_view value) {
    m_values[Key(section, entry)] = std::string(value);
    return true;
}

bool CMemoryProfile::Contains(std::string_view section, std::string_view entry) const {
    return m_values.contains(Key(section, entry));
}
