// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CModalSeam.h"

#include <QCoreApplication>
#include <QFileDialog>

namespace {

struct SeamState {
    bool scripted = false;
    std::deque<QMessageBox::StandardButton> buttons;
    std::deque<QString> fileNames;
    QStringList messages;
    QStringList offeredNames;
};

SeamState& State() {
    static SeamState state;
    return state;
}

}  // namespace

void CModalSeam::SetScripted(bool scripted) {
    State().scripted = scripted;
}
bool CModalSeam::IsScripted() {
    return State().scripted;
}
void CModalSeam::QueueButton(QMessageBox::StandardButton button) {
    State().buttons.push_back(button);
}
void CModalSeam::QueueFileName(const QString& fileName) {
    State().fileNames.push_back(fileName);
}

void CModalSeam::Reset() {
    State().buttons.clear();
    State().fileNames.clear();
    State().messages.clear();
    State().offeredNames.clear();
}

const QStringList& CModalSeam::Messages() {
    return State().messages;
}

const QStringList& CModalSeam::OfferedNames() {
    return State().offeredNames;
}

QMessageBox::StandardButton CModalSeam::Message(QWidget* parent, const QString& text,
                                                QMessageBox::StandardButtons buttons,
                                                QMessageBox::Icon icon) {
    SeamState& state = State();
    state.messages.append(text);
    if (state.scripted) {
        if (state.buttons.empty()) {
            return buttons.testFlag(QMessageBox::Cancel) ? QMessageBox::Cancel : QMessageBox::Ok;
        }
        const QMessageBox::StandardButton answer = state.buttons.front();
        state.buttons.pop_front();
        return answer;
    }
    QMessageBox box(icon, QCoreApplication::applicationName(), text, buttons, parent);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

std::optional<QString> CModalSeam::TakeFileName() {
    SeamState& state = State();
    if (!state.scripted) {
        return std::nullopt;
    }
    if (state.fileNames.empty()) {
        return QString();
    }
    QString name = state.fileNames.front();
    state.fileNames.pop_front();
    return name;
}

QString CModalSeam::OpenFileName(QWidget* parent, const QString& filter) {
    if (auto scripted = TakeFileName()) {
        return *scripted;
    }
    return QFileDialog::getOpenFileName(parent, QObject::tr("Open"), QString(), filter);
}

QString CModalSeam::SaveFileName(QWidget* parent, const QString& initialName, const QString& filter,
                                 const QString& defaultSuffix) {
    State().offeredNames.append(initialName);
    if (auto scripted = TakeFileName()) {
        return *scripted;
    }
    QFileDialog dialog(parent, QObject::tr("Save As"), initialName, filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(defaultSuffix);
    // With several file types the name takes the extension of the one chosen: "MP3 (*.mp3)".
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, [&dialog](const QString& f) {
        const qsizetype star = f.indexOf(QStringLiteral("(*."));
        if (star >= 0) {
            dialog.setDefaultSuffix(f.mid(star + 3).section(')', 0, 0));
        }
    });
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return QString();
    }
    return dialog.selectedFiles().constFirst();
}

QString CModalSeam::FolderName(QWidget* parent, const QString& title,
                               const QString& initialFolder) {
    State().offeredNames.append(initialFolder);
    if (auto scripted = TakeFileName()) {
        return *scripted;
    }
    return QFileDialog::getExistingDirectory(parent, title, initialFolder,
                                             QFileDialog::ShowDirsOnly);
}
