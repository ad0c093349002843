// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CWaveDevice.h"

#include <algorithm>

namespace {
constexpr unsigned kInputCapsSize = 48;
constexpr unsigned kOutputCapsSize = 52;

std::string NameOf(const char (&name)[kWaveNameLength]) {
    return std::string(name, std::find(name, name + kWaveNameLength, '\0'));
}
} // namespace

bool CWaveDevice::IsInputFormat(const CWave& wave) const {
    return WaveInOpen(nullptr, m_device, &wave.GetFormat(), nullptr, 0, kWaveFormatQuery) ==
           kMmNoError;
}

bool CWaveDevice::IsOutputFormat(const CWave& wave) const {
    return WaveOutOpen(nullptr, m_device, &wave.GetFormat(), nullptr, 0, kWaveFormatQuery) ==
           kMmNoError;
}

std::string CWaveDevice::GetInputName(unsigned index) {
    WaveInCaps caps;
    if (WaveInGetDevCaps(index, &caps, kInputCapsSize) != kMmNoError) {
        return {};
    }
    return NameOf(caps.productName);
}

std::string CWaveDevice::GetOutputName(unsigned index) {
    WaveOutCaps caps;
    if (WaveOutGetDevCaps(index, &caps, kOutputCapsSize) != kMmNoError) {
        return {};
    }
    return NameOf(caps.productName);
}
