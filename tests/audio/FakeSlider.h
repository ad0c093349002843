// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/IVolumeSlider.h"

/// A slider that remembers what the mixer told it.
class FakeSlider final : public IVolumeSlider {
public:
    void SetRange(int minimum, int maximum, bool) override {
        m_minimum = minimum;
        m_maximum = maximum;
        ++m_calls;
    }
    void SetPos(int position, bool redraw) override {
        m_position = position;
        m_redrawn = redraw;
        ++m_calls;
    }
    void Enable(bool enable) override {
        m_enabled = enable;
        ++m_calls;
    }

    int m_minimum = -1;
    int m_maximum = -1;
    int m_position = -1;
    bool m_redrawn = false;
    bool m_enabled = true;
    int m_calls = 0;
};
