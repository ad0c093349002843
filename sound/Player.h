// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "sound/IPcmOutput.h"
#include "sound/IPlayer.h"

class INotifyTarget;

/// The buffer player: one circular buffer played through an IPcmOutput from a play cursor, once
/// or looping, with notification positions reported to a listener on a thread of its own.
/// Nothing in the trainer creates one; it stands ready as a second output path.
class Player final : public IPlayer {
public:
    static constexpr long kOk = 0;
    static constexpr long kErrInvalidCall = 0x88780032;
    static constexpr long kErrInvalidParam = 0x80070057;
    static constexpr long kErrNoDriver = 0x88780078;
    static constexpr long kErrUninitialized = 0x887800AA;
    static constexpr long kErrBufferLost = 0x88780096;

    /// Flags CreateBuffer always adds: position notification and sticky focus.
    static constexpr std::uint32_t kAlwaysFlags = 0x4100;

    explicit Player(IPcmOutput& output);
    ~Player() override;
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    long Open() override;
    /// Plays from the play cursor; a buffer already playing goes on as it is. Once the device
    /// is lost, kErrBufferLost until CreateBuffer makes a new buffer.
    long Play(int loop) override;
    long Stop() override;
    bool CreateBuffer(std::uint16_t channels, std::uint32_t samplesPerSec,
                      std::uint16_t bitsPerSample, std::uint16_t blockAlign, std::uint32_t bytes,
                      std::uint32_t flags) override;
    /// Copies into the buffer from offset onwards; nothing wraps round to the start, so bytes
    /// that would pass the end are dropped.
    void Write(std::uint32_t offset, const void* data, std::uint32_t bytes) override;
    bool SetNotificationPositions(const std::vector<std::uint32_t>& offsets) override;
    void SetListener(IPlayerListener* listener) override;
    /// After this returns the listener is not called again.
    void ClearListener() override;

    void SetOwnerWindow(INotifyTarget* owner) { m_owner = owner; }

    /// False once the buffer has played out, was stopped, or its device was lost.
    bool IsPlaying() const;
    /// kOk, or kErrBufferLost once the device went away under the buffer.
    long Status() const;
    std::uint32_t PlayCursor() const;
    std::uint32_t BufferFlags() const { return m_flags; }
    std::uint32_t AvgBytesPerSec() const { return m_avgBytesPerSec; }

    /// The text for a result code; "Unknown error" for codes it does not know.
    static std::string ResultText(long result);

private:
    void Fill(std::byte* out, std::size_t bytes);
    void OnLost();
    void NotificationThread();
    void EndNotificationThread();
    void Signal(std::size_t event);

    IPcmOutput& m_output;
    INotifyTarget* m_owner = nullptr;
    bool m_opened = false;
    bool m_started = false;
    std::uint32_t m_flags = 0;
    std::uint32_t m_avgBytesPerSec = 0;
    PcmFormat m_format;

    mutable std::mutex m_bufferMutex;  ///< buffer, cursor and play state, shared with the device
    std::vector<std::byte> m_buffer;
    std::size_t m_cursor = 0;
    bool m_playing = false;
    bool m_looping = false;
    bool m_lost = false;
    std::vector<std::uint32_t> m_positions;

    std::mutex m_eventMutex;  ///< one auto-reset flag per position, then the stop event
    std::condition_variable m_eventSignaled;
    std::vector<bool> m_events;
    std::unique_ptr<std::thread> m_notificationThread;

    std::mutex m_listenerMutex;
    IPlayerListener* m_listener = nullptr;
};
