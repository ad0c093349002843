// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CSendCommands.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

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

TEST(SendCommands, DecodeAudioFailsWithOneLine) {
    const Result missing = DecodeAudio({"/nonexistent/cq.wav"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err,
              "tonwerk-cli decode-audio: /nonexistent/cq.wav: cannot open /nonexistent/cq.wav: "
              "No such file or directory\n");
    EXPECT_EQ(DecodeAudio({}).status, 2);
}

}  // namespace
