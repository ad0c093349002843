// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The mixer layer: device 0 is the default card; its speakers line is the master playback
// element. The platform sits in one backend file (AlsaMixer.cpp).

#include "audio/WaveAudio.h"

#include <cstdint>
#include <string>

struct MixerDevice;
using MixerHandle = MixerDevice*;

struct MixerCaps {
    std::uint16_t manufacturerId = 0;
    std::uint16_t productId = 0;
    std::uint32_t driverVersion = 0;
    char productName[kWaveNameLength] = {};
    std::uint32_t support = 0;
    std::uint32_t destinations = 0;
};

struct MixerLine {
    std::uint32_t lineId = 0;
    std::string name;
};

struct MixerVolumeControl {
    std::uint32_t controlId = 0;
    std::string name;
    std::uint32_t minimum = 0;
    std::uint32_t maximum = 0;
};

unsigned MixerGetNumDevs();
MmResult MixerOpen(MixerHandle* mixer, unsigned device);
MmResult MixerGetDevCaps(MixerHandle mixer, MixerCaps* caps);
/// The speakers destination line.
MmResult MixerGetSpeakersLine(MixerHandle mixer, MixerLine* line);
/// The line's volume control and its range.
MmResult MixerGetVolumeControl(MixerHandle mixer, const MixerLine& line,
                               MixerVolumeControl* control);
/// Reads the first channel; writes every channel.
MmResult MixerGetValue(MixerHandle mixer, std::uint32_t controlId, std::uint32_t* value);
MmResult MixerSetValue(MixerHandle mixer, std::uint32_t controlId, std::uint32_t value);
MmResult MixerClose(MixerHandle mixer);
