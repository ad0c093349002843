// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/DecodeWave.h"

#include <vector>

#include "training/CKeyingDecoder.h"
#include "training/CPcmWaveReader.h"
#include "training/CToneEnvelope.h"

namespace {

constexpr std::size_t kPieceFrames = 1 << 15;

}  // namespace

DecodedWave DecodeWaveFile(const std::string& fileName) {
    DecodedWave result;
    CPcmWaveReader reader(fileName);
    if (!reader.Error().empty()) {
        result.error = reader.Error();
        return result;
    }
    CKeyingDecoder decoder;
    CToneEnvelope envelope(reader.SampleRate(), decoder);
    std::vector<float> piece(kPieceFrames);
    while (const std::size_t frames = reader.Read(piece)) {
        envelope.Feed(std::span<const float>(piece.data(), frames));
    }
    envelope.Finish();
    if (!reader.Error().empty()) {
        result.error = reader.Error();
    } else if (envelope.ToneHz() <= 0.0 || decoder.Text().empty()) {
        result.error = "no keyed tone found";
    }
    result.text = decoder.Text();
    result.wordsPerMinute = decoder.WordsPerMinute();
    result.toneHz = envelope.ToneHz();
    return result;
}
