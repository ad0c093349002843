// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CCommandLineTool.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "model/CMemoryProfile.h"
#include "model/CRandomText.h"

namespace {

long long FixedClock() {
    return 1700000000;
}

struct Result {
    int status;
    std::string out;
    std::string err;
};

Result RunTool(std::vector<std::string> args, const std::string& input = {},
               CMemoryProfile* profile = nullptr) {
    CMemoryProfile empty;
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream err;
    CCommandLineTool tool(profile ? *profile : empty, in, out, err, &FixedClock);
    const int status = tool.Run(args);
    return {status, out.str(), err.str()};
}

TEST(CommandLineTool, EncodeFromArgumentOrStandardInput) {
    EXPECT_EQ(RunTool({"encode", "AB C"}).out, " .- -... / -.-.\n");
    EXPECT_EQ(RunTool({"encode"}, "a b\n").out, " .- / -...\n");
    EXPECT_EQ(RunTool({"encode", "CQ", "DE", "K5AB"}).out, RunTool({"encode", "CQ DE K5AB"}).out);
    EXPECT_EQ(RunTool({"encode", "--double-space", "E"}).out, " . \n");
    EXPECT_EQ(RunTool({"encode", "--", "--"}).out, " -....- -....-\n");
}

TEST(CommandLineTool, EncodeFollowsTheProfilesDoubleSpaceUnlessToldOtherwise) {
    CMemoryProfile profile;
    profile.WriteInt("UserSettings", "DblSpace", 1);
    EXPECT_EQ(RunTool({"encode", "E"}, {}, &profile).out, " . \n");
    EXPECT_EQ(RunTool({"encode", "--no-double-space", "E"}, {}, &profile).out, " .\n");
    EXPECT_EQ(RunTool({"encode", "--double-space", "--no-double-space", "E"}).status, 2);
}

TEST(CommandLineTool, DecodeTreatsDashArgumentsAsCode) {
    EXPECT_EQ(RunTool({"decode", " .- / -... ?? ."}).out, "A BE\n");
    EXPECT_EQ(RunTool({"decode", "-.-."}).out, "C\n");
    EXPECT_EQ(RunTool({"decode"}, "... --- ...\n").out, "SOS\n");
}

TEST(CommandLineTool, EstimatePrintsClockAndSeconds) {
    EXPECT_EQ(RunTool({"estimate", "--wpm", "12", "PARIS "}).out, "00:00:04\n4.900\n");
    EXPECT_EQ(RunTool({"estimate", "--wpm", "15", "E"}).out, "00:00:00\n0.240\n");
    EXPECT_EQ(RunTool({"estimate", "--wpm", "12", "--farnsworth", "3", "E E"}).out,
              "00:00:02\n2.400\n");
    EXPECT_EQ(RunTool({"estimate", "--wpm", "20"}, "").out, "00:00:00\n0.000\n");
}

TEST(CommandLineTool, RandomAndCallSignsAreReproducible) {
    EXPECT_EQ(RunTool({"random", "--count", "2", "--size", "5", "--chars", "E", "--seed", "9"}).out,
              "EEEEE EEEEE \n");
    const Result a = RunTool({"random", "--count", "20", "--size", "5", "--chars", "?mk0"});
    const Result b = RunTool({"random", "--count", "20", "--size", "5", "--chars", "0km??"});
    EXPECT_EQ(a.status, 0);
    EXPECT_EQ(a.out, b.out);  // order, case and duplicates of SET do not matter
    EXPECT_EQ(a.out.find_first_not_of("KM0? \n"), std::string::npos);
    EXPECT_EQ(RunTool({"callsigns", "--count", "5"}).out,
              CRandomText::CallSigns(5, FixedClock()) + "\n");
    EXPECT_EQ(RunTool({"callsigns", "--count", "5", "--seed", "1000"}).out,
              CRandomText::CallSigns(5, 1000) + "\n");
}

TEST(CommandLineTool, UsageErrorsExitWithTwoAndOneLine) {
    const std::vector<std::vector<std::string>> wrong = {
        {"transmit"},
        {"estimate", "PARIS"},
        {"estimate", "--wpm", "fast", "PARIS"},
        {"estimate", "--wpm", "0", "PARIS"},
        {"estimate", "--wpm", "12x"},
        {"estimate", "--wpm", "99999999999999999999999"},
        {"estimate", "--wpm", "12", "--farnsworth", "-1"},
        {"estimate", "--wpm"},
        {"encode", "--loud"},
        {"random", "--count", "2", "--size", "5"},
        {"random", "--count", "2", "--size", "5", "--chars", "E<"},
        {"random", "--count", "-2", "--size", "5", "--chars", "E"},
        {"random", "--count", "2", "--size", "5", "--chars", ""},
        {"callsigns", "--count", "100000"},
    };
    for (const auto& args : wrong) {
        const Result result = RunTool(args);
        EXPECT_EQ(result.status, 2) << args[0] << ' ' << result.err;
        EXPECT_EQ(result.out, "") << args[0];
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    }
    EXPECT_EQ(RunTool({"random", "--count", "2", "--size", "5", "--chars", ""}).err,
              "tonwerk-cli random: Please select some characters to use in the generation.\n");
}

TEST(CommandLineTool, HelpAndVersion) {
    const Result help = RunTool({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* command :
         {"encode", "decode", "estimate", "random", "callsigns", "wav", "render", "play"}) {
        EXPECT_NE(help.out.find(command), std::string::npos) << command;
        const Result one = RunTool({command, "--help"});
        EXPECT_EQ(one.status, 0);
        EXPECT_EQ(one.out.rfind(std::string("Usage: tonwerk-cli ") + command, 0), 0u) << one.out;
    }
    EXPECT_EQ(RunTool({"--version"}).out, "tonwerk-cli 1.0.0\n");
    EXPECT_EQ(RunTool({}).status, 2);
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

TEST(CommandLineTool, WavWritesTheRenderedFile) {
    const std::string path = ::testing::TempDir() + "tonwerk-cli-wav.wav";
    Result r = RunTool({"wav", "--wpm", "12", "-o", path, "E"});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(ReadFile(path).size(), 5422u);
    // Text from standard input, Farnsworth spacing, the long option name.
    r = RunTool({"wav", "--wpm", "12", "--farnsworth", "1", "--output", path}, "e");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(ReadFile(path).size(), 46u + (21 + 21 + 42 + 11) * 64u);
    // "-o" after "--" is text, and the file is still required.
    r = RunTool({"wav", "--wpm", "12", "--", "-o", path});
    EXPECT_EQ(r.status, 2);
    std::remove(path.c_str());
}

TEST(CommandLineTool, WavReportsBadNumbersAndUnwritableFiles) {
    const std::string path = ::testing::TempDir() + "tonwerk-cli-wav-bad.wav";
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{"wav", "-o", path, "E"},
          {"wav", "--wpm", "0", "-o", path, "E"},
          {"wav", "--wpm", "12x", "-o", path, "E"},
          {"wav", "--wpm", "12", "--farnsworth", "-1", "-o", path, "E"},
          {"wav", "--wpm", "12", "E"},
          {"wav", "--wpm", "12", "-o"}}) {
        const Result r = RunTool(args);
        EXPECT_EQ(r.status, 2) << args.size();
        EXPECT_NE(r.err, "");
    }
    EXPECT_FALSE(std::ifstream(path).good());
    const Result missing =
        RunTool({"wav", "--wpm", "12", "-o", ::testing::TempDir() + "no/such/dir/x.wav", "E"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.err.find("tonwerk-cli wav: cannot create"), std::string::npos) << missing.err;
    const Result full = RunTool({"wav", "--wpm", "12", "-o", "/dev/full", "PARIS"});
    EXPECT_EQ(full.status, 1);
    EXPECT_NE(full.err.find("cannot write /dev/full"), std::string::npos) << full.err;
}

TEST(CommandLineTool, RenderPicksTheTypeAndLeavesNothingBehindOnFailure) {
    const std::string folder = ::testing::TempDir() + "tonwerk-cli-render/";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    const auto render = [&](std::vector<std::string> options) {
        options.insert(options.begin(), {"render", "--wpm", "20"});
        options.emplace_back("PARIS");
        return RunTool(options);
    };

    // The type from the extension or the option; a WAV file is the wav command's.
    const struct {
        std::vector<std::string> options;
        std::string file;
        std::string magic;
    } written[] = {
        {{"-o", folder + "a.ogg"}, "a.ogg", "OggS"},
        {{"--format", "Opus", "--quality", "2", "-o", folder + "a.bin"}, "a.bin", "OggS"},
        {{"-o", folder + "a.FLAC"}, "a.FLAC", "fLaC"},
        {{"--quality", "32", "-o", folder + "a.mp3"}, "a.mp3", "\xFF"},  // a frame
        {{"-o", folder + "a.wav"}, "a.wav", "RIFF"},
    };
    for (const auto& w : written) {
        const Result r = render(w.options);
        EXPECT_EQ(r.status, 0) << w.file << ": " << r.err;
        EXPECT_EQ(ReadFile(folder + w.file).substr(0, w.magic.size()), w.magic) << w.file;
    }
    EXPECT_EQ(RunTool({"wav", "--wpm", "20", "-o", folder + "b.wav", "PARIS"}).status, 0);
    EXPECT_EQ(ReadFile(folder + "a.wav"), ReadFile(folder + "b.wav"));
    // Without --quality the profile's MP3 bit rate holds: half of a.mp3's, about half its size.
    CMemoryProfile profile;
    profile.WriteInt("SoundFile", "Mp3BitRate", 16);
    const Result q =
        RunTool({"render", "--wpm", "20", "-o", folder + "q.mp3", "PARIS"}, {}, &profile);
    EXPECT_EQ(q.status, 0) << q.err;
    EXPECT_LT(ReadFile(folder + "q.mp3").size() * 10, ReadFile(folder + "a.mp3").size() * 6);

    // One line and status 1 for a type or a place that cannot be written, 2 for wrong usage.
    const struct {
        std::vector<std::string> options;
        int status;
        std::string message;
    } failing[] = {
        {{"-o", folder + "c.xyz"}, 1, "cannot tell the file type of " + folder + "c.xyz"},
        {{"-o", folder + "c"}, 1, "cannot tell the file type"},
        {{"--format", "aac", "-o", folder + "c.ogg"}, 1, "unknown file type 'aac'"},
        {{"-o", folder + "no/such/c.opus"}, 1, "cannot create " + folder + "no/such/c.opus"},
        {{"--format", "mp3", "-o", "/dev/full"}, 1, "cannot write /dev/full"},
        {{"--quality", "11", "-o", folder + "c.ogg"}, 2, "--quality takes a whole number"},
        {{"--quality", "400", "-o", folder + "c.mp3"}, 2, "--quality takes a whole number"},
    };
    for (const auto& f : failing) {
        const Result r = render(f.options);
        EXPECT_EQ(r.status, f.status) << f.message;
        EXPECT_NE(r.err.find(f.message), std::string::npos) << r.err;
        EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
    }
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        EXPECT_NE(entry.path().filename().string()[0], 'c') << entry.path();
        ++files;
    }
    EXPECT_EQ(files, std::size(written) + 2);
    std::filesystem::remove_all(folder);
}

TEST(CommandLineTool, PlayPrintsEachCharacterAsItIsSent) {
    const auto start = std::chrono::steady_clock::now();
    const Result r = RunTool({"play", "--wpm", "60", "--pitch", "0", "e e"});
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "E E\n");
    // 60 WPM: dit 20 ms; "E E" keys 1 + 2 + 5 + 1 + 2 = 11 dits, silently at pitch 0.
    EXPECT_GE(seconds, 0.2);
    EXPECT_LT(seconds, 1.0);
    EXPECT_EQ(RunTool({"play", "--wpm", "60", ""}).out, "");
    EXPECT_EQ(RunTool({"play", "--wpm", "60", "--pitch", "-1", "E"}).status, 2);
    EXPECT_EQ(RunTool({"play", "E"}).status, 2);
}

// Ctrl+C on the real executable: the run ends after the character being sent.
TEST(CommandLineToolBinary, PlayStopsOnInterrupt) {
    const char* binaryDir = std::getenv("TONWERK_BINARY_DIR");
    ASSERT_NE(binaryDir, nullptr);
    const std::string tool = std::string(binaryDir) + "/cli/tonwerk-cli";
    const std::string out = ::testing::TempDir() + "tonwerk-cli-play.txt";
    // Full allocation stacks let the leak checker tell the sound plugins' loaders from ours.
    const char* asan = std::getenv("ASAN_OPTIONS");
    const std::string line = "ASAN_OPTIONS=" + std::string(asan ? asan : "") +
                             ":fast_unwind_on_malloc=0 XDG_CONFIG_HOME=" + ::testing::TempDir() +
                             " " + tool + " play --wpm 12 --pitch 0 PARIS PARIS PARIS > " + out +
                             " 2>/dev/null & pid=$!; sleep 0.5; kill -INT $pid; wait $pid";
    const auto start = std::chrono::steady_clock::now();
    const int status = std::system(line.c_str());
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 130);
    // The whole text takes 8.2 s; a stop ends within one character's time.
    EXPECT_LT(seconds, 2.5);
    const std::string printed = ReadFile(out);
    EXPECT_FALSE(printed.empty());
    EXPECT_EQ(std::string("PARIS PARIS PARIS\n").rfind(printed.substr(0, printed.size() - 1), 0),
              0U)
        << printed;
    EXPECT_LT(printed.size(), 8U);
    std::remove(out.c_str());
}

// Input that cannot be read and output that cannot be written: one line on standard error and a
// failing exit, never an abort.
TEST(CommandLineToolBinary, UnreadableInputAndFullOutputSaySo) {
    const char* binaryDir = std::getenv("TONWERK_BINARY_DIR");
    ASSERT_NE(binaryDir, nullptr);
    const std::string tool = std::string(binaryDir) + "/cli/tonwerk-cli";
    const std::string err = ::testing::TempDir() + "tonwerk-cli-err.txt";
    const std::pair<const char*, const char*> rows[] = {
        {"encode < /", "tonwerk-cli encode: cannot read standard input: Is a directory\n"},
        {"encode E > /dev/full",
         "tonwerk-cli encode: cannot write the output: No space left on device\n"},
        {"random --count 5 --size 5 --chars AB > /dev/full",
         "tonwerk-cli random: cannot write the output: No space left on device\n"},
    };
    for (const auto& [command, said] : rows) {
        const std::string line =
            "XDG_CONFIG_HOME=" + ::testing::TempDir() + " " + tool + " " + command + " 2> " + err;
        const int status = std::system(line.c_str());
        ASSERT_TRUE(WIFEXITED(status)) << command;
        EXPECT_EQ(WEXITSTATUS(status), 1) << command;
        EXPECT_EQ(ReadFile(err), said) << command;
    }
    std::remove(err.c_str());
}

// The real executable, fed binary bytes and a large text through its standard input.
TEST(CommandLineToolBinary, SurvivesAnyInput) {
    const char* binaryDir = std::getenv("TONWERK_BINARY_DIR");
    ASSERT_NE(binaryDir, nullptr);
    const std::string tool = std::string(binaryDir) + "/cli/tonwerk-cli";
    const std::string input = ::testing::TempDir() + "tonwerk-cli-input.bin";
    std::mt19937 engine(5);
    {
        std::ofstream file(input, std::ios::binary);
        for (int i = 0; i < 3'000'000; ++i) {
            file.put(static_cast<char>(engine()));
        }
    }
    for (const char* command : {"encode", "decode", "estimate --wpm 5 --farnsworth 99",
                                "wav --wpm 200 --farnsworth 9 -o /dev/null"}) {
        const std::string line = "XDG_CONFIG_HOME=" + ::testing::TempDir() + " " + tool + " " +
                                 command + " < " + input + " > /dev/null";
        const int status = std::system(line.c_str());
        ASSERT_TRUE(WIFEXITED(status)) << command;
        EXPECT_EQ(WEXITSTATUS(status), 0) << command;
    }
    const int status = std::system((tool + " frobnicate 2> /dev/null").c_str());
    EXPECT_EQ(WEXITSTATUS(status), 2);
}

}  // namespace
