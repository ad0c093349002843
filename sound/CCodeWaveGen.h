// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "sound/CSoundFileWriter.h"
#include "sound/IRecordingGate.h"

class INotifyTarget;
class IProgressCtrl;

/// Renders the practice text as Morse code into a 16-bit PCM WAV file. Every tone is made of one
/// fixed 32-sample block (three sine cycles, 1033.59375 Hz at 11025 Hz whatever the pitch
/// setting), and every duration is a whole number of blocks: blocks per dit =
/// trunc(dit / 0.0046 s), which keys faster than the nominal speed. That calibration is how files
/// from this trainer have always sounded and is kept.
class CCodeWaveGen {
public:
    static constexpr int kBlockSamples = 32;
    static constexpr int kBlockBytes = 64;

    CCodeWaveGen();
    virtual ~CCodeWaveGen();
    CCodeWaveGen(const CCodeWaveGen&) = delete;
    CCodeWaveGen& operator=(const CCodeWaveGen&) = delete;

    void SetText(std::string_view text);  ///< stored upper-cased
    void SetWordsPerMinute(int wordsPerMinute);
    void SetPitch(int pitch);  ///< kept for the caller; the rendered tone never changes
    void SetFarnsworthFactor(int factor);
    void SetProgressCtrl(IProgressCtrl* progress);
    void SetNotifyWindow(INotifyTarget* notify);
    void SetFileName(std::string_view fileName);
    void SetFolder(std::string_view folder);  ///< prefixed as it is, so it ends in a separator

    /// Wave (the default) is written by this class, byte for byte as it always was; the other
    /// types encode the same samples through libsndfile with the quality given.
    void SetFileType(SoundFileType type) { m_fileType = type; }
    void SetQuality(const SoundFileQuality& quality) { m_quality = quality; }

    /// Without a gate generation needs no sound device at all.
    void SetRecordingGate(IRecordingGate* gate);

    std::uint32_t SetSamplesPerSec(std::uint32_t value);
    std::uint32_t SetAvgBytesPerSec(std::uint32_t value);
    std::uint16_t SetBlockAlign(std::uint16_t value);
    std::uint16_t SetBitsPerSample(std::uint16_t value);
    std::uint16_t SetChannels(std::uint16_t value);
    std::uint16_t SetFormatTag(std::uint16_t value);

    std::uint16_t GetBlockAlign() const { return m_blockAlign; }
    int GetPitch() const { return m_pitch; }

    /// The generators' own pattern table (codes 32 to 95, empty elsewhere).
    static std::string LookupPattern(char c);

    /// Length of the text in dit units, as used for sizing.
    int CountUnits() const;

    /// Writes one character's tone and silence blocks at dest and steps the progress control.
    /// dest must hold CharacterBytes(c, blocksPerDit) bytes.
    /// @return the byte just past what was written
    std::byte* RenderCharacter(std::byte* dest, char c, int blocksPerDit);

    /// Bytes RenderCharacter writes for one character with the current Farnsworth factor.
    std::int64_t CharacterBytes(char c, int blocksPerDit) const;

    /// trunc(dit seconds / 0.0046) for a speed; 0 when the speed gives no positive dit.
    static int BlocksPerDit(int wordsPerMinute);

    /// The historical render-buffer size estimate, trunc((units + 1) × dit × 16000) in single
    /// precision. Rendering does not rely on it: it falls short for runs of one-element
    /// characters.
    std::int64_t EstimateBytes() const;

    /// Exact number of sample bytes the current text renders to.
    std::int64_t RenderedBytes() const;

    /// Renders the text and writes folder + file name. Silent to the user: every failure ends the
    /// operation, and LastError says what happened. When the recording gate lets it go ahead,
    /// kAppMessage + 1 (1, 1) is posted to the notify window once the file has been handled,
    /// even when it could not be written.
    void GenerateFile();

    /// Why the last GenerateFile did not write a complete file; empty after success.
    const std::string& LastError() const { return m_lastError; }

private:
    template <class Sink>
    void Emit(Sink& sink, char c, int blocksPerDit, bool step) const;
    void Step() const;
    void WriteEncoded(const std::string& path, std::vector<std::byte>& piece,
                      std::int64_t renderedBytes);

    INotifyTarget* m_notify = nullptr;
    IProgressCtrl* m_progress = nullptr;
    int m_farnsworth = 0;
    std::string m_text;
    int m_pitch = 350;
    std::string m_folder = "C:\\";
    std::string m_fileName = "Recording.wav";
    int m_wordsPerMinute = 12;
    std::uint32_t m_avgBytesPerSec = 22050;
    std::uint16_t m_blockAlign = 2;
    std::uint32_t m_samplesPerSec = 11025;
    std::uint16_t m_bitsPerSample = 16;
    std::uint16_t m_channels = 1;
    std::uint16_t m_formatTag = 1;

    SoundFileType m_fileType = SoundFileType::kWave;
    SoundFileQuality m_quality;

    IRecordingGate* m_gate = nullptr;
    std::string m_lastError;
};
