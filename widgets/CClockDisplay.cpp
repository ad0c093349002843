// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CClockDisplay.h"

#include <algorithm>

CClockDisplay::CClockDisplay(QWidget* parent) : CSegmentDisplay(parent) {}

QString CClockDisplay::FormatTime(int hours, int minutes, int seconds) {
    return QString::asprintf("%02d:%02d:%02d", hours, minutes, seconds);
}

void CClockDisplay::SetTime(int hours, int minutes, int seconds) {
    SetText(FormatTime(hours, minutes, seconds));
}

bool CClockDisplay::UsesSegmentsFor(const QString& text) const {
    return std::all_of(text.begin(), text.end(),
                       [](QChar c) { return c.isDigit() || c == u':' || c == u' ' || c == u'-'; });
}
