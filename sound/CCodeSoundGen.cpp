// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/CCodeSoundGen.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include "audio/INotifyTarget.h"
#include "model/BeginThread.h"
#include "model/CodePatterns.h"
#include "model/CodeTiming.h"
#include "sound/IProgressCtrl.h"

/// Everything one run reads, copied when it starts, so that the setters and a following run can
/// never change what a worker that is still finishing sees. Every notice and progress step of
/// the run passes through it, so that once stopped the run reaches nobody.
struct CCodeSoundGen::Run final : INotifyTarget {
    using Clock = std::chrono::steady_clock;

    std::string text;
    float dit = 0.0f;
    int farnsworth = 0;
    int pitch = 0;
    INotifyTarget* notify = nullptr;
    IProgressCtrl* progress = nullptr;
    std::uint64_t generation = 0;
    // The output's state as the worker alone sees it.
    bool outputLost = false;
    bool lossReported = false;
    Clock::time_point lastOpen;

    void PostMessage(unsigned message, std::uintptr_t wParam, std::intptr_t lParam) override {
        const std::lock_guard guard(lock);
        if (!stopped && notify != nullptr) {
            notify->PostMessage(message, wParam, lParam);
        }
    }

    void StepProgress() {
        const std::lock_guard guard(lock);
        if (!stopped && progress != nullptr) {
            progress->StepIt();
        }
    }

    /// The Stop button: the element under way ends, the gaps after it are not waited out.
    void Stop() {
        const std::lock_guard guard(lock);
        stopped = true;
        wake.notify_all();
    }

    /// Quitting: a silent tone under way ends too.
    void Quit() {
        const std::lock_guard guard(lock);
        stopped = true;
        quit = true;
        wake.notify_all();
    }

    bool Stopped() {
        const std::lock_guard guard(lock);
        return stopped;
    }

    /// A gap of whole milliseconds; a stop ends it.
    void Gap(double milliseconds) {
        if (!(milliseconds >= 1.0)) {
            return;
        }
        const auto whole = milliseconds >= kLongestGapMs ? static_cast<std::int64_t>(kLongestGapMs)
                                                         : static_cast<std::int64_t>(milliseconds);
        std::unique_lock guard(lock);
        wake.wait_for(guard, std::chrono::milliseconds(whole), [this] { return stopped; });
    }

    /// A tone's time kept in silence; only quitting ends it early.
    void SilentUntil(Clock::time_point end) {
        std::unique_lock guard(lock);
        wake.wait_until(guard, end, [this] { return quit; });
    }

    /// About 46 days: no gap or tone the program can compute is longer, and waits stay well
    /// inside the clock's range.
    static constexpr double kLongestGapMs = 4.0e9;

private:
    std::mutex lock;
    std::condition_variable wake;
    bool stopped = false;
    bool quit = false;
};

namespace {

/// How often a run tries a lost output again, and how long it must then play to count as back.
constexpr std::chrono::seconds kReopenInterval{2};
constexpr std::chrono::seconds kSteadyAfterOpen{1};

// Registered when the program starts, as the completion notice always was.
const unsigned s_workFinished = RegisterWindowMessage("CCodeSoundGen_WM_WORK_FINISHED");

}  // namespace

CCodeSoundGen::CCodeSoundGen() = default;

CCodeSoundGen::~CCodeSoundGen() {
    Quit();
}

void CCodeSoundGen::Quit() {
    if (m_run) {
        m_run->Quit();
    }
    m_running.store(0);
    m_run.reset();
    if (m_thread && m_thread->joinable()) {
        m_thread->join();
    }
    m_thread.reset();
}

void CCodeSoundGen::SetText(std::string_view text) {
    m_text = ToUpperAscii(text);
}
void CCodeSoundGen::SetWordsPerMinute(int wordsPerMinute) {
    m_wordsPerMinute = wordsPerMinute;
}
void CCodeSoundGen::SetPitch(int pitch) {
    m_pitch = pitch;
}
void CCodeSoundGen::SetFarnsworthFactor(int factor) {
    m_farnsworth = factor;
}
void CCodeSoundGen::SetProgressCtrl(IProgressCtrl* progress) {
    m_progress = progress;
}
// The player learns its owner when a run starts: a worker that is still finishing may be using
// the player right now.
void CCodeSoundGen::SetNotifyWindow(INotifyTarget* notify) {
    m_notify = notify;
}

int CCodeSoundGen::IsRunning() const {
    return m_running.load() != 0 ? 1 : 0;
}

std::string CCodeSoundGen::LookupPattern(char c) {
    return std::string(::LookupPattern(c));
}

unsigned CCodeSoundGen::WorkFinishedMessage() {
    return s_workFinished;
}

int CCodeSoundGen::CountUnits() const {
    const std::int64_t units = ::CountUnits(m_text, m_farnsworth);
    return static_cast<int>(std::min<std::int64_t>(units, INT32_MAX - 1));
}

double CCodeSoundGen::EstimateSeconds() {
    m_ditSeconds = DitSeconds(m_wordsPerMinute);
    return static_cast<double>(m_ditSeconds) * CountUnits();
}

int CCodeSoundGen::StartStop() {
    if (m_running.load() != 0) {
        if (m_run) {
            m_run->Stop();
        }
        m_running.store(0);
        m_run.reset();
        return 0;
    }
    if (m_text.empty()) {
        return 1;
    }

    auto run = std::make_shared<Run>();
    run->text = m_text;
    m_unitsPlusOne = CountUnits() + 1;
    m_ditSeconds = DitSeconds(m_wordsPerMinute);
    m_totalSeconds = static_cast<float>(m_unitsPlusOne) * m_ditSeconds;
    run->dit = m_ditSeconds;
    run->farnsworth = m_farnsworth;
    run->pitch = m_pitch;
    run->notify = m_notify;
    run->progress = m_progress;
    run->generation = ++m_generation;
    m_running.store(run->generation);
    // A stopped run may still be finishing its last tone: the new worker waits for it before
    // touching the player, so the user-interface thread never blocks here. Nobody hears the
    // rest of a silent one, which ends at once.
    if (m_run) {
        m_run->Quit();
    }
    m_run = run;

    std::shared_ptr<std::thread> previous = std::move(m_thread);
    auto started = BeginThread([this, run, previous] {
        if (previous && previous->joinable()) {
            previous->join();
        }
        GenerateThreadProc(*run);
    });
    if (!started) {
        m_thread = std::move(previous);
        m_running.store(0);
        return 0;
    }
    m_thread = std::make_shared<std::thread>(std::move(*started));
    return 1;
}

void CCodeSoundGen::Tone(Run& run, float seconds) {
    // A pitch of 0 or below plays nothing, and without a usable device the player returns at
    // once: either way the tone is waited out in silence so that the run keeps its full time.
    const auto start = Run::Clock::now();
    if (run.pitch <= 0 || !Play(run, seconds)) {
        const double kept = std::min(static_cast<double>(seconds), Run::kLongestGapMs / 1000);
        run.SilentUntil(start + std::chrono::duration_cast<Run::Clock::duration>(
                                    std::chrono::duration<double>(kept)));
    }
}

bool CCodeSoundGen::Play(Run& run, float seconds) {
    const auto now = Run::Clock::now();
    if (run.outputLost) {
        // Opening where no server answers takes a while: tried at most once in this time.
        if (now - run.lastOpen < kReopenInterval) {
            return false;
        }
        run.lastOpen = now;
        m_player.CloseDevice();
        m_player.OpenDevice();
        if (m_player.GetLastResult() != kMmNoError) {
            return false;
        }
        run.outputLost = false;
    }
    // Said once each way: a server that is still starting may fail a tone or two, so the output
    // counts as back only once it has played for a while.
    if (m_player.PlayTone(run.pitch, seconds) != 0) {
        if (run.lossReported && Run::Clock::now() - run.lastOpen >= kSteadyAfterOpen) {
            run.lossReported = false;
            run.PostMessage(kOutputBack, 1, 1);
        }
        return true;
    }
    run.outputLost = true;
    run.lastOpen = now;
    if (!run.lossReported) {
        run.lossReported = true;
        run.PostMessage(kOutputLost, 1, 1);
    }
    return false;
}

void CCodeSoundGen::GenerateThreadProc(Run& run) {
    // The player's tone notices go through the run as well.
    m_player.m_ownerWindow = &run;
    m_player.OpenDevice();
    const float d = run.dit;
    const int factor = run.farnsworth;
    for (const char c : run.text) {
        if (run.Stopped()) {
            break;
        }
        if (c != ' ') {
            run.PostMessage(kAppMessage + 2, 1, 1);
        }
        for (const char element : ::LookupPattern(c)) {
            if (run.Stopped()) {
                break;
            }
            if (element == '.') {
                Tone(run, d);
            } else if (element == '-') {
                Tone(run, d * 3);
            } else if (element == ' ') {
                run.Gap(d * 1000 * 3);
                if (factor > 0) {
                    run.Gap(d * 1000 * (factor * 0.5));
                }
            }
            run.Gap(d * 1000);
        }
        run.Gap(d * 1000);
        if (factor > 0) {
            run.Gap(d * 1000 * static_cast<float>(factor));
        }
        run.StepProgress();
    }
    run.PostMessage(s_workFinished, reinterpret_cast<std::uintptr_t>(this), 0);
    run.PostMessage(kAppMessage + 1, 1, 1);
    m_player.CloseDevice();
    m_player.m_ownerWindow = nullptr;
    std::uint64_t mine = run.generation;
    m_running.compare_exchange_strong(mine, 0);
}
