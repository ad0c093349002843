// SPDX-License-Identifier: GPL-3.0-or-later
#include "profile/CQtProfile.h"

#include <limits>

namespace {

QString Key(std::string_view section, std::string_view entry) {
    return QString::fromUtf8(section.data(), static_cast<qsizetype>(section.size())) + u'/' +
           QString::fromUtf8(entry.data(), static_cast<qsizetype>(entry.size()));
}

}  // namespace

CQtProfile::CQtProfile()
    : m_settings(std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                             kOrganization, kApplication)) {}

CQtProfile::CQtProfile(const QString& iniFile)
    : m_settings(std::make_unique<QSettings>(iniFile, QSettings::IniFormat)) {}

CQtProfile::~CQtProfile() = default;

int CQtProfile::GetInt(std::string_view section, std::string_view entry,
                       int defaultValue) const {
    const QVariant value = m_settings->value(Key(section, entry));
    if (!value.isValid()) {
        return defaultValue;
    }
    bool ok = false;
    const qlonglong number = value.toLongLong(&ok);
    if (!ok || number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max()) {
        return defaultValue;
    }
    return static_cast<int>(number);
}

bool CQtProfile::WriteInt(std::string_view section, std::string_view entry, int value) {
    return Write(section, entry, value);
}

std::string CQtProfile::GetString(std::string_view section, std::string_view entry,
                                  std::string_view defaultValue) const {
    const QVariant value = m_settings->value(Key(section, entry));
    if (!value.isValid()) {
        return std::string(defaultValue);
    }
    return value.toString().toStdString();
}

bool CQtProfile::WriteString(std::string_view section, std::string_view entry,
                             std::string_view value) {
    return Write(section, entry,
                 QString::fromUtf8(value.data(), static_cast<qsizetype>(value.size())));
}

bool CQtProfile::Write(std::string_view section, std::string_view entry, const QVariant& value) {
    m_settings->setValue(Key(section, entry), value);
    m_settings->sync();
    return m_settings->status() == QSettings::NoError;
}
