// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CLockIndicators.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QStatusBar>

CLockIndicators::CLockIndicators(QStatusBar* bar) : QObject(bar) {
    std::size_t index = 0;
    for (const char* indicator : {"CAP", "NUM", "SCRL"}) {
        auto* label = new QLabel(QString::fromLatin1(indicator), bar);
        label->setObjectName(QStringLiteral("pane%1").arg(QString::fromLatin1(indicator)));
        label->setEnabled(false);
        label->setAlignment(Qt::AlignCenter);
        label->setMinimumWidth(label->fontMetrics().horizontalAdvance(QStringLiteral("SCRL")) + 8);
        bar->addPermanentWidget(label);
        m_panes[index++] = label;
    }
    qApp->installEventFilter(this);
    Refresh();
}

CLockIndicators::~CLockIndicators() {
    qApp->removeEventFilter(this);
}

void CLockIndicators::SetReader(Reader reader) {
    m_reader = std::move(reader);
    Refresh();
}

void CLockIndicators::Refresh() {
    const std::optional<State> state = m_reader ? m_reader() : ReadLockKeys();
    const bool lit[] = {state && state->caps, state && state->num, state && state->scroll};
    for (std::size_t i = 0; i < m_panes.size(); ++i) {
        m_panes[i]->setEnabled(lit[i]);
    }
}

bool CLockIndicators::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
            // A key reaches the window and then the focused control: one reading will do.
            if (watched->isWindowType()) {
                Refresh();
            }
            break;
        case QEvent::ApplicationActivate:
            Refresh();
            break;
        default:
            break;
    }
    return QObject::eventFilter(watched, event);
}
