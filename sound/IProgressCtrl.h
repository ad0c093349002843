// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The shared progress bar of the practice view as the sound classes see it: they only advance
/// it. Renderers and the keying worker step it from whatever thread they run on, so every
/// implementation must accept StepIt from any thread and hand the change to its own thread.
class IProgressCtrl {
public:
    virtual ~IProgressCtrl() = default;

    /// Advances the bar by one step; never blocks for long.
    virtual void StepIt() = 0;
};
