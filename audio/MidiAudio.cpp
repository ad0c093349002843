// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/MidiAudio.h"

#include <algorithm>
#include <cstring>
#include <mutex>

namespace {

std::mutex g_lock;

std::unique_ptr<IMidiOutputEnumerator>& Enumerator() {
    static std::unique_ptr<IMidiOutputEnumerator> enumerator;
    if (!enumerator) {
        enumerator = MakeSystemMidiEnumerator();
    }
    return enumerator;
}

} // namespace

void SetMidiOutputEnumerator(std::unique_ptr<IMidiOutputEnumerator> enumerator) {
    std::lock_guard guard(g_lock);
    Enumerator() = enumerator ? std::move(enumerator) : MakeSystemMidiEnumerator();
}

unsigned MidiOutGetNumDevs() {
    std::lock_guard guard(g_lock);
    return Enumerator()->Count();
}

MmResult MidiOutGetDevCaps(unsigned device, MidiOutCaps* caps, unsigned size) {
    if (caps == nullptr) {
        return kMmInvalidParam;
    }
    MidiOutCaps filled;
    MmResult result = kMmNoError;
    {
        std::lock_guard guard(g_lock);
        if (device >= Enumerator()->Count()) {
            return kMmBadDeviceId;
        }
        result = Enumerator()->Capabilities(device, filled);
    }
    if (result == kMmNoError) {
        std::memcpy(static_cast<void*>(caps), &filled, std::min<std::size_t>(size, sizeof filled));
    }
    return result;
}

MmResult MidiOutGetErrorText(MmResult result, char* text, unsigned length) {
    return WaveOutGetErrorText(result, text, length);
}
