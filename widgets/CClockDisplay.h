// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/CSegmentDisplay.h"

/// The elapsed-time display: digits and colons always as segments, any other text (such as a
/// completion estimate in words) in the widget's font.
class CClockDisplay : public CSegmentDisplay {
    Q_OBJECT
public:
    explicit CClockDisplay(QWidget* parent = nullptr);

    /// Shows hours, minutes and seconds as "%02d:%02d:%02d" (each part taken as it comes).
    void SetTime(int hours, int minutes, int seconds);
    /// The text SetTime shows for these values.
    static QString FormatTime(int hours, int minutes, int seconds);

protected:
    bool UsesSegmentsFor(const QString& text) const override;
};
