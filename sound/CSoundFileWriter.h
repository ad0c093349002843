// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class IProfile;
struct sf_private_tag;

/// The sound file types Tonwerk writes, in the order they are offered.
enum class SoundFileType { kWave, kMp3, kOggVorbis, kOpus, kFlac };

struct SoundFileTypeInfo {
    SoundFileType type;
    std::string_view name;       ///< as the file dialogs show it, "Ogg Vorbis"
    std::string_view extension;  ///< without the dot, "ogg"
};

/// Every type, Wave first.
std::span<const SoundFileTypeInfo> SoundFileTypes();
const SoundFileTypeInfo& SoundFileTypeOf(SoundFileType type);
/// The type of a file name's extension (any case); nullopt for an unknown or missing one.
std::optional<SoundFileType> SoundFileTypeFromPath(std::string_view path);
/// The type of a name or an extension as a user gives it ("mp3", "Ogg Vorbis", "vorbis", "ogg").
std::optional<SoundFileType> SoundFileTypeFromName(std::string_view name);

/// Quality settings of the compressed types; each type reads the one it knows.
struct SoundFileQuality {
    static constexpr int kMinBitRate = 8;
    static constexpr int kMaxBitRate = 320;
    static constexpr int kMaxQuality = 10;
    int mp3BitRate = 128;  ///< kbit/s; the MPEG layer of the sample rate caps it (64 at 11 kHz)
    int quality = 5;       ///< Ogg Vorbis and Opus: 0 (smallest) to 10 (best)
};

/// The quality last chosen, from the profile (clamped to the ranges above), and storing it.
SoundFileQuality ReadSoundFileQuality(const IProfile& profile);
void WriteSoundFileQuality(IProfile& profile, const SoundFileQuality& quality);

/// Streams 16-bit PCM into a compressed sound file through libsndfile: MP3, Ogg Vorbis, Opus or
/// FLAC (Wave too, though Tonwerk's own WAV writers keep their exact layout). The file is
/// written under a temporary name in the target's folder and takes its name only when Close
/// succeeds, so a failed or abandoned file leaves nothing behind and an older file of that name
/// untouched. Opus is encoded at 48 kHz: other rates are resampled linearly on the way.
class CSoundFileWriter {
public:
    CSoundFileWriter();
    ~CSoundFileWriter();  ///< abandons a file that was not closed
    CSoundFileWriter(const CSoundFileWriter&) = delete;
    CSoundFileWriter& operator=(const CSoundFileWriter&) = delete;

    /// false, with Error set, when the file cannot be created or the library cannot encode.
    bool Open(const std::string& path, SoundFileType type, int samplesPerSec, int channels,
              const SoundFileQuality& quality);
    /// Interleaved frames; false once anything failed.
    bool Write(std::span<const std::int16_t> samples);
    /// Samples as 16-bit little-endian bytes, as a WAV data chunk holds them.
    bool WriteLittleEndian(std::span<const std::byte> bytes);
    /// Finishes the file and gives it its name; false (and no file) when anything failed.
    bool Close();
    /// Stops and deletes what was written.
    void Abandon();

    bool IsOpen() const { return m_file != nullptr; }
    const std::string& Error() const { return m_error; }

private:
    bool Encode(std::span<const std::int16_t> samples);
    bool Fail(const std::string& message);

    sf_private_tag* m_file = nullptr;
    int m_fd = -1;
    std::string m_path;
    std::string m_temporary;
    std::string m_error;
    int m_channels = 1;
    // Linear resampling for Opus: input frames per output frame, the position of the next
    // output frame relative to the current input block, and the block's preceding frame.
    double m_step = 1.0;
    double m_position = 0.0;
    std::vector<std::int16_t> m_previous;
    std::vector<std::int16_t> m_scratch;
};
