// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CWaveIn.h"

#include <chrono>
#include <cstring>
#include <new>
#include <thread>

namespace {
constexpr auto kSettleBeforeReset = std::chrono::milliseconds(10);
constexpr unsigned kErrorTextLength = 256;
} // namespace

CWaveIn::CWaveIn() = default;

CWaveIn::CWaveIn(const WaveFormat& format, const CWaveDevice& device)
    : m_current(1), m_device(device) {
    SetWaveFormat(format);
}

CWaveIn::~CWaveIn() {
    Close();
    m_blocks.clear();
    FreeHeaders();
}

void CWaveIn::SetWaveFormat(const WaveFormat& format) {
    m_wave.BuildFormat(format.channels, format.samplesPerSec, format.bitsPerSample);
}

bool CWaveIn::Open() {
    m_lastResult = WaveInOpen(&m_handle, m_device.GetDevice(), &m_wave.GetFormat(), &Callback, 0,
                              kWaveCallbackFunction);
    if (m_lastResult != kMmNoError) {
        m_handle = nullptr;
    }
    return m_lastResult == kMmNoError;
}

bool CWaveIn::Record(std::uint32_t bufferSize) {
    if (m_handle != nullptr) {
        m_stop = 1;
        std::this_thread::sleep_for(kSettleBeforeReset);
        m_lastResult = WaveInReset(m_handle);
        if (m_lastResult != kMmNoError) {
            return false;
        }
    }
    m_stop = 0;
    m_blocks.clear();
    FreeHeaders();
    const WaveFormat format = m_wave.GetFormat();
    m_wave.BuildFormat(format.channels, format.samplesPerSec, format.bitsPerSample);
    m_current = 1;
    m_bufferSize = bufferSize;
    if (!AddHeader() || !AddHeader()) {
        return false;
    }
    m_lastResult = WaveInStart(m_handle);
    return m_lastResult == kMmNoError;
}

bool CWaveIn::AddHeader() {
    m_current = m_current == 1 ? 0 : 1;
    WaveHeader& header = m_headers[m_current];
    if (header.data == nullptr) {
        header.data = new (std::nothrow) char[m_bufferSize == 0 ? 1 : m_bufferSize];
        if (header.data == nullptr) {
            m_lastResult = kMmNoMemory;
            return false;
        }
    }
    std::memset(header.data, 0, m_bufferSize);
    header.bufferLength = m_bufferSize;
    header.flags = 0;
    header.bytesRecorded = 0;
    header.user = reinterpret_cast<std::uintptr_t>(this);
    m_lastResult = WaveInPrepareHeader(m_handle, &header, sizeof header);
    if (m_lastResult != kMmNoError) {
        return false;
    }
    m_lastResult = WaveInAddBuffer(m_handle, &header, sizeof header);
    return m_lastResult == kMmNoError;
}

void CWaveIn::Callback(WaveInHandle device, unsigned message, std::uintptr_t, WaveHeader* header) {
    if (message != kWaveInData || device == nullptr || header == nullptr || header->user == 0) {
        return;
    }
    reinterpret_cast<CWaveIn*>(header->user)->OnData(header);
}

void CWaveIn::OnData(WaveHeader* header) {
    if ((header->flags.load() & kWaveHeaderDone) != 0) {
        header->flags = 0;
        const MmResult result = WaveInUnprepareHeader(m_handle, header, sizeof *header);
        if (result != kMmNoError) {
            m_lastResult = result;
            return;
        }
        const std::uint32_t recorded = header->bytesRecorded.load();
        const std::uint16_t blockAlign = m_wave.GetFormat().blockAlign;
        if (recorded > 0 && blockAlign > 0) {
            auto block = std::make_unique<CWaveBuffer>();
            block->CopyBuffer(header->data, recorded / blockAlign, blockAlign);
            m_blocks.push_back(std::move(block));
        }
        delete[] header->data;
        header->data = nullptr;
    }
    std::uint32_t position = 0;
    m_lastResult = WaveInGetPosition(m_handle, &position);
    if (m_stop.load() == 0) {
        AddHeader();
    }
}

bool CWaveIn::Close() {
    if (m_handle == nullptr) {
        return true;
    }
    m_stop = 1;
    std::this_thread::sleep_for(kSettleBeforeReset);
    m_lastResult = WaveInReset(m_handle);
    if (m_lastResult != kMmNoError) {
        return false;
    }
    m_lastResult = WaveInClose(m_handle);
    if (m_lastResult != kMmNoError) {
        return false;
    }
    m_handle = nullptr;
    return true;
}

CWave& CWaveIn::GetWave() {
    const std::uint16_t blockAlign = m_wave.GetFormat().blockAlign;
    const std::uint32_t samples = GetNumSamples();
    auto* joined = new (std::nothrow) char[samples == 0 ? 1 : std::size_t{samples} * blockAlign];
    if (joined == nullptr) {
        return m_wave;
    }
    std::size_t at = 0;
    for (const auto& block : m_blocks) {
        const std::size_t bytes = std::size_t{block->GetNumSamples()} * blockAlign;
        std::memcpy(joined + at, block->GetBuffer(), bytes);
        at += bytes;
    }
    m_wave.SetBuffer(joined, samples, false);
    return m_wave;
}

std::string CWaveIn::GetError() const {
    if (m_lastResult == kMmNoError) {
        return {};
    }
    char text[kErrorTextLength] = {};
    if (WaveInGetErrorText(m_lastResult, text, kErrorTextLength) != kMmNoError) {
        return {};
    }
    return text;
}

long CWaveIn::GetPosition() {
    if (m_handle == nullptr) {
        return -1;
    }
    std::uint32_t samples = 0;
    m_lastResult = WaveInGetPosition(m_handle, &samples);
    return m_lastResult == kMmNoError ? static_cast<long>(samples) : -1;
}

bool CWaveIn::IsRecording() const {
    const std::uint32_t flags = m_headers[m_current].flags.load();
    return flags != 0 && (flags & kWaveHeaderDone) == 0;
}

std::uint32_t CWaveIn::GetNumSamples() const {
    std::uint32_t total = 0;
    for (const auto& block : m_blocks) {
        total += block->GetNumSamples();
    }
    return total;
}

void CWaveIn::FreeHeaders() {
    for (WaveHeader& header : m_headers) {
        delete[] header.data;
        header.Clear();
    }
}
