// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/WaveFileNames.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>

#include "model/SpeechClips.h"

namespace {

TEST(WaveFileNames, EveryCodeBecomesWav) {
    EXPECT_EQ(DefaultWaveFileName("/home/ham/lesson.code"), "/home/ham/lesson.wav");
    EXPECT_EQ(DefaultWaveFileName("/home/ham/codes/x.code"), "/home/ham/wavs/x.wav");
    EXPECT_EQ(DefaultWaveFileName(""), "");
    EXPECT_EQ(DefaultWaveFileName("codecode"), "wavwav");
    EXPECT_EQ(DefaultWaveFileName("CODE.code"), "CODE.wav");
}

TEST(WaveFileNames, SplitAtTheLastSeparatorAndJoinWithOne) {
    const std::string sep(1, kPathSeparator);
    EXPECT_EQ(SplitFolderAndName(sep + "tmp" + sep + "a.wav"),
              std::make_pair(sep + "tmp" + sep, std::string("a.wav")));
    EXPECT_EQ(SplitFolderAndName("a.wav"), std::make_pair(std::string(), std::string("a.wav")));
    EXPECT_EQ(SplitFolderAndName(sep), std::make_pair(sep, std::string()));
    EXPECT_EQ(JoinFolderAndName("music", "a.wav"), "music" + sep + "a.wav");
    // A root folder already ends in a separator; one is added all the same.
    EXPECT_EQ(JoinFolderAndName(sep, "a.wav"), sep + sep + "a.wav");
}

TEST(SpeechClips, IdsOfLettersAndVoices) {
    EXPECT_EQ(SpeechClipId(0, 'A'), 134);
    EXPECT_EQ(SpeechClipId(0, 'Z'), 159);
    EXPECT_EQ(SpeechClipId(1, 'A'), 170);
    EXPECT_EQ(SpeechClipId(3, 'C'), 224);
    EXPECT_EQ(SpeechClipId(3, 'c'), 224);
    EXPECT_EQ(SpeechClipId(8, 'Z'), 377);
    EXPECT_EQ(SpeechClipId(9, 'B'), 135);
    EXPECT_EQ(SpeechClipId(-1, 'B'), 135);
    EXPECT_EQ(SpeechClipId(0, '5'), 0);
    EXPECT_EQ(SpeechClipId(0, ' '), 0);
}

TEST(SpeechClips, EveryLetterOfEveryVoiceHasAMonoRecording) {
    const char* source = std::getenv("TONWERK_SOURCE_DIR");
    ASSERT_NE(source, nullptr);
    std::set<int> ids;
    for (int actor = 0; actor < kVoiceCount; ++actor) {
        for (char letter = 'A'; letter <= 'Z'; ++letter) {
            const int id = SpeechClipId(actor, letter);
            ids.insert(id);
            std::ifstream clip(std::string(source) + "/res/speech/" + std::to_string(id) + ".wav",
                               std::ios::binary);
            ASSERT_TRUE(clip) << id;
            char header[44] = {};
            clip.read(header, sizeof header);
            ASSERT_EQ(clip.gcount(), 44) << id;
            EXPECT_EQ(std::string(header, 4), "RIFF") << id;
            EXPECT_EQ(std::string(header + 8, 8), "WAVEfmt ") << id;
            EXPECT_EQ(header[22], 1) << id;  // mono
        }
    }
    EXPECT_EQ(ids.size(), 234u);
}

}  // namespace
