// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "sound/IProgressCtrl.h"
#include "widgets/CStatusProgress.h"

/// The status-bar progress bar as the sound classes step it. It holds the bar's stepper, not the
/// bar, so a bar the frame has replaced in the meantime is stepped harmlessly.
class CProgressStepper final : public IProgressCtrl {
public:
    /// Steps this bar from now on; nullptr steps nothing.
    void Attach(const CStatusProgress* progress) {
        m_step = progress ? progress->Stepper() : std::function<void()>();
    }

    void StepIt() override {
        if (m_step) {
            m_step();
        }
    }

private:
    std::function<void()> m_step;
};
