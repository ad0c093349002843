// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CIambicKeyer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr std::uint32_t kRate = 48000;

/// A change of the paddles at a time in units.
struct Paddles {
    double at;
    bool dit;
    bool dah;
};

/// Runs the keyer over a paddle script for some units, in audio-sized pieces, and returns what
/// it keyed: "." and "-" for tones, "?" for a tone or gap of any other length.
std::string Keyed(CIambicKeyer::Mode mode, const std::vector<Paddles>& script, double units) {
    CIambicKeyer keyer(kRate, 20, mode);
    const std::int64_t unit = keyer.UnitSamples();
    const auto end = static_cast<std::int64_t>(units * static_cast<double>(unit));
    constexpr std::int64_t kPiece = 256;
    std::string keyed;
    std::int64_t now = 0;
    std::int64_t changed = 0;
    bool down = false;
    std::size_t next = 0;
    auto noteChange = [&] {
        if (keyer.KeyDown() == down) {
            return;
        }
        const std::int64_t length = now - changed;
        if (down) {
            keyed += length == unit ? '.' : length == 3 * unit ? '-' : '?';
        } else if (changed > 0 && length != unit) {
            keyed += ' ';
        }
        down = keyer.KeyDown();
        changed = now;
    };
    while (now < end) {
        while (next < script.size() &&
               static_cast<std::int64_t>(script[next].at * static_cast<double>(unit)) <= now) {
            keyer.SetPaddles(script[next].dit, script[next].dah);
            ++next;
            noteChange();
        }
        std::int64_t step = std::min(kPiece - now % kPiece, end - now);
        if (next < script.size()) {
            step = std::min(step, static_cast<std::int64_t>(script[next].at * unit) - now);
        }
        step = std::min(step, keyer.SamplesToNextChange());
        keyer.Advance(step);
        now += step;
        noteChange();
    }
    return keyed;
}

TEST(IambicKeyer, SqueezesAndMemoriesAsEachModeKeys) {
    using Mode = CIambicKeyer::Mode;
    struct Case {
        const char* name;
        std::vector<Paddles> script;
        const char* iambicA;
        const char* iambicB;
    };
    const Case cases[] = {
        {"dit held repeats", {{0, true, false}, {4.5, false, false}}, "...", "..."},
        {"dah held repeats", {{0, false, true}, {6.5, false, false}}, "--", "--"},
        {"squeeze held alternates", {{0, true, true}, {13.5, false, false}}, ".-.-.", ".-.-.-"},
        {"squeeze let go during the dah", {{0, true, true}, {3.5, false, false}}, ".-", ".-."},
        {"squeeze let go during a dit",
         {{0, false, true}, {1, true, true}, {4.5, false, false}},
         "-.",
         "-.-"},
        {"dit tapped during a dah: dot memory",
         {{0, false, true}, {1, true, true}, {1.5, false, false}},
         "-.",
         "-."},
        {"dah tapped in the gap: dash memory",
         {{0, true, false}, {0.5, false, false}, {1.2, false, true}, {1.6, false, false}},
         ".-",
         ".-"},
        {"nothing pressed, nothing keyed", {}, "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Keyed(Mode::IambicA, c.script, 30), c.iambicA);
        EXPECT_EQ(Keyed(Mode::IambicB, c.script, 30), c.iambicB);
    }
}

TEST(IambicKeyer, KeysAtTheSetSpeedOnTheSampleClock) {
    CIambicKeyer keyer(kRate, 20, CIambicKeyer::Mode::IambicB);
    EXPECT_EQ(keyer.UnitSamples(), 2880);  // 60 ms at 48 kHz
    EXPECT_EQ(keyer.SamplesToNextChange(), CIambicKeyer::kForever);
    keyer.SetPaddles(false, true);
    EXPECT_TRUE(keyer.KeyDown());
    EXPECT_EQ(keyer.SamplesToNextChange(), 3 * 2880);
    keyer.Advance(3 * 2880);
    EXPECT_FALSE(keyer.KeyDown());
    keyer.SetPaddles(false, false);
    keyer.Advance(10 * 2880);  // one long step passes the gap and stops
    EXPECT_FALSE(keyer.KeyDown());
    EXPECT_EQ(keyer.SamplesToNextChange(), CIambicKeyer::kForever);
}

}  // namespace
