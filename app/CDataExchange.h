// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

class QLineEdit;
class QWidget;

/// Moves integers between fields and members the way dialog data exchange does: a value that
/// is not an integer, or lies outside its bounds, is refused with the standard message and the
/// focus goes back to the field, whose text is selected.
class CDataExchange {
public:
    struct Range {
        int min;
        int max;
    };

    /// @return false when the field's text was refused; value is then unchanged.
    static bool Pull(QLineEdit* field, int& value, std::optional<Range> range = std::nullopt);
    static void Push(QLineEdit* field, int value);
};
