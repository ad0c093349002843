// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/PortAudioDevice.h"

#include <alsa/asoundlib.h>
#include <dlfcn.h>
#include <pthread.h>
#include <sched.h>

#include <future>
#include <memory>

namespace portaudio_backend {
namespace {

/// Longest wait for the platform to tear a stream down; a hung one is abandoned.
constexpr auto kTeardownWait = 800ms;
constexpr int kLayerThreadPriority = 10;
constexpr auto kRefreshInterval = 1s;
/// Output buffering: enough to ride out a busy machine without a dropout.
constexpr double kOutputLatency = 0.025;

void QuietAlsa(const char*, int, const char*, int, const char*, ...) {}

void QuietJackMessage(const char*) {}

/// Probing for a JACK server (PortAudio's own and ALSA's JACK plugin) makes libjack print to the
/// terminal that none is running. libjack comes with PortAudio, so its handlers are set where it
/// is loaded; without it there is nothing to quiet.
void QuietJack() {
    using Setter = void (*)(void (*)(const char*));
    for (const char* name : {"jack_set_error_function", "jack_set_info_function"}) {
        if (void* symbol = dlsym(RTLD_DEFAULT, name)) {
            reinterpret_cast<Setter>(symbol)(&QuietJackMessage);
        }
    }
}

// PortAudio is initialised once and refreshed (to see a server that came up later) only while
// no stream is open, under this lock.
std::mutex g_platformLock;

bool g_initialized = false;
bool g_refreshWanted = false;
int g_openStreams = 0;

Clock::time_point g_lastRefresh;

bool EnsurePlatformLocked() {
    // Probing the devices again is slow; a server that comes up is noticed within a second.
    if (g_initialized && g_refreshWanted && g_openStreams == 0 &&
        Clock::now() - g_lastRefresh > kRefreshInterval) {
        Pa_Terminate();
        g_initialized = false;
    }
    if (!g_initialized) {
        snd_lib_error_set_handler(&QuietAlsa);
        QuietJack();
        if (Pa_Initialize() != paNoError) {
            return false;
        }
        g_initialized = true;
        g_refreshWanted = false;
        g_lastRefresh = Clock::now();
    }
    return true;
}

}  // namespace

void RaisePriority() {
    sched_param parameter{};
    parameter.sched_priority = kLayerThreadPriority;
    pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameter);
}

std::unique_lock<std::mutex> LockPlatform() {
    // Polls instead of a timed lock, which ThreadSanitizer cannot follow.
    std::unique_lock lock(g_platformLock, std::defer_lock);
    const auto deadline = Clock::now() + kHandshakeWait;
    while (!lock.try_lock()) {
        if (Clock::now() > deadline) {
            break;
        }
        std::this_thread::sleep_for(1ms);
    }
    return lock;
}

std::vector<PaDeviceIndex> DevicesLocked(bool output) {
    std::vector<PaDeviceIndex> devices;
    if (!EnsurePlatformLocked()) {
        return devices;
    }
    const PaDeviceIndex count = Pa_GetDeviceCount();
    for (PaDeviceIndex i = 0; i < count; ++i) {
        const PaDeviceInfo* info = Pa_GetDeviceInfo(i);
        if (info != nullptr && (output ? info->maxOutputChannels : info->maxInputChannels) > 0) {
            devices.push_back(i);
        }
    }
    if (devices.empty()) {
        g_refreshWanted = true;
    }
    return devices;
}

PaDeviceIndex ResolveLocked(unsigned deviceId, bool output, MmResult& result) {
    const std::vector<PaDeviceIndex> devices = DevicesLocked(output);
    if (devices.empty()) {
        result = kMmNoDriver;
        return paNoDevice;
    }
    if (deviceId == kWaveMapper) {
        PaDeviceIndex device = output ? Pa_GetDefaultOutputDevice() : Pa_GetDefaultInputDevice();
        if (device == paNoDevice) {
            device = devices.front();
        }
        result = kMmNoError;
        return device;
    }
    if (deviceId >= devices.size()) {
        result = kMmBadDeviceId;
        return paNoDevice;
    }
    result = kMmNoError;
    return devices[deviceId];
}

namespace {

PaStreamParameters StreamParameters(PaDeviceIndex device, const WaveFormat& format, bool output) {
    PaStreamParameters parameters{};
    parameters.device = device;
    parameters.channelCount = format.channels;
    parameters.sampleFormat = format.bitsPerSample == 8 ? paUInt8 : paInt16;
    const PaDeviceInfo* info = Pa_GetDeviceInfo(device);
    if (info != nullptr) {
        parameters.suggestedLatency = output
                                          ? std::max(info->defaultLowOutputLatency, kOutputLatency)
                                          : info->defaultLowInputLatency;
    }
    return parameters;
}

}  // namespace

MmResult CheckFormatLocked(PaDeviceIndex device, const WaveFormat& format, bool output) {
    if (!IsOpenableWaveFormat(format)) {
        return kWaveBadFormat;
    }
    const PaDeviceInfo* info = Pa_GetDeviceInfo(device);
    if (info == nullptr) {
        return kMmNoDriver;
    }
    const int channels = output ? info->maxOutputChannels : info->maxInputChannels;
    if (format.channels > channels) {
        return kWaveBadFormat;
    }
    const PaStreamParameters parameters = StreamParameters(device, format, output);
    const PaError answer = output
                               ? Pa_IsFormatSupported(nullptr, &parameters, format.samplesPerSec)
                               : Pa_IsFormatSupported(&parameters, nullptr, format.samplesPerSec);
    return answer == paFormatIsSupported ? kMmNoError : kWaveBadFormat;
}

namespace {

MmResult ResultOfOpenError(PaError error) {
    switch (error) {
        case paInsufficientMemory:
            return kMmNoMemory;
        case paDeviceUnavailable:
            return kMmAllocated;
        case paInvalidSampleRate:
        case paSampleFormatNotSupported:
        case paInvalidChannelCount:
            return kWaveBadFormat;
        default:
            return kMmNoDriver;
    }
}

}  // namespace

MmResult OpenStreamLocked(PaStream** stream, PaDeviceIndex device, const WaveFormat& format,
                          bool output, PaStreamCallback* callback, void* user) {
    const PaStreamParameters parameters = StreamParameters(device, format, output);
    PaError error = Pa_OpenStream(stream, output ? nullptr : &parameters,
                                  output ? &parameters : nullptr, format.samplesPerSec,
                                  paFramesPerBufferUnspecified, paClipOff, callback, user);
    if (error == paNoError) {
        ++g_openStreams;
        error = Pa_StartStream(*stream);
        if (error != paNoError) {
            Pa_CloseStream(*stream);
            --g_openStreams;
        }
    }
    if (error != paNoError) {
        g_refreshWanted = true;
        return ResultOfOpenError(error);
    }
    return kMmNoError;
}

void TeardownStream(PaStream* stream) {
    auto done = std::make_shared<std::promise<void>>();
    std::future<void> finished = done->get_future();
    std::thread closer([stream, done] {
        {
            std::lock_guard lock(g_platformLock);
            Pa_AbortStream(stream);
            Pa_CloseStream(stream);
            --g_openStreams;
        }
        done->set_value();
    });
    if (finished.wait_for(kTeardownWait) == std::future_status::ready) {
        closer.join();
    } else {
        closer.detach();
    }
}

unsigned CountDevices(bool output) {
    std::unique_lock lock = LockPlatform();
    return lock.owns_lock() ? static_cast<unsigned>(DevicesLocked(output).size()) : 0;
}

MmResult PrepareHeader(const DeviceCore* device, WaveHeader* header) {
    if (device == nullptr) {
        return kMmInvalidHandle;
    }
    if (header == nullptr || header->data == nullptr) {
        return kMmInvalidParam;
    }
    if (device->m_dead.load()) {
        return kMmNoDriver;
    }
    header->flags = header->flags.load() | kWaveHeaderPrepared;
    return kMmNoError;
}

MmResult UnprepareHeader(const DeviceCore* device, WaveHeader* header) {
    if (device == nullptr) {
        return kMmInvalidHandle;
    }
    if (header == nullptr) {
        return kMmInvalidParam;
    }
    const std::uint32_t flags = header->flags.load();
    if ((flags & kWaveHeaderInQueue) != 0) {
        return kWaveStillPlaying;
    }
    header->flags = flags & ~kWaveHeaderPrepared;
    return kMmNoError;
}

}  // namespace portaudio_backend
