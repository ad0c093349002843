// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/CCodeWaveGen.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "../support/FileSizeLimit.h"
#include "audio/INotifyTarget.h"
#include "sound/IProgressCtrl.h"

namespace {

namespace fs = std::filesystem;

// The tone block as listed for the file format: three sine cycles at 0.8 of full scale.
constexpr std::array<std::int16_t, 32> kBlock = {
    -10032, 5114,  18536, 25711, 24219, 14564, 0,      -14564, -24219, -25711, -18536,
    -5114,  10032, 21796, 26214, 21796, 10032, -5114,  -18536, -25711, -24219, -14564,
    0,      14564, 24219, 25711, 18536, 5114,  -10032, -21796, -26214, -21796};

struct Post {
    unsigned message;
    std::uintptr_t wParam;
    std::intptr_t lParam;
};

class RecordingTarget : public INotifyTarget {
public:
    void PostMessage(unsigned message, std::uintptr_t wParam, std::intptr_t lParam) override {
        posts.push_back({message, wParam, lParam});
    }
    std::vector<Post> posts;
};

class CountingProgress : public IProgressCtrl {
public:
    void StepIt() override { ++steps; }
    std::atomic<int> steps{0};
};

class ScriptedGate : public IRecordingGate {
public:
    unsigned Open(const RecordingFormat& format) override {
        calls += "open ";
        opened = format;
        return openResult;
    }
    unsigned PrepareHeader(std::byte* data, std::size_t size) override {
        calls += "prepare ";
        EXPECT_NE(data, nullptr);
        EXPECT_GT(size, 0U);
        return prepareResult;
    }
    unsigned AddBuffer() override {
        calls += "add ";
        return 0;
    }
    unsigned UnprepareHeader() override {
        calls += "unprepare ";
        return 0;
    }
    unsigned Close() override {
        calls += "close";
        return 0;
    }
    unsigned openResult = 0;
    unsigned prepareResult = 0;
    RecordingFormat opened;
    std::string calls;
};

// What a text must sound like, written out sample by sample from the keying rules: u blocks per
// dit, F the Farnsworth factor.
std::vector<std::int16_t> Expected(const std::string& patterns, int u, int factor) {
    std::vector<std::int16_t> samples;
    auto tone = [&](long blocks) {
        for (long b = 0; b < blocks; ++b) {
            samples.insert(samples.end(), kBlock.begin(), kBlock.end());
        }
    };
    auto silence = [&](long blocks) { samples.insert(samples.end(), 32 * blocks, 0); };
    // patterns: each character's pattern, characters separated by '|'
    std::string pattern;
    auto character = [&] {
        for (char e : pattern) {
            if (e == '.')
                tone(u);
            if (e == '-')
                tone(3 * u);
            if (e == ' ')
                silence(3 * u + (factor > 0 ? factor * u : 0));
            silence(u);
        }
        silence(2 * u);
        if (factor > 0)
            silence((factor * u + 1) / 2);
        pattern.clear();
    };
    for (char c : patterns) {
        if (c == '|') {
            character();
        } else {
            pattern += c;
        }
    }
    return samples;
}

std::string Bytes(const std::vector<std::int16_t>& samples) {
    std::string bytes;
    for (std::int16_t s : samples) {
        const auto v = static_cast<std::uint16_t>(s);
        bytes += static_cast<char>(v & 0xFF);
        bytes += static_cast<char>(v >> 8);
    }
    return bytes;
}

std::uint32_t U32(const std::string& file, std::size_t at) {
    std::uint32_t v = 0;
    for (int i = 3; i >= 0; --i)
        v = (v << 8) | static_cast<unsigned char>(file[at + i]);
    return v;
}

std::uint16_t U16(const std::string& file, std::size_t at) {
    return static_cast<std::uint16_t>(static_cast<unsigned char>(file[at]) |
                                      (static_cast<unsigned char>(file[at + 1]) << 8));
}

class CodeWaveGenTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_dir = fs::temp_directory_path() /
                ("tonwerk-wave-" + std::to_string(::getpid()) + "-" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(m_dir);
        m_gen.SetFolder(m_dir.string() + "/");
        m_gen.SetFileName("out.wav");
        m_gen.SetNotifyWindow(&m_target);
        m_gen.SetProgressCtrl(&m_progress);
    }
    void TearDown() override { fs::remove_all(m_dir); }

    std::string Generate(const std::string& text, int wpm = 12, int factor = 0) {
        m_gen.SetText(text);
        m_gen.SetWordsPerMinute(wpm);
        m_gen.SetFarnsworthFactor(factor);
        m_gen.GenerateFile();
        return Read(m_dir / "out.wav");
    }
    static std::string Read(const fs::path& path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    static std::string Data(const std::string& file) { return file.substr(46); }

    fs::path m_dir;
    CCodeWaveGen m_gen;
    RecordingTarget m_target;
    CountingProgress m_progress;
};

TEST_F(CodeWaveGenTest, OneEAtTwelveWordsPerMinuteIsA5422ByteFile) {
    const std::string file = Generate("E");
    ASSERT_EQ(file.size(), 5422U);
    EXPECT_EQ(file.substr(0, 4), "RIFF");
    EXPECT_EQ(U32(file, 4), 5414U);
    EXPECT_EQ(file.substr(8, 8), "WAVEfmt ");
    EXPECT_EQ(U32(file, 16), 18U);
    EXPECT_EQ(U16(file, 20), 1);
    EXPECT_EQ(U16(file, 22), 1);
    EXPECT_EQ(U32(file, 24), 11025U);
    EXPECT_EQ(U32(file, 28), 22050U);
    EXPECT_EQ(U16(file, 32), 2);
    EXPECT_EQ(U16(file, 34), 16);
    EXPECT_EQ(U16(file, 36), 0);
    EXPECT_EQ(file.substr(38, 4), "data");
    EXPECT_EQ(U32(file, 42), 5376U);
    // 21 tone blocks, then 21 + 42 silent ones.
    EXPECT_EQ(Data(file), Bytes(Expected(".|", 21, 0)));
    EXPECT_EQ(U16(file, 46), static_cast<std::uint16_t>(-10032));
    EXPECT_EQ(U16(file, 46 + 21 * 64 - 2), static_cast<std::uint16_t>(-21796));
    EXPECT_EQ(Data(file).substr(21 * 64), std::string(63 * 64, '\0'));
}

TEST_F(CodeWaveGenTest, CompletionIsPostedOnceAndProgressStepsPerCharacter) {
    Generate("PARIS PARIS");
    ASSERT_EQ(m_target.posts.size(), 1U);
    EXPECT_EQ(m_target.posts[0].message, kAppMessage + 1);
    EXPECT_EQ(m_target.posts[0].wParam, 1U);
    EXPECT_EQ(m_target.posts[0].lParam, 1);
    EXPECT_EQ(m_progress.steps, 11);
    EXPECT_TRUE(m_gen.LastError().empty());
}

TEST_F(CodeWaveGenTest, TableQuirksRenderAsTheTableSays) {
    EXPECT_EQ(Generate("K"), Generate("^"));
    const std::string twoUnitsOfSilence(42 * 64, '\0');
    for (const char* quiet : {"<", ">", "[", "\\", "]"}) {
        EXPECT_EQ(Data(Generate(quiet)), twoUnitsOfSilence) << quiet;
    }
    EXPECT_EQ(Data(Generate("@")), Bytes(Expected("........|", 21, 0)));
    EXPECT_EQ(Data(Generate("\x7f\x01")), twoUnitsOfSilence + twoUnitsOfSilence);
    EXPECT_EQ(Generate("cq de k5ab"), Generate("CQ DE K5AB"));
    EXPECT_EQ(Data(Generate("A B", 30)), Bytes(Expected(".-| |-...|", 8, 0)));
}

TEST_F(CodeWaveGenTest, PitchNeverChangesTheTone) {
    m_gen.SetPitch(350);
    const std::string low = Generate("SOS");
    m_gen.SetPitch(1200);
    EXPECT_EQ(Generate("SOS"), low);
    EXPECT_EQ(m_gen.GetPitch(), 1200);
}

TEST_F(CodeWaveGenTest, BlocksPerDitFollowsTheCalibration) {
    EXPECT_EQ(CCodeWaveGen::BlocksPerDit(5), 52);
    EXPECT_EQ(CCodeWaveGen::BlocksPerDit(12), 21);
    EXPECT_EQ(CCodeWaveGen::BlocksPerDit(20), 13);
    EXPECT_EQ(CCodeWaveGen::BlocksPerDit(30), 8);
    EXPECT_EQ(CCodeWaveGen::BlocksPerDit(100), 2);
    EXPECT_EQ(CCodeWaveGen::BlocksPerDit(260), 1);
    EXPECT_EQ(CCodeWaveGen::BlocksPerDit(261), 0);
    EXPECT_EQ(CCodeWaveGen::BlocksPerDit(0), 0);
    EXPECT_EQ(CCodeWaveGen::BlocksPerDit(-5), 0);
}

TEST_F(CodeWaveGenTest, VeryFastOrEmptyTextGivesAnEmptyDataChunk) {
    for (const auto& [text, wpm] : {std::pair{"PARIS", 261}, {"PARIS", 1000}, {"", 12}}) {
        const std::string file = Generate(text, wpm);
        ASSERT_EQ(file.size(), 46U) << text << ' ' << wpm;
        EXPECT_EQ(U32(file, 4), 38U);
        EXPECT_EQ(U32(file, 42), 0U);
    }
    EXPECT_EQ(m_target.posts.size(), 3U);
    EXPECT_EQ(Data(Generate("E", 260)), Bytes(Expected(".|", 1, 0)));
}

TEST_F(CodeWaveGenTest, FarnsworthStretchesCharacterAndWordGaps) {
    // F = 1, u = 21: "E" is 21 tone + 21 + 42 + ceil(21 / 2) = 11 silent blocks.
    EXPECT_EQ(Data(Generate("E", 12, 1)).size(), (21 + 21 + 42 + 11) * 64U);
    EXPECT_EQ(Data(Generate("E E", 12, 1)), Bytes(Expected(".| |.|", 21, 1)));
    // F = 3: ceil(63 / 2) = 32 blocks after each character, a blank adds 3u + 3u + u + 2u.
    EXPECT_EQ(Data(Generate("E", 12, 3)).size(), (21 + 21 + 42 + 32) * 64U);
    EXPECT_EQ(Data(Generate("E E", 12, 3)), Bytes(Expected(".| |.|", 21, 3)));
    EXPECT_EQ(Data(Generate("E", 12, -2)), Data(Generate("E", 12, 0)));
}

TEST_F(CodeWaveGenTest, RunsOfEExceedTheSizeEstimateAndAreStillWrittenWhole) {
    m_gen.SetText("EEEEEE");
    m_gen.SetWordsPerMinute(12);
    m_gen.SetFarnsworthFactor(0);
    EXPECT_EQ(m_gen.CountUnits(), 18);
    EXPECT_EQ(m_gen.EstimateBytes(), 30400);
    EXPECT_EQ(m_gen.RenderedBytes(), 6 * 84 * 64);
    const std::string file = Generate("EEEEEE");
    EXPECT_EQ(U32(file, 42), 32256U);
    EXPECT_EQ(Data(file), Bytes(Expected(".|.|.|.|.|.|", 21, 0)));

    m_gen.SetText("E");
    EXPECT_EQ(m_gen.EstimateBytes(), 6400);
    m_gen.SetText("");
    EXPECT_EQ(m_gen.EstimateBytes(), 1600);
}

TEST_F(CodeWaveGenTest, ExistingFileIsReplaced) {
    {
        std::ofstream junk(m_dir / "out.wav", std::ios::binary);
        junk << std::string(100000, 'x');
    }
    EXPECT_EQ(Generate("E").size(), 5422U);
}

TEST_F(CodeWaveGenTest, RenderCharacterAdvancesByWhatItWroteAndStepsOnce) {
    m_gen.SetFarnsworthFactor(2);
    std::vector<std::byte> buffer(100000, std::byte{0x55});
    const char* texts = "E- @[";
    for (const char* c = texts; *c != '\0'; ++c) {
        std::fill(buffer.begin(), buffer.end(), std::byte{0x55});
        const int before = m_progress.steps;
        std::byte* end = m_gen.RenderCharacter(buffer.data(), *c, 13);
        EXPECT_EQ(end - buffer.data(), m_gen.CharacterBytes(*c, 13)) << *c;
        EXPECT_EQ(buffer[static_cast<std::size_t>(end - buffer.data())], std::byte{0x55});
        EXPECT_EQ(m_progress.steps, before + 1);
    }
    EXPECT_EQ(CCodeWaveGen::LookupPattern('^'), "-.-");
    EXPECT_EQ(CCodeWaveGen::LookupPattern('a'), "");
    EXPECT_EQ(CCodeWaveGen::LookupPattern(' '), " ");
}

TEST_F(CodeWaveGenTest, FormatFieldsComeFromTheSettersAndBlockAlignIsComputed) {
    EXPECT_EQ(m_gen.SetBitsPerSample(8), 8);
    EXPECT_EQ(m_gen.SetBlockAlign(7), 7);
    EXPECT_EQ(m_gen.SetAvgBytesPerSec(1), 1U);
    EXPECT_EQ(m_gen.SetSamplesPerSec(8000), 8000U);
    EXPECT_EQ(m_gen.SetChannels(2), 2);
    EXPECT_EQ(m_gen.SetFormatTag(1), 1);
    const std::string file = Generate("E");
    EXPECT_EQ(m_gen.GetBlockAlign(), 2);
    EXPECT_EQ(U16(file, 22), 2);
    EXPECT_EQ(U32(file, 24), 8000U);
    EXPECT_EQ(U32(file, 28), 16000U);
    EXPECT_EQ(U16(file, 32), 2);
    EXPECT_EQ(U16(file, 34), 8);
}

TEST_F(CodeWaveGenTest, RecordingGateStopsOnTheFiveCodesOnly) {
    for (unsigned code : {2U, 4U, 6U, 7U, 32U}) {
        ScriptedGate gate;
        gate.openResult = code;
        m_gen.SetRecordingGate(&gate);
        fs::remove(m_dir / "out.wav");
        m_target.posts.clear();
        Generate("E");
        EXPECT_FALSE(fs::exists(m_dir / "out.wav")) << code;
        EXPECT_TRUE(m_target.posts.empty()) << code;
        EXPECT_EQ(gate.calls, "open ") << code;
        EXPECT_FALSE(m_gen.LastError().empty());
    }
    ScriptedGate other;
    other.openResult = 1;
    m_gen.SetRecordingGate(&other);
    EXPECT_EQ(Generate("E").size(), 5422U);
    EXPECT_EQ(other.calls, "open prepare add unprepare close");
    EXPECT_EQ(other.opened.samplesPerSec, 11025U);
    EXPECT_EQ(other.opened.avgBytesPerSec, 22050U);
    EXPECT_EQ(other.opened.blockAlign, 2);
    EXPECT_EQ(other.opened.bitsPerSample, 16);
    m_gen.SetRecordingGate(nullptr);
}

TEST_F(CodeWaveGenTest, RefusedBufferEndsWithoutFileOrPostAndLeavesTheDeviceOpen) {
    for (unsigned code : {5U, 11U}) {
        ScriptedGate gate;
        gate.prepareResult = code;
        m_gen.SetRecordingGate(&gate);
        m_target.posts.clear();
        fs::remove(m_dir / "out.wav");
        Generate("E");
        EXPECT_EQ(gate.calls, "open prepare ");
        EXPECT_FALSE(fs::exists(m_dir / "out.wav"));
        EXPECT_TRUE(m_target.posts.empty());
    }
    m_gen.SetRecordingGate(nullptr);
}

TEST_F(CodeWaveGenTest, UnwritablePlacesEndQuietlyButStillPost) {
    m_gen.SetFolder((m_dir / "missing" / "").string());
    Generate("PARIS");
    EXPECT_NE(m_gen.LastError().find("cannot create"), std::string::npos) << m_gen.LastError();
    EXPECT_EQ(m_target.posts.size(), 1U);
    EXPECT_EQ(m_progress.steps, 5);

    if (fs::exists("/dev/full")) {
        m_gen.SetFolder("/dev/");
        m_gen.SetFileName("full");
        m_gen.SetText("PARIS PARIS PARIS");
        m_gen.GenerateFile();
        EXPECT_NE(m_gen.LastError().find("cannot write"), std::string::npos) << m_gen.LastError();
        EXPECT_EQ(m_target.posts.size(), 2U);
        EXPECT_EQ(m_progress.steps, 5 + 17);
    }

    // A full disk, as a file size limit: the header goes out, the samples do not, and no cut
    // file is left behind.
    m_gen.SetFolder((m_dir / "").string());
    m_gen.SetFileName("cut.wav");
    {
        const FileSizeLimit full(4096);
        m_gen.GenerateFile();
    }
    EXPECT_NE(m_gen.LastError().find(std::strerror(EFBIG)), std::string::npos) << m_gen.LastError();
    EXPECT_FALSE(fs::exists(m_dir / "cut.wav"));
}

// A field of /proc/self/status in KiB ("VmRSS", "VmHWM"), or -1.
long StatusKiB(const std::string& field) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(field + ":", 0) == 0) {
            return std::stol(line.substr(field.size() + 1));
        }
    }
    return -1;
}

std::string MillionCharacters() {
    std::string text;
    const std::string words = "PARIS CQ DE K5AB 73 ? ";
    while (text.size() < 1000000)
        text += words;
    text.resize(1000000);
    return text;
}

TEST_F(CodeWaveGenTest, MillionCharacterTextKeepsMemoryFlat) {
    // A one-buffer rendering of this text at 40 WPM would take more than 3 GB.
    m_gen.SetWordsPerMinute(40);
    m_gen.SetText(MillionCharacters());
    ASSERT_GT(m_gen.RenderedBytes(), 3LL << 30);
    ASSERT_LT(m_gen.RenderedBytes(), 4LL << 30);
    m_gen.SetFolder("/dev/");
    m_gen.SetFileName("null");
    // The peak is taken of the rendering alone: "5" resets the process's high-water mark, so
    // neither the libraries loaded nor the tests before count.
    std::ofstream("/proc/self/clear_refs") << "5";
    const long before = StatusKiB("VmRSS");
    m_gen.GenerateFile();
    const long peak = StatusKiB("VmHWM");
    EXPECT_EQ(m_gen.LastError(), "");
    EXPECT_EQ(m_progress.steps, 1000000);
    ASSERT_GT(before, 0);
    EXPECT_LT(peak - before, 32 * 1024) << "KiB added to the resident set while rendering";
}

TEST_F(CodeWaveGenTest, TextLongerThanAWavFileCanHoldEndsAtTheLimitAndSaysSo) {
    m_gen.SetWordsPerMinute(20);
    m_gen.SetText(MillionCharacters());
    ASSERT_GT(m_gen.RenderedBytes(), 4LL << 30);
    m_gen.SetFolder("/dev/");
    m_gen.SetFileName("null");
    m_gen.GenerateFile();
    EXPECT_NE(m_gen.LastError().find("4 GB"), std::string::npos) << m_gen.LastError();
    EXPECT_EQ(m_progress.steps, 1000000);
    EXPECT_EQ(m_target.posts.size(), 1U);
}

}  // namespace
