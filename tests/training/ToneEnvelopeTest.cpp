// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CToneEnvelope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "sound/CCodeWaveGen.h"
#include "training/CCopyScorer.h"
#include "training/CKeyingDecoder.h"
#include "training/CPcmWaveReader.h"

#include <unistd.h>

namespace {

constexpr const char* kText =
    "CQ CQ DE K5AB = THE QUICK BROWN FOX JUMPS OVER THE LAZY DOG 0123456789 ? 73 +";

/// Renders a text with the trainer's own generator and reads the file back as samples.
std::vector<float> Render(const std::string& text, int wpm, int farnsworth,
                          std::uint32_t* sampleRate) {
    const auto file = std::filesystem::temp_directory_path() /
                      ("tonwerk-envelope-" + std::to_string(::getpid()) + ".wav");
    CCodeWaveGen generator;
    generator.SetWordsPerMinute(wpm);
    generator.SetFarnsworthFactor(farnsworth);
    generator.SetText(text);
    generator.SetFolder("");
    generator.SetFileName(file.string());
    generator.GenerateFile();
    EXPECT_EQ(generator.LastError(), "");
    CPcmWaveReader reader(file.string());
    EXPECT_EQ(reader.Error(), "");
    std::vector<float> samples(reader.Frames());
    EXPECT_EQ(reader.Read(samples), samples.size());
    *sampleRate = reader.SampleRate();
    std::filesystem::remove(file);
    return samples;
}

/// Decodes samples fed in pieces of an awkward size, as a stream arrives.
std::string Decode(const std::vector<float>& samples, std::uint32_t sampleRate,
                   double* wpm = nullptr) {
    CKeyingDecoder decoder;
    CToneEnvelope envelope(sampleRate, decoder);
    constexpr std::size_t kPiece = 1000;
    for (std::size_t at = 0; at < samples.size(); at += kPiece) {
        envelope.Feed(
            std::span<const float>(samples).subspan(at, std::min(kPiece, samples.size() - at)));
    }
    envelope.Finish();
    if (wpm != nullptr) {
        *wpm = decoder.WordsPerMinute();
    }
    return decoder.Text();
}

TEST(ToneEnvelope, ReadsTheTrainersOwnFilesAtEverySpeedAndSpacing) {
    for (const int wpm : {5, 12, 20, 35, 60}) {
        for (const int farnsworth : {0, 3, 6}) {
            SCOPED_TRACE(testing::Message() << wpm << " WPM, Farnsworth " << farnsworth);
            std::uint32_t rate = 0;
            const std::vector<float> samples = Render(kText, wpm, farnsworth, &rate);
            double estimated = 0;
            EXPECT_EQ(Decode(samples, rate, &estimated), kText);
            // The generator keys its files somewhat faster than the nominal speed.
            const double dit = CCodeWaveGen::BlocksPerDit(wpm) * 32.0 / rate;
            EXPECT_NEAR(estimated, 1.2 / dit, 0.05 * 1.2 / dit);
        }
    }
}

TEST(ToneEnvelope, KeepsAtLeast98PercentIn10DecibelsOfWhiteNoise) {
    struct Case {
        unsigned seed;
        int wpm;
        int farnsworth;
    };
    for (const Case c : {Case{1, 20, 0}, Case{2, 60, 0}, Case{3, 8, 6}}) {
        SCOPED_TRACE(testing::Message() << c.wpm << " WPM, Farnsworth " << c.farnsworth);
        std::uint32_t rate = 0;
        std::vector<float> samples = Render(kText, c.wpm, c.farnsworth, &rate);
        // The tone's amplitude is 0.8 of full scale: power 0.32, the noise's a tenth of it.
        std::mt19937 rng(c.seed);
        std::normal_distribution<float> noise(0.0F, static_cast<float>(std::sqrt(0.032)));
        std::vector<float> lead(rate, 0.0F);  // a second of noise before the keying
        samples.insert(samples.begin(), lead.begin(), lead.end());
        for (float& x : samples) {
            x += noise(rng);
        }
        const std::string decoded = Decode(samples, rate);
        EXPECT_GE(CCopyScorer::Score(kText, decoded).Accuracy(), 98.0) << decoded;
    }
}

TEST(ToneEnvelope, FindsTheToneWhereverItIsAndNoneInSilenceOrNoise) {
    struct Case {
        const char* name;
        double hz;     ///< 0: no tone
        double noise;  ///< standard deviation of added white noise
        bool found;
    };
    const Case cases[] = {
        {"600 Hz", 600, 0, true},
        {"2 kHz", 2000, 0, true},
        {"silence", 0, 0, false},
        {"white noise alone", 0, 0.2, false},
    };
    constexpr std::uint32_t kRate = 48000;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::mt19937 rng(9);
        std::normal_distribution<double> noise(0.0, std::max(c.noise, 1e-9));
        std::vector<float> samples(kRate * 8, 0.0F);
        // "EE" as 60 ms dits, then "T": 180 ms; over and over.
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const double t = static_cast<double>(i % (kRate * 2)) / kRate;
            const bool on = (t < 0.06) || (t >= 0.24 && t < 0.30) || (t >= 0.72 && t < 0.90);
            const double tone =
                on && c.hz > 0
                    ? 0.5 * std::sin(2 * std::numbers::pi * c.hz * static_cast<double>(i) / kRate)
                    : 0;
            samples[i] = static_cast<float>(tone + (c.noise > 0 ? noise(rng) : 0.0));
        }
        CKeyingDecoder decoder;
        CToneEnvelope envelope(kRate, decoder);
        envelope.Feed(samples);
        envelope.Finish();
        if (c.found) {
            EXPECT_NEAR(envelope.ToneHz(), c.hz, 15.0);
            EXPECT_EQ(decoder.Text(), "EE T EE T EE T EE T");
        } else {
            EXPECT_EQ(envelope.ToneHz(), 0.0);
            EXPECT_EQ(envelope.Marks(), 0);
        }
    }
}

}  // namespace
