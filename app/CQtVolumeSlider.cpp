// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CQtVolumeSlider.h"

#include <QSignalBlocker>
#include <QSlider>

void CQtVolumeSlider::SetRange(int minimum, int maximum, bool /*redraw*/) {
    const QSignalBlocker blocker(m_slider);
    m_slider->setRange(minimum, maximum);
}

void CQtVolumeSlider::SetPos(int position, bool /*redraw*/) {
    const QSignalBlocker blocker(m_slider);
    m_slider->setValue(position);
}

void CQtVolumeSlider::Enable(bool enable) {
    m_slider->setEnabled(enable);
}
