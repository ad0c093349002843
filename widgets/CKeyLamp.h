// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/CLayeredBitmap.h"

/// The key lamp: a layered bitmap with the layers "Key Up" (id 100) and "Key Down" (id 101)
/// drawn from the resource library; starts with "Key Up" shown.
class CKeyLamp : public CLayeredBitmap {
    Q_OBJECT
public:
    static constexpr int kKeyUpLayer = 100;
    static constexpr int kKeyDownLayer = 101;

    explicit CKeyLamp(QWidget* parent = nullptr);

    /// Shows "Key Down" and hides "Key Up" (or the reverse) and repaints.
    void SetKeyDown(bool down);
    bool IsKeyDown() const { return IsLayerVisible(kKeyDownLayer); }
};
