// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/CodeTiming.h"
#include "model/IProfile.h"

/// Readers and writers of every practice setting, one profile access each. The defaults are
/// those of the single-value readers; the settings sheet reads the CodeTiming values with its
/// own, different defaults through ReadSheetTiming. Nothing is cached.
class CProfileSettings {
public:
    static constexpr std::string_view kUserSettings = "UserSettings";
    static constexpr std::string_view kSettings = "Settings";

    explicit CProfileSettings(IProfile& profile) : m_profile(profile) {}

    IProfile& Profile() const { return m_profile; }

    int GetPauseDit() const { return Read(kUserSettings, "PauseDit", 1); }
    int GetPauseDah() const { return Read(kUserSettings, "PauseDah", 1); }
    int GetPauseChar() const { return Read(kUserSettings, "PauseChar", 1); }
    int GetPauseWord() const { return Read(kUserSettings, "PauseWord", 1); }
    int GetToneMHz() const { return Read(kUserSettings, "ToneMHz", 1000); }
    int GetWordRate() const { return Read(kSettings, "WordRate", 15); }
    int GetSpeechDelay() const { return Read(kUserSettings, "SpeechDelay", 125); }
    int GetActor() const { return Read(kUserSettings, "Actor", 0); }
    int GetFarnsworthFactor() const { return Read(kSettings, "FarnsworthFactor", 0); }
    int GetDblSpace() const { return Read(kUserSettings, "DblSpace", 0); }
    int GetNumTog() const { return Read(kUserSettings, "NumTog", 0); }
    int GetRanProSnTog() const { return Read(kUserSettings, "RanProSnTog", 0); }
    int GetRandomWordCount() const { return Read(kSettings, "RandomWordCount", 20); }
    int GetRandomWordSize() const { return Read(kSettings, "RandomWordSize", 5); }
    int GetMute() const { return Read(kUserSettings, "Mute", 0); }
    int GetSpeech() const { return Read(kUserSettings, "Speech", 0); }
    int GetAntimateKey() const { return Read(kUserSettings, "AntimateKey", 0); }
    /// The checked state of one selection button, stored as "Letter_" + the character.
    int GetLetter(char c) const;

    void SetPauseDit(int value) { Write(kUserSettings, "PauseDit", value); }
    void SetPauseDah(int value) { Write(kUserSettings, "PauseDah", value); }
    void SetPauseChar(int value) { Write(kUserSettings, "PauseChar", value); }
    void SetPauseWord(int value) { Write(kUserSettings, "PauseWord", value); }
    void SetToneMHz(int value) { Write(kUserSettings, "ToneMHz", value); }
    void SetWordRate(int value) { Write(kSettings, "WordRate", value); }
    void SetSpeechDelay(int value) { Write(kUserSettings, "SpeechDelay", value); }
    void SetActor(int value) { Write(kUserSettings, "Actor", value); }
    void SetFarnsworthFactor(int value) { Write(kSettings, "FarnsworthFactor", value); }
    void SetDblSpace(int value) { Write(kUserSettings, "DblSpace", value); }
    void SetNumTog(int value) { Write(kUserSettings, "NumTog", value); }
    void SetRanProSnTog(int value) { Write(kUserSettings, "RanProSnTog", value); }
    void SetRandomWordCount(int value) { Write(kSettings, "RandomWordCount", value); }
    void SetRandomWordSize(int value) { Write(kSettings, "RandomWordSize", value); }
    void SetMute(int value) { Write(kUserSettings, "Mute", value); }
    void SetSpeech(int value) { Write(kUserSettings, "Speech", value); }
    void SetAntimateKey(int value) { Write(kUserSettings, "AntimateKey", value); }
    void SetLetter(char c, int value);

    /// The eight CodeTiming values as the settings sheet reads them: defaults 1, 3, 3, 7, 750,
    /// 15, 125 and 0.
    CodeTiming ReadSheetTiming() const;
    /// Writes the eight values in the order PauseDit, PauseDah, PauseChar, PauseWord, ToneMHz,
    /// WordRate, SpeechDelay, Actor.
    void SaveSettings(const CodeTiming& timing);

private:
    int Read(std::string_view section, std::string_view entry, int defaultValue) const {
        return m_profile.GetInt(section, entry, defaultValue);
    }
    void Write(std::string_view section, std::string_view entry, int value) {
        m_profile.WriteInt(section, entry, value);
    }

    IProfile& m_profile;
};
