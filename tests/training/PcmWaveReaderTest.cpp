// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CPcmWaveReader.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "training/DecodeWave.h"

namespace {

void Put(std::ofstream& file, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        file.put(static_cast<char>((value >> (8 * i)) & 0xFF));
    }
}

/// A WAV file at 8000 Hz, with an odd-sized chunk to be skipped before its format.
void WriteWave(const std::filesystem::path& name, std::uint16_t formatTag, int bits, int channels,
               const std::vector<std::uint32_t>& raw, std::uint32_t dataBytesClaimed = 0) {
    std::ofstream out(name, std::ios::binary);
    const int bytes = bits / 8;
    const auto dataBytes = static_cast<std::uint32_t>(raw.size()) * bytes;
    out << "RIFF";
    Put(out, 36 + 10 + dataBytes, 4);
    out << "WAVELIST";
    Put(out, 1, 4);
    out.put('x');
    out.put(0);
    out << "fmt ";
    Put(out, 16, 4);
    Put(out, formatTag, 2);
    Put(out, channels, 2);
    Put(out, 8000, 4);
    Put(out, 8000 * channels * bytes, 4);
    Put(out, channels * bytes, 2);
    Put(out, bits, 2);
    out << "data";
    Put(out, dataBytesClaimed != 0 ? dataBytesClaimed : dataBytes, 4);
    for (const std::uint32_t sample : raw) {
        Put(out, sample, bytes);
    }
}

std::filesystem::path TempFile(const char* name) {
    return std::filesystem::temp_directory_path() /
           ("tonwerk-" + std::to_string(getpid()) + "-" + name);
}

TEST(PcmWaveReader, ReadsEverySampleWidthAndMixesChannelsDown) {
    struct Case {
        const char* name;
        int bits;
        int channels;
        std::vector<std::uint32_t> raw;  ///< the stored samples, interleaved
        std::vector<float> expected;     ///< per frame
        std::uint32_t dataBytesClaimed;  ///< 0: as written
    };
    const Case cases[] = {
        {"8-bit is unsigned", 8, 1, {0x80, 0xC0, 0x00}, {0.0F, 0.5F, -1.0F}, 0},
        {"16-bit", 16, 1, {0x4000, 0xC000, 0x7FFF}, {0.5F, -0.5F, 32767.0F / 32768}, 0},
        {"24-bit", 24, 1, {0x400000, 0xE00000}, {0.5F, -0.25F}, 0},
        {"32-bit", 32, 1, {0x80000000U, 0x20000000}, {-1.0F, 0.25F}, 0},
        {"stereo averaged", 16, 2, {0x4000, 0x0000, 0xC000, 0xC000}, {0.25F, -0.5F}, 0},
        {"data longer than the file", 16, 1, {0x2000}, {0.25F}, 0xFFFFFFF0U},
    };
    const auto file = TempFile("width.wav");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        WriteWave(file, 1, c.bits, c.channels, c.raw, c.dataBytesClaimed);
        CPcmWaveReader reader(file.string());
        ASSERT_EQ(reader.Error(), "");
        EXPECT_EQ(reader.SampleRate(), 8000U);
        std::vector<float> samples(8, 9.0F);
        ASSERT_EQ(reader.Read(samples), c.expected.size());
        for (std::size_t i = 0; i < c.expected.size(); ++i) {
            EXPECT_FLOAT_EQ(samples[i], c.expected[i]) << i;
        }
        EXPECT_EQ(reader.Read(samples), 0U);
    }
    std::filesystem::remove(file);
}

TEST(DecodeWave, SaysInOneLineWhyAFileCannotBeDecoded) {
    struct Case {
        const char* name;
        const char* error;  ///< the start of it
    };
    const Case cases[] = {
        {"missing.wav", "cannot open "},       {"text.wav", "not a WAV file"},
        {"float.wav", "not PCM (format 3)"},   {"empty.wav", "empty: the file holds no samples"},
        {"silent.wav", "no keyed tone found"},
    };
    std::ofstream(TempFile("text.wav")) << "not a sound at all";
    WriteWave(TempFile("float.wav"), 3, 32, 1, {1, 2, 3, 4});
    WriteWave(TempFile("empty.wav"), 1, 16, 1, {});
    WriteWave(TempFile("silent.wav"), 1, 16, 1, std::vector<std::uint32_t>(16000, 0));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const DecodedWave decoded = DecodeWaveFile(TempFile(c.name).string());
        EXPECT_EQ(decoded.error.rfind(c.error, 0), 0U) << decoded.error;
        EXPECT_EQ(decoded.error.find('\n'), std::string::npos);
        EXPECT_EQ(decoded.text, "");
        std::filesystem::remove(TempFile(c.name));
    }
}

}  // namespace
