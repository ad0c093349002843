// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CPcmWaveReader.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <vector>

namespace {

void Put(std::ofstream& file, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        file.put(static_cast<char>((value >> (8 * i)) & 0xFF));
    }
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
    const auto file =
        std::filesystem::temp_directory_path() / ("tonwerk-pcm-" + std::to_string(getpid()));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        {
            std::ofstream out(file, std::ios::binary);
            const int bytes = c.bits / 8;
            const auto dataBytes = static_cast<std::uint32_t>(c.raw.size()) * bytes;
            out << "RIFF";
            Put(out, 36 + 10 + dataBytes, 4);
            out << "WAVELIST";  // a chunk to be skipped (odd-sized, padded)
            Put(out, 1, 4);
            out.put('x');
            out.put(0);
            out << "fmt ";
            Put(out, 16, 4);
            Put(out, 1, 2);
            Put(out, c.channels, 2);
            Put(out, 8000, 4);
            Put(out, 8000 * c.channels * bytes, 4);
            Put(out, c.channels * bytes, 2);
            Put(out, c.bits, 2);
            out << "data";
            Put(out, c.dataBytesClaimed != 0 ? c.dataBytesClaimed : dataBytes, 4);
            for (const std::uint32_t sample : c.raw) {
                Put(out, sample, bytes);
            }
        }
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

}  // namespace
