// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <mutex>

#include "sound/IProgressCtrl.h"
#include "widgets/CStatusProgress.h"

/// The status-bar progress bar as the sound classes step it. It holds the bar's stepper, not the
/// bar, so a bar the frame has replaced in the meantime is stepped harmlessly. A worker that is
/// still finishing may step it while the next run attaches a new bar.
class CProgressStepper final : public IProgressCtrl {
public:
    /// Steps this bar from now on; nullptr steps nothing.
    void Attach(const CStatusProgress* progress) {
        std::function<void()> step = progress ? progress->Stepper() : std::function<void()>();
        const std::lock_guard guard(m_lock);
        m_step = std::move(step);
    }

    void StepIt() override {
        const std::lock_guard guard(m_lock);
        if (m_step) {
            m_step();
        }
    }

private:
    std::mutex m_lock;
    std::function<void()> m_step;
};
