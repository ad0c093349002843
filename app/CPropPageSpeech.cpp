// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CPropPageSpeech.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "app/CDataExchange.h"

namespace {

constexpr const char* kActorNames[CPropPageSpeech::kActorCount] = {
    "Amy", "Audrey", "Charles", "Claire", "Crystal", "Dave", "Lauren", "Mike", "Rich"};
constexpr int kFirstActorId = 1053;

}  // namespace

CPropPageSpeech::CPropPageSpeech(QWidget* parent) : QWidget(parent) {
    setObjectName("PageSpeech");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("All uints measured in milli seconds"), this));
    auto* delayRow = new QHBoxLayout;
    auto* label = new QLabel(tr("Delay speach after code by :"), this);
    m_editDelay = new QLineEdit(this);
    m_editDelay->setObjectName("editSpeechDelay");
    m_editDelay->setProperty("controlId", 1052);
    m_editDelay->setMaximumWidth(90);
    label->setBuddy(m_editDelay);
    delayRow->addWidget(label);
    delayRow->addWidget(m_editDelay);
    delayRow->addStretch();
    layout->addLayout(delayRow);
    connect(m_editDelay, &QLineEdit::textEdited, this, &CPropPageSpeech::Modified);

    auto* group = new QGroupBox(tr("Actors"), this);
    auto* grid = new QGridLayout(group);
    m_actors = new QButtonGroup(this);
    m_actors->setExclusive(false);  // the page sets every check itself
    for (int i = 0; i < kActorCount; ++i) {
        auto* radio = new QRadioButton(tr(kActorNames[i]), group);
        radio->setAutoExclusive(false);
        radio->setObjectName(QStringLiteral("radioActor%1").arg(i));
        radio->setProperty("controlId", kFirstActorId + i);
        m_actors->addButton(radio, i);
        grid->addWidget(radio, i % 3, i / 3);
    }
    connect(m_actors, &QButtonGroup::idClicked, this, [this](int index) {
        Actor = index;
        SetActorChecks();
        emit Modified();
    });
    layout->addWidget(group);

    auto* reset = new QPushButton(tr("Reset to Defaults"), this);
    reset->setObjectName("buttonResetSpeech");
    reset->setProperty("controlId", 1050);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(reset);
    buttons->addStretch();
    layout->addLayout(buttons);
    layout->addStretch();
    connect(reset, &QPushButton::clicked, this, &CPropPageSpeech::OnResetDefaults);
}

bool CPropPageSpeech::UpdateData(bool saveAndValidate) {
    if (!saveAndValidate) {
        CDataExchange::Push(m_editDelay, SpeechDelay);
        return true;
    }
    return CDataExchange::Pull(m_editDelay, SpeechDelay);
}

void CPropPageSpeech::SetActorChecks() {
    for (int i = 0; i < kActorCount; ++i) {
        m_actors->button(i)->setChecked(i == Actor);
    }
}

void CPropPageSpeech::OnResetDefaults() {
    Actor = 0;
    SpeechDelay = 125;
    SetActorChecks();
    UpdateData(false);
    emit Modified();
}
