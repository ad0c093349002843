// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/IVolumeSlider.h"
#include "audio/MixerAudio.h"

#include <cstdint>
#include <string>

/// Ties the Volume slider to the speakers volume of mixer device 0.
class CSoundMixer {
public:
    CSoundMixer() = default;
    virtual ~CSoundMixer() = default;
    CSoundMixer(const CSoundMixer&) = delete;
    CSoundMixer& operator=(const CSoundMixer&) = delete;

    void AttachSlider(IVolumeSlider* slider) { m_slider = slider; }
    /// Opens the mixer and gives the slider the control's range and value, or disables it.
    void Initialize();
    int OpenMixer();
    int QueryControl();
    int GetVolume(std::uint32_t& value);
    int SetVolume(std::uint32_t value);
    int CloseMixer();

    const std::string& GetLineName() const { return m_lineName; }
    const std::string& GetControlName() const { return m_controlName; }
    std::uint32_t GetMinimum() const { return m_minimum; }
    std::uint32_t GetMaximum() const { return m_maximum; }

private:
    void Reset();

    unsigned m_numDevices = 0;
    MixerHandle m_mixer = nullptr;
    MixerCaps m_caps;
    std::string m_lineName;
    std::string m_controlName;
    std::uint32_t m_minimum = 0;
    std::uint32_t m_maximum = 0;
    std::uint32_t m_controlId = 0;
    IVolumeSlider* m_slider = nullptr;
};
