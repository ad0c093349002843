// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/CSoundFileWriter.h"

#include <fcntl.h>
#include <sndfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "model/IProfile.h"

namespace {

constexpr std::array<SoundFileTypeInfo, 5> kTypes = {{
    {SoundFileType::kWave, "Wave", "wav"},
    {SoundFileType::kMp3, "MP3", "mp3"},
    {SoundFileType::kOggVorbis, "Ogg Vorbis", "ogg"},
    {SoundFileType::kOpus, "Opus", "opus"},
    {SoundFileType::kFlac, "FLAC", "flac"},
}};

// libopus encodes these rates only; anything else goes to the full band rate.
constexpr std::array<int, 5> kOpusRates = {8000, 12000, 16000, 24000, 48000};
constexpr int kOpusRate = 48000;

constexpr std::string_view kProfileSection = "SoundFile";

// Frames converted or resampled at a time.
constexpr std::size_t kScratchSamples = 8192;

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) {
        return static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    });
    return lower;
}

int LibraryFormat(SoundFileType type) {
    switch (type) {
        case SoundFileType::kWave:
            return SF_FORMAT_WAV | SF_FORMAT_PCM_16;
        case SoundFileType::kMp3:
            return SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;
        case SoundFileType::kOggVorbis:
            return SF_FORMAT_OGG | SF_FORMAT_VORBIS;
        case SoundFileType::kOpus:
            return SF_FORMAT_OGG | SF_FORMAT_OPUS;
        case SoundFileType::kFlac:
            return SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    }
    return 0;
}

/// libsndfile's compression level, 0 (best) to 1 (smallest), for a quality setting. An MP3
/// bit rate is placed within the range of the MPEG layer that the sample rate selects.
std::optional<double> CompressionLevel(SoundFileType type, int samplesPerSec,
                                       const SoundFileQuality& quality) {
    if (type == SoundFileType::kOggVorbis || type == SoundFileType::kOpus) {
        const int q = std::clamp(quality.quality, 0, SoundFileQuality::kMaxQuality);
        return 1.0 - q / static_cast<double>(SoundFileQuality::kMaxQuality);
    }
    if (type == SoundFileType::kMp3) {
        const auto [lowest, highest] = samplesPerSec < 16000   ? std::pair{8, 64}
                                       : samplesPerSec < 32000 ? std::pair{8, 160}
                                                               : std::pair{32, 320};
        const int rate = std::clamp(quality.mp3BitRate, lowest, highest);
        return static_cast<double>(highest - rate) / (highest - lowest);
    }
    return std::nullopt;
}

}  // namespace

std::span<const SoundFileTypeInfo> SoundFileTypes() {
    return kTypes;
}

const SoundFileTypeInfo& SoundFileTypeOf(SoundFileType type) {
    return kTypes[static_cast<std::size_t>(type)];
}

std::optional<SoundFileType> SoundFileTypeFromPath(std::string_view path) {
    const auto slash = path.find_last_of("/\\");
    const std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) {
        return std::nullopt;
    }
    const std::string extension = Lower(name.substr(dot + 1));
    for (const SoundFileTypeInfo& info : kTypes) {
        if (info.extension == extension) {
            return info.type;
        }
    }
    return std::nullopt;
}

std::optional<SoundFileType> SoundFileTypeFromName(std::string_view name) {
    const std::string lower = Lower(name);
    if (lower == "vorbis") {
        return SoundFileType::kOggVorbis;
    }
    for (const SoundFileTypeInfo& info : kTypes) {
        if (Lower(info.name) == lower || info.extension == lower) {
            return info.type;
        }
    }
    return std::nullopt;
}

SoundFileQuality ReadSoundFileQuality(const IProfile& profile) {
    SoundFileQuality quality;
    quality.mp3BitRate =
        std::clamp(profile.GetInt(kProfileSection, "Mp3BitRate", quality.mp3BitRate),
                   SoundFileQuality::kMinBitRate, SoundFileQuality::kMaxBitRate);
    quality.quality = std::clamp(profile.GetInt(kProfileSection, "Quality", quality.quality), 0,
                                 SoundFileQuality::kMaxQuality);
    return quality;
}

void WriteSoundFileQuality(IProfile& profile, const SoundFileQuality& quality) {
    profile.WriteInt(kProfileSection, "Mp3BitRate", quality.mp3BitRate);
    profile.WriteInt(kProfileSection, "Quality", quality.quality);
}

CSoundFileWriter::CSoundFileWriter() = default;

CSoundFileWriter::~CSoundFileWriter() {
    Abandon();
}

bool CSoundFileWriter::Fail(const std::string& message) {
    if (m_error.empty()) {
        m_error = message;
    }
    return false;
}

bool CSoundFileWriter::Open(const std::string& path, SoundFileType type, int samplesPerSec,
                            int channels, const SoundFileQuality& quality) {
    Abandon();
    m_error.clear();
    m_path = path;
    m_channels = std::max(channels, 1);
    int rate = samplesPerSec;
    if (type == SoundFileType::kOpus && std::ranges::find(kOpusRates, rate) == kOpusRates.end()) {
        rate = kOpusRate;
    }
    m_step = static_cast<double>(samplesPerSec) / rate;
    m_position = 0.0;
    m_previous.assign(static_cast<std::size_t>(m_channels), 0);

    // A device or a pipe (/dev/null, a FIFO) is written as it is; a file goes under a temporary
    // name first.
    struct stat target {};
    const bool special = stat(path.c_str(), &target) == 0 && !S_ISREG(target.st_mode);
    m_temporary = special ? std::string() : path + ".XXXXXX";
    errno = 0;
    const int fd = special ? open(path.c_str(), O_WRONLY) : mkstemp(m_temporary.data());
    if (fd < 0) {
        m_temporary.clear();
        return Fail("cannot create " + path + ": " + std::strerror(errno));
    }
    if (!special) {
        // mkstemp makes the file its owner's only; a finished file gets the usual permissions.
        const mode_t mask = umask(0);
        umask(mask);
        fchmod(fd, 0666 & ~mask);
    }

    SF_INFO info{};
    info.samplerate = rate;
    info.channels = m_channels;
    info.format = LibraryFormat(type);
    // The descriptor stays this writer's to close, whatever the library made of it.
    m_fd = fd;
    m_file = sf_open_fd(fd, SFM_WRITE, &info, SF_FALSE);
    if (m_file == nullptr) {
        const std::string reason = sf_strerror(nullptr);
        Abandon();
        return Fail("cannot write " + path + " as " + std::string(SoundFileTypeOf(type).name) +
                    ": " + reason);
    }
    if (type == SoundFileType::kMp3) {
        int mode = SF_BITRATE_MODE_CONSTANT;
        sf_command(m_file, SFC_SET_BITRATE_MODE, &mode, sizeof mode);
    }
    if (auto level = CompressionLevel(type, rate, quality)) {
        sf_command(m_file, SFC_SET_COMPRESSION_LEVEL, &*level, sizeof *level);
    }
    return true;
}

bool CSoundFileWriter::Encode(std::span<const std::int16_t> samples) {
    // The MP3 encoder counts a short write as written; the library's error state still tells.
    const auto count = static_cast<sf_count_t>(samples.size());
    if (sf_write_short(m_file, samples.data(), count) != count || sf_error(m_file) != 0) {
        return Fail("cannot write " + m_path + ": " + sf_strerror(m_file));
    }
    return true;
}

bool CSoundFileWriter::Write(std::span<const std::int16_t> samples) {
    if (m_file == nullptr || !m_error.empty()) {
        return false;
    }
    if (m_step == 1.0) {
        return Encode(samples);
    }
    // Each output frame lies between two input frames; the first of a block may lie between
    // the previous block's last frame and this block's first.
    const auto channels = static_cast<std::size_t>(m_channels);
    const std::size_t frames = samples.size() / channels;
    const auto sample = [&](std::ptrdiff_t frame, std::size_t channel) -> double {
        return frame < 0 ? m_previous[channel]
                         : samples[static_cast<std::size_t>(frame) * channels + channel];
    };
    m_scratch.clear();
    while (m_position < static_cast<double>(frames) - 1.0) {
        const double whole = std::floor(m_position);
        const double fraction = m_position - whole;
        const auto frame = static_cast<std::ptrdiff_t>(whole);
        for (std::size_t c = 0; c < channels; ++c) {
            const double a = sample(frame, c);
            const double b = sample(frame + 1, c);
            m_scratch.push_back(static_cast<std::int16_t>(std::lround(a + (b - a) * fraction)));
        }
        m_position += m_step;
        if (m_scratch.size() >= kScratchSamples) {
            if (!Encode(m_scratch)) {
                return false;
            }
            m_scratch.clear();
        }
    }
    if (frames > 0) {
        m_position -= static_cast<double>(frames);
        std::copy_n(samples.end() - static_cast<std::ptrdiff_t>(channels), channels,
                    m_previous.begin());
    }
    return m_scratch.empty() || Encode(m_scratch);
}

bool CSoundFileWriter::WriteLittleEndian(std::span<const std::byte> bytes) {
    std::array<std::int16_t, kScratchSamples> samples{};
    while (bytes.size() >= 2) {
        const std::size_t n = std::min(samples.size(), bytes.size() / 2);
        for (std::size_t i = 0; i < n; ++i) {
            const auto low = std::to_integer<std::uint16_t>(bytes[2 * i]);
            const auto high = std::to_integer<std::uint16_t>(bytes[2 * i + 1]);
            samples[i] = static_cast<std::int16_t>(low | (high << 8));
        }
        if (!Write(std::span(samples.data(), n))) {
            return false;
        }
        bytes = bytes.subspan(2 * n);
    }
    return true;
}

bool CSoundFileWriter::Close() {
    if (m_file == nullptr) {
        return Fail("cannot write " + m_path + ": the file is not open");
    }
    errno = 0;
    const int closed = sf_close(m_file);
    m_file = nullptr;
    if (closed != 0) {
        Fail("cannot write " + m_path + ": " +
             (errno != 0 ? std::strerror(errno) : sf_error_number(closed)));
    }
    errno = 0;
    if (close(m_fd) != 0) {
        Fail("cannot write " + m_path + ": " + std::strerror(errno));
    }
    m_fd = -1;
    errno = 0;
    if (m_error.empty() && !m_temporary.empty() &&
        std::rename(m_temporary.c_str(), m_path.c_str()) != 0) {
        Fail("cannot create " + m_path + ": " + std::strerror(errno));
    }
    if (!m_error.empty() && !m_temporary.empty()) {
        std::remove(m_temporary.c_str());
    }
    m_temporary.clear();
    return m_error.empty();
}

void CSoundFileWriter::Abandon() {
    if (m_file != nullptr) {
        sf_close(m_file);
        m_file = nullptr;
    }
    if (m_fd >= 0) {
        close(m_fd);
        m_fd = -1;
    }
    if (!m_temporary.empty()) {
        std::remove(m_temporary.c_str());
        m_temporary.clear();
    }
}
