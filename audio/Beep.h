// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Sounds a sine tone of frequency Hz (37 to 32767) for milliseconds on the default output and
/// returns when it has been heard; false for a frequency out of range or no output. Blocks the
/// caller for the whole tone.
bool Beep(std::uint32_t frequency, std::uint32_t milliseconds);
