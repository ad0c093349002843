// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/IVolumeSlider.h"

class QSlider;

/// The form's volume slider as the mixer drives it. Positions set by the mixer do not count as
/// moves, so reading the volume never writes it back.
class CQtVolumeSlider final : public IVolumeSlider {
public:
    explicit CQtVolumeSlider(QSlider* slider) : m_slider(slider) {}

    void SetRange(int minimum, int maximum, bool redraw) override;
    void SetPos(int position, bool redraw) override;
    void Enable(bool enable) override;

private:
    QSlider* m_slider;
};
