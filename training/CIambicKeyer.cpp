// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CIambicKeyer.h"

#include <algorithm>
#include <cmath>

#include "model/CodeTiming.h"

CIambicKeyer::CIambicKeyer(std::uint32_t sampleRate, int wordsPerMinute, Mode mode)
    : m_sampleRate(sampleRate), m_mode(mode) {
    SetWordsPerMinute(wordsPerMinute);
}

void CIambicKeyer::SetWordsPerMinute(int wordsPerMinute) {
    const double samples =
        static_cast<double>(DitSeconds(std::max(wordsPerMinute, 1))) * m_sampleRate;
    m_unitSamples = std::max<std::int64_t>(1, std::llround(samples));
}

void CIambicKeyer::SetPaddles(bool dit, bool dah) {
    const bool ditPressed = dit && !m_dit;
    const bool dahPressed = dah && !m_dah;
    m_dit = dit;
    m_dah = dah;
    if (m_state == State::Idle) {
        StartNext();
    } else {
        m_ditMemory = m_ditMemory || ditPressed;
        m_dahMemory = m_dahMemory || dahPressed;
    }
}

std::int64_t CIambicKeyer::SamplesToNextChange() const {
    return m_state == State::Idle ? kForever : m_left;
}

void CIambicKeyer::Advance(std::int64_t samples) {
    while (samples > 0 && m_state != State::Idle) {
        const std::int64_t step = std::min(samples, m_left);
        m_left -= step;
        samples -= step;
        if (m_left > 0) {
            continue;
        }
        if (m_state == State::Element) {
            m_state = State::Gap;
            m_left = m_unitSamples;
        } else {
            StartNext();
        }
    }
}

void CIambicKeyer::StartNext() {
    const Element opposite = m_last == Element::Dit ? Element::Dah : Element::Dit;
    if (m_ditMemory && m_dahMemory) {
        Start(opposite);
    } else if (m_ditMemory) {
        Start(Element::Dit);
    } else if (m_dahMemory) {
        Start(Element::Dah);
    } else if (m_dit && m_dah) {
        Start(opposite);
    } else if (m_dit) {
        Start(Element::Dit);
    } else if (m_dah) {
        Start(Element::Dah);
    } else {
        m_state = State::Idle;
        m_last = Element::None;
    }
}

void CIambicKeyer::Start(Element element) {
    m_state = State::Element;
    m_last = element;
    m_left = element == Element::Dit ? m_unitSamples : 3 * m_unitSamples;
    if (element == Element::Dit) {
        m_ditMemory = false;
        // Iambic B: the other paddle held as this element starts is a squeeze to be answered.
        m_dahMemory = m_dahMemory || (m_mode == Mode::IambicB && m_dah);
    } else {
        m_dahMemory = false;
        m_ditMemory = m_ditMemory || (m_mode == Mode::IambicB && m_dit);
    }
}
