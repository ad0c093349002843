// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "audio/CPomelSyncPlay.h"

class INotifyTarget;
class IProgressCtrl;

/// Keys the practice text live on a worker thread: one tone of the pitch per dit and dah through
/// its own CPomelSyncPlay, every gap a sleep of whole milliseconds. It posts kAppMessage + 2
/// (1, 1) before each character other than the blank and, when the run reaches the end of its
/// text, the registered "CCodeSoundGen_WM_WORK_FINISHED" message (wParam = this worker, lParam 0)
/// followed by kAppMessage + 1 (1, 1). A run that is stopped posts and steps nothing more from
/// the moment StartStop returns: whoever stops it ends the session, so a session ends once and a
/// stopped run's late notices never reach the next one. When the sound output fails during a run
/// it posts kOutputLost (1, 1) once and keys on silently, trying the output again now and then;
/// kOutputBack (1, 1) follows when it plays again.
class CCodeSoundGen {
public:
    static constexpr unsigned kOutputLost = kAppMessage + 5;
    static constexpr unsigned kOutputBack = kAppMessage + 6;

    CCodeSoundGen();
    /// Quits a running worker and waits for it: the worker reads this object.
    virtual ~CCodeSoundGen();
    CCodeSoundGen(const CCodeSoundGen&) = delete;
    CCodeSoundGen& operator=(const CCodeSoundGen&) = delete;

    void SetText(std::string_view text);  ///< stored upper-cased
    void SetWordsPerMinute(int wordsPerMinute);
    void SetPitch(int pitch);  ///< hertz; 0 or below keys silently with full timing
    void SetFarnsworthFactor(int factor);
    void SetProgressCtrl(IProgressCtrl* progress);  ///< stepped from the worker thread
    void SetNotifyWindow(INotifyTarget* notify);

    int IsRunning() const;

    /// Idle: starts a run and returns 1 (also for an empty text, which starts nothing), or 0 when
    /// no thread could be started. Running: requests a stop at the next element boundary and
    /// returns 0 without waiting.
    int StartStop();

    /// Ends a run at once, as when the program quits: its gaps and silent tones are cut short and
    /// only a tone already at the device is waited for. Returns when the worker has ended.
    void Quit();

    /// Length of the text in dit units.
    int CountUnits() const;

    /// Dit length × CountUnits() for the current text, speed and factor; stores the dit length.
    double EstimateSeconds();

    static std::string LookupPattern(char c);

    /// The registered number of "CCodeSoundGen_WM_WORK_FINISHED".
    static unsigned WorkFinishedMessage();

    /// Length of the last started run in seconds, (units + 1) × dit.
    float TotalSeconds() const { return m_totalSeconds; }

private:
    struct Run;

    void GenerateThreadProc(Run& run);
    void Tone(Run& run, float seconds);
    /// Plays a tone at the output, opening it again first when it was lost; false when silent.
    bool Play(Run& run, float seconds);

    std::atomic<std::uint64_t> m_running{0};  ///< generation of the run in progress, 0 when idle
    CPomelSyncPlay m_player;
    INotifyTarget* m_notify = nullptr;
    float m_totalSeconds = 0.0f;
    float m_ditSeconds = 0.0f;
    int m_unitsPlusOne = 0;
    int m_farnsworth = 0;
    std::string m_text;
    IProgressCtrl* m_progress = nullptr;
    int m_pitch = 750;
    int m_wordsPerMinute = 12;
    std::shared_ptr<Run> m_run;  ///< what the worker of the latest run reads; it holds a share

    std::uint64_t m_generation = 0;
    std::shared_ptr<std::thread> m_thread;
};
