// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/CodeTiming.h"
#include "model/IProfile.h"

/// Readers and writers of every practice setting, one profile access each. The defaults are
/// those of the single-value readers; the settings sheet reads the CodeTiming values with its
/// own, different defaults through ReadSheetTiming. Nothing is cached. A profile may hold
/// anything: timing values are read into their ranges, a voice beyond the nine reads as the
/// default, so no reader hands on a speed of 0 or a gap of weeks.
class CProfileSettings {
public:
    static constexpr std::string_view kUserSettings = "UserSettings";
    static constexpr std::string_view kSettings = "Settings";

    struct Range {
        int lowest;
        int highest;
    };
    static constexpr Range kPauseRange{1, 500};
    static constexpr Range kToneRange{100, 1800};  ///< the pitch slider's
    static constexpr Range kWordRateRange{5, 99};  ///< the speed slider's
    static constexpr Range kSpeechDelayRange{0, 10'000};
    static constexpr Range kActorRange{0, 8};
    static constexpr Range kFarnsworthRange{0, 99};

    explicit CProfileSettings(IProfile& profile) : m_profile(profile) {}

    IProfile& Profile() const { return m_profile; }

    int GetPauseDit() const { return Clamped(kUserSettings, "PauseDit", 1, kPauseRange); }
    int GetPauseDah() const { return Clamped(kUserSettings, "PauseDah", 1, kPauseRange); }
    int GetPauseChar() const { return Clamped(kUserSettings, "PauseChar", 1, kPauseRange); }
    int GetPauseWord() const { return Clamped(kUserSettings, "PauseWord", 1, kPauseRange); }
    int GetToneMHz() const { return Clamped(kUserSettings, "ToneMHz", 1000, kToneRange); }
    int GetWordRate() const { return Clamped(kSettings, "WordRate", 15, kWordRateRange); }
    int GetSpeechDelay() const {
        return Clamped(kUserSettings, "SpeechDelay", 125, kSpeechDelayRange);
    }
    int GetActor() const { return Voice(0); }
    int GetFarnsworthFactor() const {
        return Clamped(kSettings, "FarnsworthFactor", 0, kFarnsworthRange);
    }
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
    int Clamped(std::string_view section, std::string_view entry, int defaultValue,
                Range range) const;
    /// "Actor", or the default when it names none of the nine voices.
    int Voice(int defaultValue) const;
    void Write(std::string_view section, std::string_view entry, int value) {
        m_profile.WriteInt(section, entry, value);
    }

    IProfile& m_profile;
};
