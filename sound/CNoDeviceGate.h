// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "sound/IRecordingGate.h"

/// A recording gate that always lets generation go ahead, for tools that write files on
/// machines without any sound device.
class CNoDeviceGate final : public IRecordingGate {
public:
    unsigned Open(const RecordingFormat&) override { return kNoError; }
    unsigned PrepareHeader(std::byte*, std::size_t) override { return kNoError; }
    unsigned AddBuffer() override { return kNoError; }
    unsigned UnprepareHeader() override { return kNoError; }
    unsigned Close() override { return kNoError; }
};
