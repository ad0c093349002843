// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The Volume slider as the mixer sees it; the user-interface layer implements it.
class IVolumeSlider {
public:
    virtual ~IVolumeSlider() = default;
    virtual void SetRange(int minimum, int maximum, bool redraw) = 0;
    virtual void SetPos(int position, bool redraw) = 0;
    virtual void Enable(bool enable) = 0;
};
