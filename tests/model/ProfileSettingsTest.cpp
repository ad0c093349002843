// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CProfileSettings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "model/CMemoryProfile.h"

namespace {

struct Accessor {
    const char* section;
    const char* entry;
    int defaultValue;
    int (CProfileSettings::*get)() const;
    void (CProfileSettings::*set)(int);
};

// clang-format off
const Accessor kAccessors[] = {
    {"UserSettings", "PauseDit", 1, &CProfileSettings::GetPauseDit, &CProfileSettings::SetPauseDit},
    {"UserSettings", "PauseDah", 1, &CProfileSettings::GetPauseDah, &CProfileSettings::SetPauseDah},
    {"UserSettings", "PauseChar", 1, &CProfileSettings::GetPauseChar, &CProfileSettings::SetPauseChar},
    {"UserSettings", "PauseWord", 1, &CProfileSettings::GetPauseWord, &CProfileSettings::SetPauseWord},
    {"UserSettings", "ToneMHz", 1000, &CProfileSettings::GetToneMHz, &CProfileSettings::SetToneMHz},
    {"Settings", "WordRate", 15, &CProfileSettings::GetWordRate, &CProfileSettings::SetWordRate},
    {"UserSettings", "SpeechDelay", 125, &CProfileSettings::GetSpeechDelay, &CProfileSettings::SetSpeechDelay},
    {"UserSettings", "Actor", 0, &CProfileSettings::GetActor, &CProfileSettings::SetActor},
    {"Settings", "FarnsworthFactor", 0, &CProfileSettings::GetFarnsworthFactor, &CProfileSettings::SetFarnsworthFactor},
    {"UserSettings", "DblSpace", 0, &CProfileSettings::GetDblSpace, &CProfileSettings::SetDblSpace},
    {"UserSettings", "NumTog", 0, &CProfileSettings::GetNumTog, &CProfileSettings::SetNumTog},
    {"UserSettings", "RanProSnTog", 0, &CProfileSettings::GetRanProSnTog, &CProfileSettings::SetRanProSnTog},
    {"Settings", "RandomWordCount", 20, &CProfileSettings::GetRandomWordCount, &CProfileSettings::SetRandomWordCount},
    {"Settings", "RandomWordSize", 5, &CProfileSettings::GetRandomWordSize, &CProfileSettings::SetRandomWordSize},
    {"UserSettings", "Mute", 0, &CProfileSettings::GetMute, &CProfileSettings::SetMute},
    {"UserSettings", "Speech", 0, &CProfileSettings::GetSpeech, &CProfileSettings::SetSpeech},
    {"UserSettings", "AntimateKey", 0, &CProfileSettings::GetAntimateKey, &CProfileSettings::SetAntimateKey},
};
// clang-format on

TEST(ProfileSettings, SingleValueReadersHaveTheirOwnDefaults) {
    CMemoryProfile profile;
    CProfileSettings settings(profile);
    for (const Accessor& a : kAccessors) {
        EXPECT_EQ((settings.*a.get)(), a.defaultValue) << a.entry;
    }
    EXPECT_EQ(settings.GetLetter('A'), 0);
}

TEST(ProfileSettings, WritesGoToTheirSectionAndEveryReadSeesTheLastWrite) {
    CMemoryProfile profile;
    CProfileSettings settings(profile);
    for (const Accessor& a : kAccessors) {
        (settings.*a.set)(a.defaultValue + 1);
        EXPECT_EQ(profile.GetInt(a.section, a.entry, -1), a.defaultValue + 1) << a.entry;
        EXPECT_EQ((settings.*a.get)(), a.defaultValue + 1) << a.entry;
        profile.WriteInt(a.section, a.entry, a.defaultValue + 2);  // behind the reader's back
        EXPECT_EQ((settings.*a.get)(), a.defaultValue + 2) << a.entry;
    }
}

TEST(ProfileSettings, LettersAreStoredByCharacter) {
    CMemoryProfile profile;
    CProfileSettings settings(profile);
    settings.SetLetter('A', 1);
    settings.SetLetter('7', 1);
    settings.SetLetter('?', 1);
    EXPECT_EQ(profile.GetInt("Settings", "Letter_A", 0), 1);
    EXPECT_EQ(profile.GetInt("Settings", "Letter_7", 0), 1);
    EXPECT_EQ(profile.GetInt("Settings", "Letter_?", 0), 1);
    EXPECT_EQ(settings.GetLetter('?'), 1);
    EXPECT_EQ(settings.GetLetter('B'), 0);
}

TEST(ProfileSettings, SheetReadsWithItsOwnDefaults) {
    CMemoryProfile profile;
    CProfileSettings settings(profile);
    const CodeTiming sheet = settings.ReadSheetTiming();
    EXPECT_EQ(sheet.PauseDit, 1);
    EXPECT_EQ(sheet.PauseDah, 3);
    EXPECT_EQ(sheet.PauseChar, 3);
    EXPECT_EQ(sheet.PauseWord, 7);
    EXPECT_EQ(sheet.ToneMHz, 750);
    EXPECT_EQ(sheet.WordRate, 15);
    EXPECT_EQ(sheet.SpeechDelay, 125);
    EXPECT_EQ(sheet.Actor, 0);
    // The practice view's readers differ on purpose.
    EXPECT_EQ(settings.GetToneMHz(), 1000);
    EXPECT_EQ(settings.GetPauseDah(), 1);
}

TEST(ProfileSettings, SaveSettingsWritesAllEight) {
    CMemoryProfile profile;
    CProfileSettings settings(profile);
    const CodeTiming timing{15, 3, 1, 35, 750, 12, 200, 8};
    settings.SaveSettings(timing);
    EXPECT_EQ(settings.ReadSheetTiming(), timing);
    EXPECT_EQ(profile.GetInt("UserSettings", "PauseChar", 0), 15);
    EXPECT_EQ(profile.GetInt("Settings", "WordRate", 0), 12);
    EXPECT_EQ(profile.GetInt("UserSettings", "Actor", 0), 8);
}

// A broken profile cannot stop the trainer nor make it wait for weeks: timing values are read
// into their ranges, by the practice view and the settings sheet alike; an unknown voice is the
// first one.
TEST(ProfileSettings, OutOfRangeValuesAreReadIntoTheirRange) {
    struct Row {
        const char* section;
        const char* entry;
        int stored;
        int read;
        std::int32_t CodeTiming::*field;
    };
    constexpr int kHuge = 2147483647;
    const Row rows[] = {
        {"Settings", "WordRate", 0, 5, &CodeTiming::WordRate},
        {"Settings", "WordRate", kHuge, 99, &CodeTiming::WordRate},
        {"Settings", "WordRate", -40, 5, &CodeTiming::WordRate},
        {"UserSettings", "ToneMHz", 0, 100, &CodeTiming::ToneMHz},
        {"UserSettings", "ToneMHz", kHuge, 1800, &CodeTiming::ToneMHz},
        {"UserSettings", "SpeechDelay", kHuge, 10000, &CodeTiming::SpeechDelay},
        {"UserSettings", "SpeechDelay", -5, 0, &CodeTiming::SpeechDelay},
        {"UserSettings", "Actor", 9, 0, &CodeTiming::Actor},
        {"UserSettings", "Actor", -1, 0, &CodeTiming::Actor},
        {"UserSettings", "PauseDit", 0, 1, &CodeTiming::PauseDit},
        {"UserSettings", "PauseWord", kHuge, 500, &CodeTiming::PauseWord},
        {"Settings", "FarnsworthFactor", 100, 99, nullptr},
        {"Settings", "FarnsworthFactor", -1, 0, nullptr},
    };
    for (const Row& row : rows) {
        CMemoryProfile profile;
        CProfileSettings settings(profile);
        profile.WriteInt(row.section, row.entry, row.stored);
        const auto reader =
            std::find_if(std::begin(kAccessors), std::end(kAccessors),
                         [&](const Accessor& a) { return a.entry == std::string_view(row.entry); });
        ASSERT_NE(reader, std::end(kAccessors));
        EXPECT_EQ((settings.*reader->get)(), row.read) << row.entry << " " << row.stored;
        if (row.field != nullptr) {
            EXPECT_EQ(settings.ReadSheetTiming().*row.field, row.read) << row.entry;
        }
    }
    CMemoryProfile profile;
    profile.WriteString("UserSettings", "ToneMHz", "loud");  // not an integer: the default
    EXPECT_EQ(CProfileSettings(profile).GetToneMHz(), 1000);
}

}  // namespace
