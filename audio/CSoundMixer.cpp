// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CSoundMixer.h"

void CSoundMixer::Reset() {
    m_numDevices = MixerGetNumDevs();
    m_mixer = nullptr;
    m_caps = MixerCaps{};
    m_lineName.clear();
    m_controlName.clear();
    m_minimum = 0;
    m_maximum = 0;
    m_controlId = 0;
}

int CSoundMixer::OpenMixer() {
    Reset();
    if (m_numDevices == 0) {
        return 1;
    }
    if (MixerOpen(&m_mixer, 0) != kMmNoError) {
        m_mixer = nullptr;
        return 0;
    }
    return MixerGetDevCaps(m_mixer, &m_caps) == kMmNoError ? 1 : 0;
}

int CSoundMixer::QueryControl() {
    if (m_mixer == nullptr) {
        return 0;
    }
    MixerLine line;
    MixerVolumeControl control;
    if (MixerGetSpeakersLine(m_mixer, &line) != kMmNoError ||
        MixerGetVolumeControl(m_mixer, line, &control) != kMmNoError) {
        return 0;
    }
    m_lineName = line.name;
    m_controlName = control.name;
    m_minimum = control.minimum;
    m_maximum = control.maximum;
    m_controlId = control.controlId;
    return 1;
}

void CSoundMixer::Initialize() {
    Reset();
    if (m_numDevices != 0) {
        // A mixer that is there but will not open leaves the slider as it is.
        if (MixerOpen(&m_mixer, 0) != kMmNoError) {
            m_mixer = nullptr;
            return;
        }
        if (MixerGetDevCaps(m_mixer, &m_caps) != kMmNoError) {
            return;
        }
    }
    if (m_mixer == nullptr || QueryControl() == 0) {
        if (m_slider != nullptr) {
            m_slider->Enable(false);
        }
        return;
    }
    if (m_slider != nullptr) {
        m_slider->SetRange(static_cast<int>(m_minimum), static_cast<int>(m_maximum), false);
    }
    std::uint32_t value = 0;
    if (GetVolume(value) != 0 && m_slider != nullptr) {
        m_slider->SetPos(static_cast<int>(value), true);
    }
}

int CSoundMixer::GetVolume(std::uint32_t& value) {
    if (m_mixer == nullptr) {
        return 0;
    }
    return MixerGetValue(m_mixer, m_controlId, &value) == kMmNoError ? 1 : 0;
}

int CSoundMixer::SetVolume(std::uint32_t value) {
    if (m_mixer == nullptr) {
        return 0;
    }
    return MixerSetValue(m_mixer, m_controlId, value) == kMmNoError ? 1 : 0;
}

int CSoundMixer::CloseMixer() {
    if (m_mixer == nullptr) {
        return 1;
    }
    const MmResult result = MixerClose(m_mixer);
    m_mixer = nullptr;
    return result == kMmNoError ? 1 : 0;
}
