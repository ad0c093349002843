// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// An iambic keyer as a state machine over time counted in samples, so the audio path can run it
/// on its output stream's clock: the paddles' state goes in, the key's state comes out.
///
/// A paddle held sends its element again and again, each followed by one unit of silence; both
/// held (squeezed) alternate dits and dahs. Dot and dash memory: a paddle pressed while the other
/// element or the gap after it is sounding is remembered and sent next, even if it was let go.
/// The two modes differ when a squeeze is let go: Iambic A finishes the element under way and
/// stops; Iambic B adds the opposite element once more (a paddle held down as an element starts
/// counts as pressed during it).
class CIambicKeyer {
public:
    enum class Mode { IambicA, IambicB };

    static constexpr std::int64_t kForever = INT64_MAX;

    CIambicKeyer(std::uint32_t sampleRate, int wordsPerMinute, Mode mode);

    void SetMode(Mode mode) { m_mode = mode; }
    void SetWordsPerMinute(int wordsPerMinute);  ///< from the next element on

    /// The paddles' state from the current sample on.
    void SetPaddles(bool dit, bool dah);

    /// Whether the key is down (the tone sounds) at the current sample.
    bool KeyDown() const { return m_state == State::Element; }

    /// Samples from the current one to the next point where the keyer may change the key;
    /// kForever while it waits for a paddle.
    std::int64_t SamplesToNextChange() const;

    /// Moves the clock on by a number of samples, acting on every point passed on the way.
    void Advance(std::int64_t samples);

    std::int64_t UnitSamples() const { return m_unitSamples; }

private:
    enum class State { Idle, Element, Gap };
    enum class Element { None, Dit, Dah };

    void StartNext();
    void Start(Element element);

    std::uint32_t m_sampleRate;
    std::int64_t m_unitSamples = 1;
    Mode m_mode;
    State m_state = State::Idle;
    Element m_last = Element::None;
    std::int64_t m_left = 0;  ///< samples left in the element or gap
    bool m_dit = false;
    bool m_dah = false;
    bool m_ditMemory = false;
    bool m_dahMemory = false;
};
