// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CToneEnvelope.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "training/CKeyingDecoder.h"

namespace {

// The search: frames of about 90 ms (a bin of about 11 Hz), this many of them once sound starts.
constexpr double kFrameSeconds = 0.09;
constexpr std::size_t kSearchFrames = 32;
constexpr std::size_t kMinFrameSamples = 64;  // sound shorter than this is no tone
constexpr double kLowestToneHz = 150.0;
constexpr double kHighestToneHz = 4000.0;
// A tone stands this far above the median of the spectrum; noise alone never does.
constexpr double kPeakOverMedian = 20.0;
// Below this the sound has not started yet (a few steps of 16-bit PCM).
constexpr float kSilence = 1e-4F;

// The envelope: steps of about 2.9 ms, thresholds between the floor and the tone's level.
constexpr double kBlockSeconds = 0.0029;
constexpr std::size_t kMinBlockSamples = 8;
constexpr double kOnThreshold = 0.5;
constexpr double kOffThreshold = 0.3;
constexpr double kAdapt = 0.02;

struct Goertzel {
    double coefficient;
    double s1 = 0.0;
    double s2 = 0.0;

    void Add(double x) {
        const double s0 = x + coefficient * s1 - s2;
        s2 = s1;
        s1 = s0;
    }
    double Power() const { return s1 * s1 + s2 * s2 - coefficient * s1 * s2; }
};

/// The amplitude of the tone in a block of n samples, full scale 1.
double Amplitude(const Goertzel& g, std::size_t n) {
    return 2.0 * std::sqrt(std::max(g.Power(), 0.0)) / static_cast<double>(n);
}

double Coefficient(double hz, std::uint32_t sampleRate) {
    return 2.0 * std::cos(2.0 * std::numbers::pi * hz / sampleRate);
}

}  // namespace

CToneEnvelope::CToneEnvelope(std::uint32_t sampleRate, CKeyingDecoder& decoder)
    : m_sampleRate(std::max<std::uint32_t>(sampleRate, 1)),
      m_decoder(decoder),
      m_frameSamples(std::bit_ceil(
          std::max<std::size_t>(256, static_cast<std::size_t>(kFrameSeconds * m_sampleRate)))),
      m_blockSamples(std::max(
          kMinBlockSamples, static_cast<std::size_t>(std::lround(kBlockSeconds * m_sampleRate)))) {}

void CToneEnvelope::Feed(std::span<const float> samples) {
    if (!m_searching) {
        Track(samples);
        return;
    }
    if (m_held.empty()) {
        const auto sound = std::find_if(samples.begin(), samples.end(),
                                        [](float x) { return std::fabs(x) >= kSilence; });
        samples = samples.subspan(static_cast<std::size_t>(sound - samples.begin()));
    }
    const std::size_t wanted = kSearchFrames * m_frameSamples;
    const std::size_t take = std::min(samples.size(), wanted - m_held.size());
    m_held.insert(m_held.end(), samples.begin(),
                  samples.begin() + static_cast<std::ptrdiff_t>(take));
    if (m_held.size() == wanted) {
        Search();
        Track(samples.subspan(take));
    }
}

void CToneEnvelope::Search() {
    m_searching = false;
    const std::size_t frame = std::min(m_frameSamples, m_held.size());
    if (frame < kMinFrameSamples) {
        return;
    }
    const double binHz = static_cast<double>(m_sampleRate) / static_cast<double>(frame);
    const auto lowBin = static_cast<std::size_t>(std::ceil(kLowestToneHz / binHz));
    const auto highBin =
        static_cast<std::size_t>(std::min(kHighestToneHz, 0.45 * m_sampleRate) / binHz);
    if (highBin <= lowBin + 2) {
        return;
    }
    std::vector<double> spectrum(highBin - lowBin + 1, 0.0);
    for (std::size_t at = 0; at + frame <= m_held.size(); at += frame) {
        for (std::size_t bin = lowBin; bin <= highBin; ++bin) {
            Goertzel g{Coefficient(static_cast<double>(bin) * binHz, m_sampleRate)};
            for (std::size_t i = at; i < at + frame; ++i) {
                g.Add(m_held[i]);
            }
            spectrum[bin - lowBin] += g.Power();
        }
    }
    const auto peak = std::max_element(spectrum.begin(), spectrum.end());
    const double peakPower = *peak;
    const double peakHz =
        static_cast<double>(lowBin + static_cast<std::size_t>(peak - spectrum.begin())) * binHz;
    std::nth_element(spectrum.begin(),
                     spectrum.begin() + static_cast<std::ptrdiff_t>(spectrum.size() / 2),
                     spectrum.end());
    const double median = spectrum[spectrum.size() / 2];
    if (!(peakPower > 0.0) || peakPower < kPeakOverMedian * median) {
        return;
    }
    m_toneHz = peakHz;
    m_coefficient = Coefficient(m_toneHz, m_sampleRate);

    // The levels start from what the held sound shows: the loudest step and a low one.
    std::vector<double> amplitudes;
    for (std::size_t at = 0; at + m_blockSamples <= m_held.size(); at += m_blockSamples) {
        Goertzel g{m_coefficient};
        for (std::size_t i = at; i < at + m_blockSamples; ++i) {
            g.Add(m_held[i]);
        }
        amplitudes.push_back(Amplitude(g, m_blockSamples));
    }
    if (amplitudes.empty()) {
        m_toneHz = 0.0;
        return;
    }
    std::sort(amplitudes.begin(), amplitudes.end());
    m_level = amplitudes.back();
    m_floor = amplitudes[amplitudes.size() / 5];
    std::vector<float> held;
    held.swap(m_held);
    Track(held);
}

void CToneEnvelope::Track(std::span<const float> samples) {
    if (m_toneHz <= 0.0) {
        return;
    }
    Goertzel g{m_coefficient, m_s1, m_s2};
    for (const float x : samples) {
        g.Add(x);
        if (++m_inBlock == m_blockSamples) {
            Block(Amplitude(g, m_blockSamples));
            g.s1 = 0.0;
            g.s2 = 0.0;
            m_inBlock = 0;
        }
    }
    m_s1 = g.s1;
    m_s2 = g.s2;
}

void CToneEnvelope::Block(double amplitude) {
    const double span = m_level - m_floor;
    const double seconds =
        static_cast<double>(m_blocksInState) * static_cast<double>(m_blockSamples) / m_sampleRate;
    if (!m_on && amplitude > m_floor + kOnThreshold * span) {
        if (m_started) {
            m_decoder.Space(seconds);
        }
        m_on = true;
        m_started = true;
        m_blocksInState = 0;
    } else if (m_on && amplitude < m_floor + kOffThreshold * span) {
        m_decoder.Mark(seconds);
        ++m_marks;
        m_on = false;
        m_blocksInState = 0;
    }
    double& followed = m_on ? m_level : m_floor;
    followed += (amplitude - followed) * kAdapt;
    ++m_blocksInState;
}

void CToneEnvelope::Finish() {
    if (m_searching) {
        Search();
    }
    if (m_on) {
        m_decoder.Mark(static_cast<double>(m_blocksInState) * static_cast<double>(m_blockSamples) /
                       m_sampleRate);
        ++m_marks;
        m_on = false;
    }
    m_decoder.Finish();
}
