// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class IPlayerListener;

/// A one-buffer PCM player: open the default output, create one buffer, write into it, play it
/// once or looping, and hear about notification positions. Results are 0 for success or one of
/// the codes Player::ResultText knows.
class IPlayer {
public:
    virtual ~IPlayer() = default;
    virtual long Open() = 0;
    virtual long Play(int loop) = 0;
    virtual long Stop() = 0;
    virtual bool CreateBuffer(std::uint16_t channels, std::uint32_t samplesPerSec,
                              std::uint16_t bitsPerSample, std::uint16_t blockAlign,
                              std::uint32_t bytes, std::uint32_t flags) = 0;
    virtual void Write(std::uint32_t offset, const void* data, std::uint32_t bytes) = 0;
    virtual bool SetNotificationPositions(const std::vector<std::uint32_t>& offsets) = 0;
    virtual void SetListener(IPlayerListener* listener) = 0;
    virtual void ClearListener() = 0;
};
