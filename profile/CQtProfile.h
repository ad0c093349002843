// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSettings>
#include <memory>

#include "model/IProfile.h"

/// The application profile in QSettings under the company key: sections are groups, integers
/// are stored as integers and strings as strings. Every write is flushed at once.
class CQtProfile final : public IProfile {
public:
    static constexpr const char* kOrganization = "Vantrel Signal Applications";
    static constexpr const char* kApplication = "Tonwerk";

    /// The user's profile (on Linux ~/.config/Vantrel Signal Applications/Tonwerk.conf).
    CQtProfile();
    /// A profile in an INI file of its own, for tests and portable set-ups.
    explicit CQtProfile(const QString& iniFile);
    ~CQtProfile() override;

    int GetInt(std::string_view section, std::string_view entry, int defaultValue) const override;
    bool WriteInt(std::string_view section, std::string_view entry, int value) override;
    std::string GetString(std::string_view section, std::string_view entry,
                          std::string_view defaultValue) const override;
    bool WriteString(std::string_view section, std::string_view entry,
                     std::string_view value) override;

    QString FileName() const { return m_settings->fileName(); }

private:
    bool Write(std::string_view section, std::string_view entry, const QVariant& value);

    std::unique_ptr<QSettings> m_settings;
};
