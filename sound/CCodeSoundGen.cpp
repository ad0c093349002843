// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/CCodeSoundGen.h"

#include <algorithm>
#include <chrono>

#include "audio/INotifyTarget.h"
#include "model/BeginThread.h"
#include "model/CodePatterns.h"
#include "model/CodeTiming.h"
#include "sound/IProgressCtrl.h"

/// Everything one run reads, copied when it starts, so that the setters and a following run can
/// never change what a worker that is still finishing sees.
struct CCodeSoundGen::Run {
    std::string text;
    float dit = 0.0f;
    int farnsworth = 0;
    int pitch = 0;
    INotifyTarget* notify = nullptr;
    IProgressCtrl* progress = nullptr;
    std::uint64_t generation = 0;
    std::atomic<int> stop{0};
};

namespace {

// Registered when the program starts, as the completion notice always was.
const unsigned s_workFinished = RegisterWindowMessage("CCodeSoundGen_WM_WORK_FINISHED");

void Post(INotifyTarget* notify, unsigned message, std::uintptr_t wParam, std::intptr_t lParam) {
    if (notify != nullptr) {
        notify->PostMessage(message, wParam, lParam);
    }
}

}  // namespace

CCodeSoundGen::CCodeSoundGen() = default;

CCodeSoundGen::~CCodeSoundGen() {
    if (m_run) {
        m_run->stop.store(1);
    }
    if (m_thread && m_thread->joinable()) {
        m_thread->join();
    }
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
            m_run->stop.store(1);
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
    m_run = run;

    // A stopped run may still be sleeping its closing gaps: the new worker waits for it before
    // touching the player, so the user-interface thread never blocks here.
    std::shared_ptr<std::thread> previous = std::move(m_thread);
    auto started = BeginThread([this, run, previous] {
        if (previous && previous->joinable()) {
            previous->join();
        }
        GenerateThreadProc(*run);
    });
    if (!started) {
        m_thread = std::move(previous);
        return 0;
    }
    m_thread = std::make_shared<std::thread>(std::move(*started));
    return 1;
}

void CCodeSoundGen::Sleep(double milliseconds) const {
    if (!(milliseconds >= 1.0)) {
        return;
    }
    const auto whole = milliseconds >= 4.0e9 ? 4000000000U : static_cast<unsigned>(milliseconds);
    std::this_thread::sleep_for(std::chrono::milliseconds(whole));
}

void CCodeSoundGen::Tone(const Run& run, float seconds) {
    // A pitch of 0 or below plays nothing, and without a usable device the player returns at
    // once: either way the tone is waited out in silence so that the run keeps its full time.
    const auto start = std::chrono::steady_clock::now();
    if (run.pitch <= 0 || m_player.PlayTone(run.pitch, seconds) == 0) {
        std::this_thread::sleep_until(start + std::chrono::duration<double>(seconds));
    }
}

void CCodeSoundGen::GenerateThreadProc(Run& run) {
    m_player.m_ownerWindow = run.notify;
    m_player.OpenDevice();
    const float d = run.dit;
    const int factor = run.farnsworth;
    for (const char c : run.text) {
        if (run.stop.load() != 0) {
            break;
        }
        if (c != ' ') {
            Post(run.notify, kAppMessage + 2, 1, 1);
        }
        for (const char element : ::LookupPattern(c)) {
            if (run.stop.load() != 0) {
                break;
            }
            if (element == '.') {
                Tone(run, d);
            } else if (element == '-') {
                Tone(run, d * 3);
            } else if (element == ' ') {
                Sleep(d * 1000 * 3);
                if (factor > 0) {
                    Sleep(d * 1000 * (factor * 0.5));
                }
            }
            Sleep(d * 1000);
        }
        Sleep(d * 1000);
        if (factor > 0) {
            Sleep(d * 1000 * static_cast<float>(factor));
        }
        if (run.progress != nullptr) {
            run.progress->StepIt();
        }
    }
    Post(run.notify, s_workFinished, reinterpret_cast<std::uintptr_t>(this), 0);
    Post(run.notify, kAppMessage + 1, 1, 1);
    m_player.CloseDevice();
    std::uint64_t mine = run.generation;
    m_running.compare_exchange_strong(mine, 0);
}
