// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/CWave.h"
#include "audio/WaveAudio.h"

#include <string>

/// A device id (the mapper by default) with the questions asked of it before opening.
class CWaveDevice {
public:
    explicit CWaveDevice(unsigned device = kWaveMapper) : m_device(device) {}
    virtual ~CWaveDevice() = default;
    CWaveDevice(const CWaveDevice&) = default;
    CWaveDevice& operator=(const CWaveDevice&) = default;

    unsigned GetDevice() const { return m_device; }
    /// True when this device could record (play) the wave's format.
    bool IsInputFormat(const CWave& wave) const;
    bool IsOutputFormat(const CWave& wave) const;
    /// A device's product name, or an empty string when the query fails.
    static std::string GetInputName(unsigned index);
    static std::string GetOutputName(unsigned index);

private:
    unsigned m_device;
};
