// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CPropPageSpeed.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/CDataExchange.h"

namespace {

constexpr CDataExchange::Range kPauseRange{1, 500};

QLineEdit* MakeField(QWidget* parent, int id, const char* name) {
    auto* field = new QLineEdit(parent);
    field->setObjectName(QString::fromLatin1(name));
    field->setProperty("controlId", id);
    field->setMaximumWidth(90);
    return field;
}

}  // namespace

CPropPageSpeed::CPropPageSpeed(QWidget* parent) : QWidget(parent) {
    setObjectName("PageSpeed");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("All uints measured in milli seconds"), this));
    auto* grid = new QGridLayout;
    layout->addLayout(grid);

    m_editDit = MakeField(this, 1046, "editPauseDit");
    m_editDah = MakeField(this, 1047, "editPauseDah");
    m_editChar = MakeField(this, 1048, "editPauseChar");
    m_editWord = MakeField(this, 1049, "editPauseWord");
    m_editTone = MakeField(this, 1051, "editToneMHz");
    m_editRate = MakeField(this, 1052, "editWordRate");
    const std::pair<const char*, QLineEdit*> rows[] = {
        {"Dit Speed:", m_editDit},  {"Dah Speed:", m_editDah}, {"Char to Char:", m_editChar},
        {"Next Word:", m_editWord}, {"Tone MHz:", m_editTone}, {"Words per min:", m_editRate}};
    int row = 0;
    for (const auto& [text, field] : rows) {
        auto* label = new QLabel(tr(text), this);
        label->setBuddy(field);
        grid->addWidget(label, row, 0);
        grid->addWidget(field, row, 1);
        connect(field, &QLineEdit::textEdited, this, &CPropPageSpeed::Modified);
        ++row;
    }
    grid->setColumnStretch(2, 1);

    auto* farnsworth = new QPushButton(tr("Fransworth 5 WPM"), this);
    farnsworth->setObjectName("buttonFarnsworth");
    farnsworth->setProperty("controlId", 1053);
    auto* reset = new QPushButton(tr("Reset to Defaults"), this);
    reset->setObjectName("buttonResetSpeed");
    reset->setProperty("controlId", 1050);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(farnsworth);
    buttons->addWidget(reset);
    buttons->addStretch();
    layout->addLayout(buttons);
    layout->addStretch();
    connect(farnsworth, &QPushButton::clicked, this, &CPropPageSpeed::OnFarnsworth);
    connect(reset, &QPushButton::clicked, this, &CPropPageSpeed::OnResetDefaults);
}

QLineEdit* CPropPageSpeed::Field(int id) const {
    for (QLineEdit* field :
         {m_editDit, m_editDah, m_editChar, m_editWord, m_editTone, m_editRate}) {
        if (field->property("controlId").toInt() == id) {
            return field;
        }
    }
    return nullptr;
}

bool CPropPageSpeed::UpdateData(bool saveAndValidate) {
    if (!saveAndValidate) {
        CDataExchange::Push(m_editChar, PauseChar);
        CDataExchange::Push(m_editDah, PauseDah);
        CDataExchange::Push(m_editDit, PauseDit);
        CDataExchange::Push(m_editWord, PauseWord);
        CDataExchange::Push(m_editTone, ToneMHz);
        CDataExchange::Push(m_editRate, WordRate);
        return true;
    }
    // Pulled in the page's exchange order, so the first bad field in that order gets the focus.
    return CDataExchange::Pull(m_editChar, PauseChar, kPauseRange) &&
           CDataExchange::Pull(m_editDah, PauseDah, kPauseRange) &&
           CDataExchange::Pull(m_editDit, PauseDit, kPauseRange) &&
           CDataExchange::Pull(m_editWord, PauseWord, kPauseRange) &&
           CDataExchange::Pull(m_editTone, ToneMHz) && CDataExchange::Pull(m_editRate, WordRate);
}

void CPropPageSpeed::OnResetDefaults() {
    // Deliberately 5 WPM, not the profile's default of 15.
    ApplyPreset({.PauseChar = 3, .PauseDah = 3, .PauseDit = 1, .PauseWord = 7, .ToneMHz = 750,
                 .WordRate = 5});
}

void CPropPageSpeed::OnFarnsworth() {
    ApplyPreset({.PauseChar = 15, .PauseDah = 3, .PauseDit = 1, .PauseWord = 35, .ToneMHz = 750,
                 .WordRate = 12});
}

void CPropPageSpeed::ApplyPreset(const CodeTiming& preset) {
    PauseDit = preset.PauseDit;
    PauseDah = preset.PauseDah;
    PauseChar = preset.PauseChar;
    PauseWord = preset.PauseWord;
    ToneMHz = preset.ToneMHz;
    WordRate = preset.WordRate;
    UpdateData(false);
    emit Modified();
}
