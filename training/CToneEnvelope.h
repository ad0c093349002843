// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

class CKeyingDecoder;

/// Reads on/off-keyed Morse out of sound: finds the strongest tone, follows its envelope with
/// hysteresis and hands the marks and spaces to a decoder. Samples are fed block by block in any
/// sizes; only the first few seconds after the sound starts are held, to find the tone, so
/// memory stays flat for a file of any length.
class CToneEnvelope {
public:
    CToneEnvelope(std::uint32_t sampleRate, CKeyingDecoder& decoder);

    /// Mono samples, full scale ±1.
    void Feed(std::span<const float> samples);

    /// The end of the sound: a tone still sounding is a mark, and the decoder finishes.
    void Finish();

    /// The tone followed, in hertz; 0 while none has been found (and after Finish, when the
    /// sound held none).
    double ToneHz() const { return m_toneHz; }

    /// Marks handed to the decoder so far.
    std::int64_t Marks() const { return m_marks; }

private:
    void Search();
    void Track(std::span<const float> samples);
    void Block(double amplitude);

    std::uint32_t m_sampleRate;
    CKeyingDecoder& m_decoder;
    std::size_t m_frameSamples;  ///< the search's frame
    std::size_t m_blockSamples;  ///< the envelope's step
    bool m_searching = true;
    std::vector<float> m_held;  ///< from the first sound on, while searching

    double m_toneHz = 0.0;
    double m_coefficient = 0.0;  ///< Goertzel's 2 cos(w)
    double m_s1 = 0.0;
    double m_s2 = 0.0;
    std::size_t m_inBlock = 0;

    double m_level = 0.0;  ///< the tone's amplitude while it sounds
    double m_floor = 0.0;  ///< the amplitude between tones
    bool m_on = false;
    bool m_started = false;  ///< a mark has been seen
    std::int64_t m_blocksInState = 0;
    std::int64_t m_marks = 0;
};
