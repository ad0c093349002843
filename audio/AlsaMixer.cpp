// SPDX-License-Identifier: GPL-3.0-or-later
// The mixer layer over the ALSA simple mixer on "default" (through the sound server's plugin).
#include "audio/MixerAudio.h"

#include <alsa/asoundlib.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr const char* kCardName = "default";
constexpr const char* kPreferredElements[] = {"Master", "PCM"};

void QuietAlsa(const char*, int, const char*, int, const char*, ...) {}

snd_mixer_t* OpenCard() {
    snd_lib_error_set_handler(&QuietAlsa);
    snd_mixer_t* mixer = nullptr;
    if (snd_mixer_open(&mixer, 0) < 0) {
        return nullptr;
    }
    if (snd_mixer_attach(mixer, kCardName) < 0 ||
        snd_mixer_selem_register(mixer, nullptr, nullptr) < 0 || snd_mixer_load(mixer) < 0) {
        snd_mixer_close(mixer);
        return nullptr;
    }
    return mixer;
}

} // namespace

struct MixerDevice {
    snd_mixer_t* mixer = nullptr;
    snd_mixer_elem_t* element = nullptr;
};

namespace {

/// "Master", else "PCM", else the first element with a playback volume.
snd_mixer_elem_t* FindVolumeElement(snd_mixer_t* mixer) {
    for (const char* wanted : kPreferredElements) {
        for (snd_mixer_elem_t* e = snd_mixer_first_elem(mixer); e != nullptr;
             e = snd_mixer_elem_next(e)) {
            if (std::strcmp(snd_mixer_selem_get_name(e), wanted) == 0 &&
                snd_mixer_selem_has_playback_volume(e)) {
                return e;
            }
        }
    }
    for (snd_mixer_elem_t* e = snd_mixer_first_elem(mixer); e != nullptr;
         e = snd_mixer_elem_next(e)) {
        if (snd_mixer_selem_has_playback_volume(e)) {
            return e;
        }
    }
    return nullptr;
}

} // namespace

unsigned MixerGetNumDevs() {
    snd_mixer_t* mixer = OpenCard();
    if (mixer == nullptr) {
        return 0;
    }
    snd_mixer_close(mixer);
    return 1;
}

MmResult MixerOpen(MixerHandle* mixer, unsigned device) {
    if (mixer == nullptr) {
        return kMmInvalidParam;
    }
    if (device != 0) {
        return kMmBadDeviceId;
    }
    snd_mixer_t* card = OpenCard();
    if (card == nullptr) {
        return kMmNoDriver;
    }
    *mixer = new MixerDevice{card, nullptr};
    return kMmNoError;
}

MmResult MixerGetDevCaps(MixerHandle mixer, MixerCaps* caps) {
    if (mixer == nullptr) {
        return kMmInvalidHandle;
    }
    if (caps == nullptr) {
        return kMmInvalidParam;
    }
    *caps = MixerCaps{};
    std::strncpy(caps->productName, kCardName, kWaveNameLength - 1);
    caps->destinations = 1;
    return kMmNoError;
}

MmResult MixerGetSpeakersLine(MixerHandle mixer, MixerLine* line) {
    if (mixer == nullptr) {
        return kMmInvalidHandle;
    }
    if (line == nullptr) {
        return kMmInvalidParam;
    }
    snd_mixer_handle_events(mixer->mixer);
    mixer->element = FindVolumeElement(mixer->mixer);
    if (mixer->element == nullptr) {
        return kMmError;
    }
    line->lineId = snd_mixer_selem_get_index(mixer->element);
    line->name = snd_mixer_selem_get_name(mixer->element);
    return kMmNoError;
}

MmResult MixerGetVolumeControl(MixerHandle mixer, const MixerLine& line,
                               MixerVolumeControl* control) {
    if (mixer == nullptr) {
        return kMmInvalidHandle;
    }
    if (control == nullptr || mixer->element == nullptr ||
        line.name != snd_mixer_selem_get_name(mixer->element)) {
        return kMmInvalidParam;
    }
    long minimum = 0;
    long maximum = 0;
    if (snd_mixer_selem_get_playback_volume_range(mixer->element, &minimum, &maximum) < 0) {
        return kMmError;
    }
    control->controlId = line.lineId;
    control->name = line.name + " Playback Volume";
    control->minimum = static_cast<std::uint32_t>(std::max(minimum, 0L));
    control->maximum = static_cast<std::uint32_t>(std::max(maximum, 0L));
    return kMmNoError;
}

MmResult MixerGetValue(MixerHandle mixer, std::uint32_t, std::uint32_t* value) {
    if (mixer == nullptr) {
        return kMmInvalidHandle;
    }
    if (value == nullptr || mixer->element == nullptr) {
        return kMmInvalidParam;
    }
    snd_mixer_handle_events(mixer->mixer);
    long volume = 0;
    if (snd_mixer_selem_get_playback_volume(mixer->element, SND_MIXER_SCHN_FRONT_LEFT, &volume) <
        0) {
        return kMmError;
    }
    *value = static_cast<std::uint32_t>(std::max(volume, 0L));
    return kMmNoError;
}

MmResult MixerSetValue(MixerHandle mixer, std::uint32_t, std::uint32_t value) {
    if (mixer == nullptr) {
        return kMmInvalidHandle;
    }
    if (mixer->element == nullptr) {
        return kMmInvalidParam;
    }
    if (snd_mixer_selem_set_playback_volume_all(mixer->element, static_cast<long>(value)) < 0) {
        return kMmError;
    }
    return kMmNoError;
}

MmResult MixerClose(MixerHandle mixer) {
    if (mixer == nullptr) {
        return kMmInvalidHandle;
    }
    snd_mixer_close(mixer->mixer);
    delete mixer;
    return kMmNoError;
}
