// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CPropSheet.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include "app/CTonwerkDoc.h"
#include "res/TonwerkResources.h"

namespace {

CPropSheet::Driver& SheetDriver() {
    static CPropSheet::Driver driver;
    return driver;
}

}  // namespace

CPropSheet::CPropSheet(CTonwerkDoc* doc, QWidget* parent) : QDialog(parent), m_doc(doc) {
    setWindowTitle(tr("Tonwerk Configuration"));
    setObjectName("PropSheet");
    auto* layout = new QVBoxLayout(this);
    m_tabs = new QTabWidget(this);
    const QIcon pageIcon(QString::fromLatin1(tonwerk::res::kSheetPageIcon));
    m_tabs->addTab(&m_speed, pageIcon, tr("Speed"));
    m_tabs->addTab(&m_speech, pageIcon, tr("Speech"));
    layout->addWidget(m_tabs);
    m_buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply, this);
    layout->addWidget(m_buttons);
    ApplyButton()->setEnabled(false);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &CPropSheet::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &CPropSheet::reject);
    connect(ApplyButton(), &QPushButton::clicked, this, &CPropSheet::OnApply);
    connect(&m_speed, &CPropPageSpeed::Modified, this, [this] { SetModified(true); });
    connect(&m_speech, &CPropPageSpeech::Modified, this, [this] { SetModified(true); });
    connect(m_tabs, &QTabWidget::currentChanged, this, [this](int index) {
        if (index == m_activePage) {
            return;
        }
        // Leaving a page exchanges its data; a refused value keeps the user on it.
        const int target = index;
        {
            const QSignalBlocker blocker(m_tabs);
            m_tabs->setCurrentIndex(m_activePage);
        }
        if (UpdateActivePage()) {
            m_activePage = target;
            const QSignalBlocker blocker(m_tabs);
            m_tabs->setCurrentIndex(target);
        }
    });
    resize(420, 360);
}

CPropSheet::~CPropSheet() {
    // The pages go before the tab widget; their removal must not count as leaving a page.
    m_tabs->disconnect(this);
}

QPushButton* CPropSheet::ApplyButton() const {
    return m_buttons->button(QDialogButtonBox::Apply);
}
QPushButton* CPropSheet::OkButton() const {
    return m_buttons->button(QDialogButtonBox::Ok);
}

void CPropSheet::LoadFromProfile() {
    const CodeTiming timing = m_doc->Settings().ReadSheetTiming();
    m_speed.PauseDit = timing.PauseDit;
    m_speed.PauseDah = timing.PauseDah;
    m_speed.PauseChar = timing.PauseChar;
    m_speed.PauseWord = timing.PauseWord;
    m_speed.ToneMHz = timing.ToneMHz;
    m_speed.WordRate = timing.WordRate;
    m_speech.SpeechDelay = timing.SpeechDelay;
    m_speech.Actor = timing.Actor;
    m_speed.UpdateData(false);
    m_speech.UpdateData(false);
    m_speech.SetActorChecks();
    SetModified(false);
}

CodeTiming CPropSheet::Timing() const {
    CodeTiming timing;
    timing.PauseChar = m_speed.PauseChar;
    timing.PauseDah = m_speed.PauseDah;
    timing.PauseDit = m_speed.PauseDit;
    timing.PauseWord = m_speed.PauseWord;
    timing.ToneMHz = m_speed.ToneMHz;
    timing.WordRate = m_speed.WordRate;
    timing.SpeechDelay = m_speech.SpeechDelay;
    timing.Actor = m_speech.Actor;
    return timing;
}

bool CPropSheet::UpdateActivePage() {
    return m_activePage == 0 ? m_speed.UpdateData(true) : m_speech.UpdateData(true);
}

void CPropSheet::SetModified(bool modified) {
    ApplyButton()->setEnabled(modified);
}

bool CPropSheet::OnApply() {
    if (!UpdateActivePage()) {
        return false;
    }
    m_doc->SaveSettings(Timing());
    SetModified(false);
    return true;
}

void CPropSheet::accept() {
    if (UpdateActivePage()) {
        QDialog::accept();
    }
}

void CPropSheet::SetDriver(Driver driver) {
    SheetDriver() = std::move(driver);
}

int CPropSheet::Run(CPropSheet& sheet) {
    if (SheetDriver()) {
        return SheetDriver()(sheet);
    }
    return sheet.exec();
}
