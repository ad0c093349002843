// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CSendCommands.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <sstream>

#include "cli/CCommandLineTool.h"
#include "model/CMemoryProfile.h"

namespace {

struct Result {
    int status;
    std::string out;
    std::string err;
};

Result DecodeAudio(const std::vector<std::string>& files) {
    std::ostringstream out;
    std::ostringstream err;
    const int status = SendCommands::DecodeAudio(files, out, err);
    return {status, out.str(), err.str()};
}

void Put(std::ofstream& file, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        file.put(static_cast<char>((value >> (8 * i)) & 0xFF));
    }
}

/// A WAV file of a format tag with these 16-bit mono samples.
void WriteWave(const std::string& name, std::uint16_t formatTag,
               const std::vector<std::int16_t>& samples) {
    std::ofstream file(name, std::ios::binary);
    const auto dataBytes = static_cast<std::uint32_t>(2 * samples.size());
    file << "RIFF";
    Put(file, 36 + dataBytes, 4);
    file << "WAVEfmt ";
    Put(file, 16, 4);
    Put(file, formatTag, 2);
    Put(file, 1, 2);
    Put(file, 8000, 4);
    Put(file, 16000, 4);
    Put(file, 2, 2);
    Put(file, 16, 2);
    file << "data";
    Put(file, dataBytes, 4);
    for (const std::int16_t s : samples) {
        Put(file, static_cast<std::uint16_t>(s), 2);
    }
}

TEST(SendCommands, DecodeAudioReadsBackTheToolsOwnRendering) {
    QTemporaryDir dir;
    const std::string wav = dir.filePath("cq.wav").toStdString();
    CMemoryProfile profile;
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    CCommandLineTool tool(profile, in, out, err, [] { return 1700000000LL; });
    ASSERT_EQ(tool.Run({"wav", "--wpm", "18", "-o", wav, "CQ DE K5AB"}), 0);
    EXPECT_EQ(tool.Run({"decode-audio", wav}), 0);
    // The generator's blocks make an 18 WPM file key at 30 WPM (14 blocks of 2.9 ms a dit).
    EXPECT_EQ(out.str(), "CQ DE K5AB\nestimated 30 WPM (tone 1034 Hz)\n");
    EXPECT_EQ(err.str(), "");
}

TEST(SendCommands, DecodeAudioSaysInOneLineWhyAFileCannotBeRead) {
    QTemporaryDir dir;
    const auto path = [&](const char* name) { return dir.filePath(name).toStdString(); };
    std::ofstream(path("text.wav")) << "not a sound at all";
    WriteWave(path("float.wav"), 3, {1, 2, 3, 4});
    WriteWave(path("empty.wav"), 1, {});
    WriteWave(path("silent.wav"), 1, std::vector<std::int16_t>(16000, 0));
    struct Case {
        std::string file;
        const char* line;
    };
    const Case cases[] = {
        {path("missing.wav"), ": cannot open "},
        {path("text.wav"), ": not a WAV file\n"},
        {path("float.wav"), ": not PCM (format 3)\n"},
        {path("empty.wav"), ": empty: the file holds no samples\n"},
        {path("silent.wav"), ": no keyed tone found\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const Result result = DecodeAudio({c.file});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err.rfind("tonwerk-cli decode-audio: " + c.file + c.line, 0), 0U)
            << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
    }
    EXPECT_EQ(DecodeAudio({}).status, 2);
}

}  // namespace
