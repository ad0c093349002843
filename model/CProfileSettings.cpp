// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CProfileSettings.h"

#include <string>

namespace {

std::string LetterEntry(char c) {
    std::string entry = "Letter_";
    entry += c;
    return entry;
}

}  // namespace

int CProfileSettings::GetLetter(char c) const { return Read(kSettings, LetterEntry(c), 0); }

void CProfileSettings::SetLetter(char c, int value) { Write(kSettings, LetterEntry(c), value); }

CodeTiming CProfileSettings::ReadSheetTiming() const {
    CodeTiming timing;
    timing.PauseDit = Read(kUserSettings, "PauseDit", 1);
    timing.PauseDah = Read(kUserSettings, "PauseDah", 3);
    timing.PauseChar = Read(kUserSettings, "PauseChar", 3);
    timing.PauseWord = Read(kUserSettings, "PauseWord", 7);
    timing.ToneMHz = Read(kUserSettings, "ToneMHz", 750);
    timing.WordRate = Read(kSettings, "WordRate", 15);
    timing.SpeechDelay = Read(kUserSettings, "SpeechDelay", 125);
    timing.Actor = Read(kUserSettings, "Actor", 0);
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
