// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// MIDI output devices: only counted and named, for the start-up check.

#include "audio/WaveAudio.h"

#include <cstdint>
#include <memory>

struct MidiOutCaps {
    std::uint16_t manufacturerId = 0;
    std::uint16_t productId = 0;
    std::uint32_t driverVersion = 0;
    char productName[kWaveNameLength] = {};
    std::uint16_t technology = 0;
    std::uint16_t voices = 0;
    std::uint16_t notes = 0;
    std::uint16_t channelMask = 0;
    std::uint32_t support = 0;
};

/// Where the MIDI outputs come from; the platform's by default, a fake one in tests.
class IMidiOutputEnumerator {
public:
    virtual ~IMidiOutputEnumerator() = default;
    virtual unsigned Count() = 0;
    virtual MmResult Capabilities(unsigned device, MidiOutCaps& caps) = 0;
};

/// The platform's enumerator: writable MIDI ports of other sequencer clients.
std::unique_ptr<IMidiOutputEnumerator> MakeSystemMidiEnumerator();

/// Replaces the enumerator (nullptr restores the platform's).
void SetMidiOutputEnumerator(std::unique_ptr<IMidiOutputEnumerator> enumerator);
unsigned MidiOutGetNumDevs();
MmResult MidiOutGetDevCaps(unsigned device, MidiOutCaps* caps, unsigned size);
MmResult MidiOutGetErrorText(MmResult result, char* text, unsigned length);
