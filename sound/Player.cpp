// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/Player.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "model/BeginThread.h"
#include "sound/IPlayerListener.h"

Player::Player(IPcmOutput& output) : m_output(output) {}

Player::~Player() {
    EndNotificationThread();
    if (m_started) {
        m_output.Stop();
    }
}

long Player::Open() {
    const long result = m_output.Open();
    m_opened = result == kOk;
    return result;
}

long Player::Play(int loop) {
    {
        std::lock_guard lock(m_bufferMutex);
        if (m_buffer.empty()) {
            return kErrInvalidCall;
        }
        if (m_lost) {
            return kErrBufferLost;
        }
        if (m_playing) {
            return kOk;
        }
        m_playing = true;
        m_looping = loop == 1;
    }
    if (!m_started) {
        if (!m_opened) {
            std::lock_guard lock(m_bufferMutex);
            m_playing = false;
            return kErrUninitialized;
        }
        const long result = m_output.Start(
            m_format, [this](std::byte* out, std::size_t bytes) { Fill(out, bytes); },
            [this] { OnLost(); });
        if (result != kOk) {
            std::lock_guard lock(m_bufferMutex);
            m_playing = false;
            return result;
        }
        m_started = true;
    }
    return kOk;
}

long Player::Stop() {
    // The device keeps pulling (silence) so a later Play starts without reopening it.
    std::lock_guard lock(m_bufferMutex);
    if (!m_buffer.empty() && m_playing) {
        m_playing = false;
    }
    return kOk;
}

bool Player::CreateBuffer(std::uint16_t channels, std::uint32_t samplesPerSec,
                          std::uint16_t bitsPerSample, std::uint16_t blockAlign,
                          std::uint32_t bytes, std::uint32_t flags) {
    if (m_started) {
        m_output.Stop();
        m_started = false;
    }
    EndNotificationThread();
    m_format = {channels, samplesPerSec, bitsPerSample, blockAlign};
    m_avgBytesPerSec = static_cast<std::uint32_t>(blockAlign) * samplesPerSec;
    m_flags = flags | kAlwaysFlags;
    std::lock_guard lock(m_bufferMutex);
    m_buffer.assign(bytes, std::byte{0});
    m_cursor = 0;
    m_playing = false;
    m_lost = false;
    m_positions.clear();
    return true;
}

void Player::Write(std::uint32_t offset, const void* data, std::uint32_t bytes) {
    std::lock_guard lock(m_bufferMutex);
    if (data == nullptr || offset >= m_buffer.size()) {
        return;
    }
    const std::size_t count = std::min<std::size_t>(bytes, m_buffer.size() - offset);
    std::memcpy(m_buffer.data() + offset, data, count);
}

bool Player::SetNotificationPositions(const std::vector<std::uint32_t>& offsets) {
    {
        std::lock_guard lock(m_bufferMutex);
        if (m_buffer.empty()) {
            return false;
        }
        for (const std::uint32_t offset : offsets) {
            if (offset >= m_buffer.size()) {
                return false;
            }
        }
    }
    EndNotificationThread();
    {
        std::lock_guard lock(m_eventMutex);
        m_events.assign(offsets.size() + 1, false);
    }
    {
        std::lock_guard lock(m_bufferMutex);
        m_positions = offsets;
    }
    auto thread = BeginThread([this] { NotificationThread(); });
    if (!thread) {
        std::lock_guard lock(m_bufferMutex);
        m_positions.clear();
        return false;
    }
    m_notificationThread = std::make_unique<std::thread>(std::move(*thread));
    return true;
}

void Player::SetListener(IPlayerListener* listener) {
    std::lock_guard lock(m_listenerMutex);
    m_listener = listener;
}

void Player::ClearListener() {
    std::lock_guard lock(m_listenerMutex);
    m_listener = nullptr;
}

bool Player::IsPlaying() const {
    std::lock_guard lock(m_bufferMutex);
    return m_playing;
}

long Player::Status() const {
    std::lock_guard lock(m_bufferMutex);
    return m_lost ? kErrBufferLost : kOk;
}

void Player::OnLost() {
    std::lock_guard lock(m_bufferMutex);
    m_lost = true;
    m_playing = false;
}

std::uint32_t Player::PlayCursor() const {
    std::lock_guard lock(m_bufferMutex);
    return static_cast<std::uint32_t>(m_cursor);
}

void Player::Signal(std::size_t event) {
    std::lock_guard lock(m_eventMutex);
    if (event < m_events.size()) {
        m_events[event] = true;
        m_eventSignaled.notify_all();
    }
}

void Player::Fill(std::byte* out, std::size_t bytes) {
    std::vector<std::size_t> reached;
    {
        std::lock_guard lock(m_bufferMutex);
        std::size_t done = 0;
        while (done < bytes && m_playing && !m_buffer.empty()) {
            const std::size_t n = std::min(bytes - done, m_buffer.size() - m_cursor);
            std::memcpy(out + done, m_buffer.data() + m_cursor, n);
            for (std::size_t i = 0; i < m_positions.size(); ++i) {
                if (m_positions[i] >= m_cursor && m_positions[i] < m_cursor + n) {
                    reached.push_back(i);
                }
            }
            m_cursor += n;
            done += n;
            if (m_cursor == m_buffer.size()) {
                m_cursor = 0;
                if (!m_looping) {
                    m_playing = false;
                }
            }
        }
        std::memset(out + done, 0, bytes - done);
    }
    for (const std::size_t index : reached) {
        Signal(index);
    }
}

void Player::NotificationThread() {
    for (;;) {
        std::size_t index = 0;
        std::size_t count = 0;
        {
            std::unique_lock lock(m_eventMutex);
            m_eventSignaled.wait(lock, [this] {
                return std::find(m_events.begin(), m_events.end(), true) != m_events.end();
            });
            // The lowest signalled event wins, positions before the stop event.
            index = static_cast<std::size_t>(std::find(m_events.begin(), m_events.end(), true) -
                                             m_events.begin());
            m_events[index] = false;
            count = m_events.size() - 1;
        }
        if (index >= count) {
            return;
        }
        std::lock_guard lock(m_listenerMutex);
        if (m_listener != nullptr) {
            m_listener->OnPositionReached(static_cast<int>(index));
        }
    }
}

void Player::EndNotificationThread() {
    if (!m_notificationThread) {
        return;
    }
    {
        std::lock_guard lock(m_eventMutex);
        m_events.back() = true;
        m_eventSignaled.notify_all();
    }
    m_notificationThread->join();
    m_notificationThread.reset();
    std::lock_guard lock(m_bufferMutex);
    m_positions.clear();
}

std::string Player::ResultText(long result) {
    struct Entry {
        std::uint32_t code;
        const char* text;
    };
    static constexpr Entry kTexts[] = {
        {0x8878000A,
         "The request failed because resources, such as a priority level, were already in use by "
         "another caller."},
        {0x80004001, "The function called is not supported at this time."},
        {0x80004002, "The requested COM interface is not available."},
        {0x80004005, "An undetermined error occurred inside the DirectSound subsystem."},
        {0x80040110, "The object does not support aggregation."},
        {0x8007000E,
         "The DirectSound subsystem could not allocate sufficient memory to complete the caller's "
         "request."},
        {0x80070057, "An invalid parameter was passed to the returning function."},
        {0x8878001E,
         "The buffer control (volume, pan, and so on) requested by the caller is not available. "
         "Controls must be specified when the buffer is created, using the dwFlags member of "
         "DSBUFFERDESC."},
        {0x88780032, "This function is not valid for the current state of this object."},
        {0x88780046, "A cooperative level of DSSCL_PRIORITY or higher is required."},
        {0x88780064, "The specified wave format is not supported."},
        {0x88780078,
         "No sound driver is available for use, or the given GUID is not a valid DirectSound "
         "device ID."},
        {0x88780082, "The object is already initialized."},
        {0x88780096, "The buffer memory has been lost and must be restored."},
        {0x887800A0,
         "Another application has a higher priority level, preventing this call from "
         "succeeding."},
        {0x887800AA,
         "The IDirectSound8::Initialize method has not been called or has not been called "
         "successfully before other methods were called."},
    };
    // Codes arrive both as 32-bit signed results and as their unsigned spelling.
    if (result < INT32_MIN || result > static_cast<long>(UINT32_MAX)) {
        return "Unknown error";
    }
    const auto code = static_cast<std::uint32_t>(result);
    for (const Entry& entry : kTexts) {
        if (entry.code == code) {
            return entry.text;
        }
    }
    return "Unknown error";
}
