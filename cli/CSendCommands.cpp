// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CSendCommands.h"

#include <cmath>
#include <ostream>

#include "training/CKeyingDecoder.h"
#include "training/CPcmWaveReader.h"
#include "training/CToneEnvelope.h"

namespace {

constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;
constexpr std::size_t kPieceFrames = 1 << 15;

}  // namespace

int SendCommands::DecodeAudio(const std::vector<std::string>& files, std::ostream& out,
                              std::ostream& err) {
    if (files.size() != 1) {
        err << "tonwerk-cli decode-audio: one WAV file is needed\n";
        return kExitUsage;
    }
    const std::string& file = files.front();
    CPcmWaveReader reader(file);
    if (!reader.Error().empty()) {
        err << "tonwerk-cli decode-audio: " << file << ": " << reader.Error() << '\n';
        return kExitFailure;
    }
    CKeyingDecoder decoder;
    CToneEnvelope envelope(reader.SampleRate(), decoder);
    std::vector<float> piece(kPieceFrames);
    while (const std::size_t frames = reader.Read(piece)) {
        envelope.Feed(std::span<const float>(piece.data(), frames));
    }
    envelope.Finish();
    if (!reader.Error().empty()) {
        err << "tonwerk-cli decode-audio: " << file << ": " << reader.Error() << '\n';
        return kExitFailure;
    }
    if (envelope.ToneHz() <= 0.0 || decoder.Text().empty()) {
        err << "tonwerk-cli decode-audio: " << file << ": no keyed tone found\n";
        return kExitFailure;
    }
    out << decoder.Text() << '\n'
        << "estimated " << std::lround(decoder.WordsPerMinute()) << " WPM (tone "
        << std::lround(envelope.ToneHz()) << " Hz)\n";
    return kExitOk;
}
