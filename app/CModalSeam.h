// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMessageBox>
#include <QString>
#include <QStringList>
#include <deque>
#include <optional>

class QWidget;

/// Every modal question the program asks goes through here. In normal use the real dialog is
/// shown; a test queues the answers beforehand and reads back what would have been shown, so no
/// modal loop ever blocks an unattended run.
class CModalSeam {
public:
    /// Answers are used first come, first served; once scripted, a question without a queued
    /// answer gets Cancel (or an empty file name) instead of a blocking dialog.
    static void SetScripted(bool scripted);
    static bool IsScripted();
    static void QueueButton(QMessageBox::StandardButton button);
    static void QueueFileName(const QString& fileName);
    static void Reset();

    /// Texts of the message boxes shown (or answered) since the last Reset.
    static const QStringList& Messages();
    /// What the file and folder questions since the last Reset started at, in order.
    static const QStringList& OfferedNames();

    static QMessageBox::StandardButton Message(
        QWidget* parent, const QString& text,
        QMessageBox::StandardButtons buttons = QMessageBox::Ok,
        QMessageBox::Icon icon = QMessageBox::Warning);
    static QString OpenFileName(QWidget* parent, const QString& filter);
    static QString SaveFileName(QWidget* parent, const QString& initialName, const QString& filter,
                                const QString& defaultSuffix);
    /// A folder chosen in the folder browser, which starts at initialFolder; empty when the
    /// browser was cancelled. Scripted answers come from the file-name queue.
    static QString FolderName(QWidget* parent, const QString& title, const QString& initialFolder);

private:
    static std::optional<QString> TakeFileName();
};
