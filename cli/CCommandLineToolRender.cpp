// SPDX-License-Identifier: GPL-3.0-or-later
// tonwerk-cli render: the practice text as a sound file of any type Tonwerk writes.
#include <charconv>
#include <optional>
#include <ostream>

#include "cli/CCommandLineTool.h"
#include "sound/CCodeWaveGen.h"
#include "sound/CSoundFileWriter.h"

namespace {

constexpr int kMaxWordsPerMinute = 1000;
constexpr int kMaxFarnsworth = 99;

/// The option's whole number within bounds, the fallback when it is absent (nullopt: required),
/// or nullopt with *problem saying what is wrong.
std::optional<int> WholeNumber(const CCommandLineTool::Options& options, std::string_view name,
                               int lowest, int highest, std::optional<int> fallback,
                               std::string* problem) {
    const auto it = options.values.find(name);
    if (it == options.values.end()) {
        if (!fallback && problem->empty()) {
            *problem = std::string(name) + " is required";
        }
        return fallback;
    }
    const std::string& text = it->second;
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value < lowest ||
        value > highest) {
        if (problem->empty()) {
            *problem = std::string(name) + " takes a whole number from " + std::to_string(lowest) +
                       " to " + std::to_string(highest) + ", not '" + text + "'";
        }
        return std::nullopt;
    }
    return value;
}

std::string TypeList() {
    std::string list;
    for (const SoundFileTypeInfo& info : SoundFileTypes()) {
        list += (list.empty() ? "" : ", ") + std::string(info.extension);
    }
    return list;
}

}  // namespace

int CCommandLineTool::Render(Options& options) {
    std::string problem;
    const auto wpm = WholeNumber(options, "--wpm", 1, kMaxWordsPerMinute, std::nullopt, &problem);
    const auto farnsworth = WholeNumber(options, "--farnsworth", 0, kMaxFarnsworth, 0, &problem);
    auto output = options.values.find("-o");
    if (output == options.values.end()) {
        output = options.values.find("--output");
    }
    if (problem.empty() && (output == options.values.end() || output->second.empty())) {
        problem = "-o FILE is required";
    }
    if (!problem.empty()) {
        return Usage("render: " + problem);
    }
    const std::string& path = output->second;

    // The type: named, or the file's extension. A type Tonwerk cannot write is no usage error
    // but a file that cannot be made, as a full disk is.
    const auto format = options.values.find("--format");
    const std::optional<SoundFileType> type = format != options.values.end()
                                                  ? SoundFileTypeFromName(format->second)
                                                  : SoundFileTypeFromPath(path);
    if (!type) {
        m_err << "tonwerk-cli render: "
              << (format != options.values.end() ? "unknown file type '" + format->second + "'"
                                                 : "cannot tell the file type of " + path)
              << "; the types are " << TypeList() << '\n';
        return kExitFailure;
    }

    SoundFileQuality quality = ReadSoundFileQuality(m_profile);
    // Each type reads the setting it knows; WAV and FLAC are lossless and have none.
    const auto take = [&](int& setting, int lowest, int highest) {
        setting =
            WholeNumber(options, "--quality", lowest, highest, setting, &problem).value_or(setting);
    };
    if (*type == SoundFileType::kMp3) {
        take(quality.mp3BitRate, SoundFileQuality::kMinBitRate, SoundFileQuality::kMaxBitRate);
    } else if (*type == SoundFileType::kOggVorbis || *type == SoundFileType::kOpus) {
        take(quality.quality, 0, SoundFileQuality::kMaxQuality);
    }
    if (!problem.empty()) {
        return Usage("render: " + problem);
    }

    CCodeWaveGen generator;
    generator.SetWordsPerMinute(*wpm);
    generator.SetFarnsworthFactor(*farnsworth);
    generator.SetText(TextArgument(options));
    generator.SetFolder("");
    generator.SetFileName(path);
    generator.SetFileType(*type);
    generator.SetQuality(quality);
    generator.GenerateFile();
    if (!generator.LastError().empty()) {
        m_err << "tonwerk-cli render: " << generator.LastError() << '\n';
        return kExitFailure;
    }
    return kExitOk;
}
