// SPDX-License-Identifier: GPL-3.0-or-later
// Generate File in every type: each file read back through libsndfile has the rendered length
// and the tone's frequency; a file that cannot be written leaves nothing behind.
#include "sound/CSoundFileWriter.h"

#include <gtest/gtest.h>
#include <sndfile.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <string>
#include <vector>

#include "sound/CCodeWaveGen.h"

namespace {

namespace fs = std::filesystem;

// Three cycles in every 32-sample block at 11025 Hz.
constexpr double kToneHz = 11025.0 * 3 / 32;

struct ReadBack {
    int samplesPerSec = 0;
    std::vector<double> samples;
};

ReadBack Read(const fs::path& path) {
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (file == nullptr) {
        ADD_FAILURE() << path << ": " << sf_strerror(nullptr);
        return {};
    }
    EXPECT_EQ(info.channels, 1);
    ReadBack result{info.samplerate, std::vector<double>(static_cast<std::size_t>(info.frames))};
    EXPECT_EQ(sf_readf_double(file, result.samples.data(), info.frames), info.frames);
    sf_close(file);
    return result;
}

/// The frequency between low and high Hz with the most energy, to 0.5 Hz.
double DominantFrequency(const ReadBack& sound, double low, double high) {
    double best = 0.0;
    double bestPower = -1.0;
    for (double f = low; f <= high; f += 0.5) {
        // Goertzel's recurrence for one frequency.
        const double coefficient = 2.0 * std::cos(2.0 * std::numbers::pi * f / sound.samplesPerSec);
        double s1 = 0.0;
        double s2 = 0.0;
        for (const double x : sound.samples) {
            const double s0 = x + coefficient * s1 - s2;
            s2 = s1;
            s1 = s0;
        }
        const double power = s1 * s1 + s2 * s2 - coefficient * s1 * s2;
        if (power > bestPower) {
            bestPower = power;
            best = f;
        }
    }
    return best;
}

class SoundFileWriterTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_folder = fs::temp_directory_path() / ("tonwerk-sndfile-" + std::to_string(getpid()));
        fs::create_directories(m_folder);
    }
    void TearDown() override { fs::remove_all(m_folder); }

    std::vector<fs::path> Files() const {
        return {fs::directory_iterator(m_folder), fs::directory_iterator()};
    }

    fs::path m_folder;
};

TEST_F(SoundFileWriterTest, EveryTypeReadsBackWithTheRenderedLengthAndTone) {
    for (const SoundFileTypeInfo& info : SoundFileTypes()) {
        SCOPED_TRACE(std::string(info.name));
        const fs::path path = m_folder / ("paris." + std::string(info.extension));
        CCodeWaveGen generator;
        generator.SetText("PARIS PARIS");
        generator.SetWordsPerMinute(20);
        generator.SetFolder("");
        generator.SetFileName(path.string());
        generator.SetFileType(info.type);
        generator.GenerateFile();
        ASSERT_EQ(generator.LastError(), "");

        const ReadBack sound = Read(path);
        ASSERT_GT(sound.samplesPerSec, 0);
        const double expectedSeconds = static_cast<double>(generator.RenderedBytes()) / 2 / 11025;
        const double seconds = static_cast<double>(sound.samples.size()) / sound.samplesPerSec;
        EXPECT_NEAR(seconds, expectedSeconds, expectedSeconds * 0.01);
        EXPECT_NEAR(DominantFrequency(sound, 900, 1200), kToneHz, kToneHz * 0.01);
    }
    EXPECT_EQ(Files().size(), SoundFileTypes().size()) << "no temporary file is left";
}

TEST_F(SoundFileWriterTest, FailuresLeaveNoFileAndAnOlderFileUntouched) {
    const fs::path existing = m_folder / "old.mp3";
    std::ofstream(existing) << "older recording";

    struct Case {
        const char* what;
        fs::path path;
        int channels;
    };
    const Case cases[] = {
        {"a folder that is not there", m_folder / "gone" / "x.ogg", 1},
        {"more channels than MP3 holds", existing, 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        CSoundFileWriter writer;
        EXPECT_FALSE(writer.Open(c.path.string(), SoundFileTypeFromPath(c.path.string()).value(),
                                 11025, c.channels, SoundFileQuality{}));
        EXPECT_NE(writer.Error().find(c.path.string()), std::string::npos) << writer.Error();
    }

    // A file abandoned half way, as a failed render is.
    {
        CSoundFileWriter writer;
        ASSERT_TRUE(writer.Open(existing.string(), SoundFileType::kMp3, 11025, 1, {}));
        const std::vector<std::int16_t> tone(11025, 1000);
        EXPECT_TRUE(writer.Write(tone));
    }
    ASSERT_EQ(Files(), std::vector<fs::path>{existing});
    std::ifstream in(existing);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "older recording");
}

TEST(SoundFileTypeTest, ExtensionsAndNamesPickTheType) {
    EXPECT_EQ(SoundFileTypeFromPath("/a.b/Lesson.MP3"), SoundFileType::kMp3);
    EXPECT_EQ(SoundFileTypeFromPath("lesson.opus"), SoundFileType::kOpus);
    EXPECT_EQ(SoundFileTypeFromPath("lesson.wav"), SoundFileType::kWave);
    EXPECT_EQ(SoundFileTypeFromPath("lesson.aiff"), std::nullopt);
    EXPECT_EQ(SoundFileTypeFromPath("a.ogg/lesson"), std::nullopt);
    EXPECT_EQ(SoundFileTypeFromName("Ogg Vorbis"), SoundFileType::kOggVorbis);
    EXPECT_EQ(SoundFileTypeFromName("vorbis"), SoundFileType::kOggVorbis);
    EXPECT_EQ(SoundFileTypeFromName("FLAC"), SoundFileType::kFlac);
    EXPECT_EQ(SoundFileTypeFromName("aac"), std::nullopt);
}

}  // namespace
