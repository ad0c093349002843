// SPDX-License-Identifier: GPL-3.0-or-later
// The practice view's random practice text: the Random menu, the selection and the generators.
#include <QAction>
#include <QPushButton>

#include "app/CMainFrame.h"
#include "app/CModalSeam.h"
#include "app/CTonwerkDoc.h"
#include "app/CTonwerkView.h"
#include "app/CWaitCursor.h"
#include "model/CMorseAlphabet.h"
#include "model/CRandomText.h"
#include "widgets/CStatusProgress.h"

void CTonwerkView::SetSelection(int first, int count, bool checked) {
    for (int i = first; i < first + count; ++i) {
        m_selection[static_cast<std::size_t>(i)]->setChecked(checked);
    }
}

void CTonwerkView::UpdateRandomMenuChecks() {
    if (!m_frame) {
        return;
    }
    const std::pair<int, int> checks[] = {{CMainFrame::kNumbersToggle, m_numbersToggle},
                                          {CMainFrame::kProSignsToggle, m_proSignsToggle},
                                          {CMainFrame::kDoubleSpace, m_doubleSpace}};
    for (const auto& [command, state] : checks) {
        if (QAction* action = m_frame->Action(command)) {
            action->setChecked(state != 0);
        }
    }
}

void CTonwerkView::OnAllOn() {
    SetSelection(0, kLetterCount + kDigitCount + kSignCount, true);
    m_numbersToggle = 1;
    m_proSignsToggle = 1;
    m_doc->Settings().SetRanProSnTog(1);
    m_doc->Settings().SetNumTog(1);
    SaveSelection();
    UpdateRandomMenuChecks();
}

void CTonwerkView::OnAllOff() {
    SetSelection(0, kLetterCount + kDigitCount + kSignCount, false);
    SaveSelection();
    m_numbersToggle = 0;
    m_proSignsToggle = 0;
    m_doc->Settings().SetRanProSnTog(0);
    m_doc->Settings().SetNumTog(0);
    UpdateRandomMenuChecks();
}

void CTonwerkView::SelectLetterClass(LetterClass letterClass) {
    // Numbers and signs are cleared too, toggles and all: a class is a fresh start.
    OnAllOff();
    const std::string letters =
        CMorseAlphabet::LettersOf(letterClass, m_doc->Settings().GetDblSpace() != 0);
    for (const char letter : letters) {
        m_selection[static_cast<std::size_t>(letter - 'A')]->setChecked(true);
    }
    SaveSelection();
}

void CTonwerkView::OnDitCharacters() {
    SelectLetterClass(LetterClass::StartsWithDit);
}

void CTonwerkView::OnDahCharacters() {
    SelectLetterClass(LetterClass::StartsWithDah);
}

void CTonwerkView::OnToneCharacters(int tones) {
    static constexpr LetterClass kByTones[] = {LetterClass::OneTone, LetterClass::TwoTones,
                                               LetterClass::ThreeTones, LetterClass::FourTones};
    if (tones >= 1 && tones <= 4) {
        SelectLetterClass(kByTones[tones - 1]);
    }
}

void CTonwerkView::OnNumbersToggle() {
    m_numbersToggle = m_numbersToggle ? 0 : 1;
    SetSelection(kLetterCount, kDigitCount, m_numbersToggle != 0);
    SaveSelection();
    m_doc->Settings().SetNumTog(m_numbersToggle);
    UpdateRandomMenuChecks();
}

void CTonwerkView::OnProSignsToggle() {
    m_proSignsToggle = m_proSignsToggle ? 0 : 1;
    SetSelection(kLetterCount + kDigitCount, kSignCount, m_proSignsToggle != 0);
    SaveSelection();
    // The numbers toggle is what gets stored here; the pro-sign state itself is not kept.
    m_doc->Settings().SetRanProSnTog(m_numbersToggle);
    UpdateRandomMenuChecks();
}

void CTonwerkView::OnDoubleSpace() {
    m_doubleSpace = m_doubleSpace ? 0 : 1;
    m_doc->Settings().SetDblSpace(m_doubleSpace);
    UpdateRandomMenuChecks();
}

bool CTonwerkView::TakeRandomFields() {
    // A refused field has been reported; the learner corrects it before anything is generated.
    if (!UpdateData(true)) {
        return false;
    }
    m_doc->Settings().SetRandomWordSize(m_wordSize);
    m_doc->Settings().SetRandomWordCount(m_wordCount);
    m_practiceText.clear();
    return true;
}

void CTonwerkView::FinishRandomText(const std::string& text) {
    if (m_frame) {
        m_frame->RemoveProgress();
    }
    m_practiceText = QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
    UpdateData(false);
    SaveSelection();
    OnTextToMorse();
    OnCalculateCompletionTime();
}

void CTonwerkView::OnRandom() {
    if (m_soundGen.IsRunning()) {
        return;
    }
    const CWaitCursor wait;
    CCrtRandom rng(static_cast<std::uint32_t>(NowSeconds()));
    const std::string selection = CRandomText::BuildSelection([this](char c) {
        const std::string_view characters = CMorseAlphabet::SelectableCharacters();
        return m_selection[characters.find(c)]->isChecked();
    });
    if (!TakeRandomFields()) {
        return;
    }
    CStatusProgress* progress = m_frame ? m_frame->ResetProgress() : nullptr;
    if (progress) {
        progress->SetRange(0, m_wordCount);
    }
    if (selection.empty()) {
        // The practice text stays empty here while the field keeps showing the old one.
        CModalSeam::Message(this, tr("Please select some characters to use in the generation."),
                            QMessageBox::Ok, QMessageBox::Warning);
        return;
    }
    const std::string text =
        CRandomText::Groups(selection, m_wordCount, m_wordSize, rng, [progress] {
            if (progress) {
                progress->StepIt();
            }
        });
    FinishRandomText(text);
}

void CTonwerkView::OnCallSigns() {
    if (!TakeRandomFields()) {
        return;
    }
    const std::string text = CRandomText::CallSigns(m_wordCount, NowSeconds(), [this] {
        // No bar of its own: one left by an earlier run is stepped while it is still there.
        if (CStatusProgress* progress = m_frame ? m_frame->Progress() : nullptr) {
            progress->StepIt();
        }
    });
    FinishRandomText(text);
}
