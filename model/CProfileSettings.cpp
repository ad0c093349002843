// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CProfileSettings.h"

#include <algorithm>
#include <string>

namespace {

std::string LetterEntry(char c) {
    std::string entry = "Letter_";
    entry += c;
    return entry;
}

}  // namespace

int CProfileSettings::GetLetter(char c) const {
    return Read(kSettings, LetterEntry(c), 0);
}

void CProfileSettings::SetLetter(char c, int value) {
    Write(kSettings, LetterEntry(c), value);
}

int CProfileSettings::Clamped(std::string_view section, std::string_view entry, int defaultValue,
                              Range range) const {
    return std::clamp(Read(section, entry, defaultValue), range.lowest, range.highest);
}

int CProfileSettings::Voice(int defaultValue) const {
    const int actor = Read(kUserSettings, "Actor", defaultValue);
    return actor >= kActorRange.lowest && actor <= kActorRange.highest ? actor : defaultValue;
}

CodeTiming CProfileSettings::ReadSheetTiming() const {
    CodeTiming timing;
    timing.PauseDit = Clamped(kUserSettings, "PauseDit", 1, kPauseRange);
    timing.PauseDah = Clamped(kUserSettings, "PauseDah", 3, kPauseRange);
    timing.PauseChar = Clamped(kUserSettings, "PauseChar", 3, kPauseRange);
    timing.PauseWord = Clamped(kUserSettings, "PauseWord", 7, kPauseRange);
    timing.ToneMHz = Clamped(kUserSettings, "ToneMHz", 750, kToneRange);
    timing.WordRate = Clamped(kSettings, "WordRate", 15, kWordRateRange);
    timing.SpeechDelay = Clamped(kUserSettings, "SpeechDelay", 125, kSpeechDelayRange);
    timing.Actor = Voice(0);
    return timing;
}

void CProfileSettings::SaveSettings(const CodeTiming& timing) {
    SetPauseDit(timing.PauseDit);
    SetPauseDah(timing.PauseDah);
    SetPauseChar(timing.PauseChar);
    SetPauseWord(timing.PauseWord);
    SetToneMHz(timing.ToneMHz);
    SetWordRate(timing.WordRate);
    SetSpeechDelay(timing.SpeechDelay);
    SetActor(timing.Actor);
}
