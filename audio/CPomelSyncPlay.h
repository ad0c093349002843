// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/INotifyTarget.h"
#include "audio/WaveAudio.h"

#include <cstddef>

/// Plays one tone at a time on the default output and blocks until it has been heard, telling
/// the owner kAppMessage + 4 when the tone starts and kAppMessage + 3 when it ends. Used from
/// the one thread that owns it; the gaps between tones are that thread's own sleeps.
class CPomelSyncPlay {
public:
    CPomelSyncPlay();
    virtual ~CPomelSyncPlay();
    CPomelSyncPlay(const CPomelSyncPlay&) = delete;
    CPomelSyncPlay& operator=(const CPomelSyncPlay&) = delete;

    /// Opens the default output at 96000 Hz, 8-bit mono; the outcome is GetLastResult().
    void OpenDevice();
    /// Plays frequency Hz for duration seconds and returns 1 once it was heard, 0 on failure.
    /// A frequency of -1 or less pauses for the previous tone's duration instead.
    int PlayTone(double frequency, double duration);
    /// Plays the samples still held with the stored duration; 0 when none are held.
    int PlayPrepared();
    void CloseDevice();

    MmResult GetLastResult() const { return m_lastResult; }
    /// Samples of the most recent tone (trunc(rate x duration)).
    std::size_t GetToneSampleCount() const { return m_toneSamples; }

    /// The tone's 8-bit samples: trunc(sin(i x 2pi / rate x frequency) x 125.0 + 127.0).
    static void SynthesizeTone(unsigned char* samples, std::size_t count, double frequency,
                               int sampleRate);

    /// The owner of the notifications; set by whoever drives the player, before the first tone.
    INotifyTarget* m_ownerWindow = nullptr;

private:
    int PlayHeldSamples();
    void Post(unsigned message);

    WaveFormat m_format;
    MmResult m_lastResult = kMmNoError;
    WaveOutHandle m_device = nullptr;
    WaveHeader m_header;
    unsigned char* m_samples = nullptr;
    double m_duration = 0.0;
    double m_frequency = 0.0;
    int m_sampleRate = 96000;
    std::size_t m_toneSamples = 0;
};
