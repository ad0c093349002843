// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CTonwerkDoc.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>
#include <cstring>

#include "app/CModalSeam.h"
#include "app/CPropSheet.h"
#include "app/CTonwerkView.h"
#include "model/CCodeFile.h"
#include "model/CMorseAlphabet.h"

CTonwerkDoc::CTonwerkDoc(IProfile& profile, QObject* parent)
    : QObject(parent), m_settings(profile) {}

std::string CTonwerkDoc::TextToCode(std::string_view text) const {
    return CMorseAlphabet::TextToCode(text, m_settings.GetDblSpace() != 0);
}

std::string CTonwerkDoc::PatternToText(std::string_view pattern, bool letterGroups) const {
    return CMorseAlphabet::PatternToText(pattern, letterGroups);
}

void CTonwerkDoc::SetTitle(const QString& title) {
    m_title = title;
    emit TitleChanged(m_title);
}

void CTonwerkDoc::SetModifiedFlag(bool modified) {
    if (m_modified != modified) {
        m_modified = modified;
        emit ModifiedChanged(m_modified);
    }
}

QWidget* CTonwerkDoc::DialogParent() const {
    return m_view;
}

QString CTonwerkDoc::FileNameOf(const QString& path) {
    // The native separator as well as "/" so that names typed the Windows way still split.
    const qsizetype slash =
        std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    return slash < 0 ? path : path.mid(slash + 1);
}

bool CTonwerkDoc::SaveModified() {
    if (!m_modified) {
        return true;
    }
    const auto answer = CModalSeam::Message(
        DialogParent(), tr("Save Changes?"),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Question);
    if (answer == QMessageBox::Cancel) {
        return false;
    }
    // A save that fails or is cancelled keeps the document, and with it the window.
    return answer != QMessageBox::Yes || OnFileSave();
}

void CTonwerkDoc::OnFileNew() {
    if (!SaveModified()) {
        return;
    }
    if (m_view) {
        m_view->SetTexts(QString(), QString());
    }
    SetTitle(QStringLiteral("Unknown"));
    m_path.clear();
    m_fileName.clear();
    SetModifiedFlag(false);
}

void CTonwerkDoc::OnFileOpen() {
    if (!SaveModified()) {
        return;
    }
    const QString path = CModalSeam::OpenFileName(DialogParent(), QString::fromLatin1(kFilter));
    if (path.isEmpty()) {
        return;
    }
    OpenFile(path);
}

bool CTonwerkDoc::OpenFile(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists()) {
        return false;
    }
    // A FIFO or a device would block or never end, and no practice text is anywhere near this
    // large: both are refused before a byte is read.
    if (!info.isFile()) {
        CModalSeam::Message(DialogParent(), tr("%1 is not a Tonwerk practice file: not a file")
                                                .arg(QDir::toNativeSeparators(path)));
        return false;
    }
    if (info.size() > kMaxFileBytes) {
        CModalSeam::Message(DialogParent(),
                            tr("%1 is too large for a practice document (more than %2 MB).")
                                .arg(QDir::toNativeSeparators(path))
                                .arg(kMaxFileBytes >> 20));
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        CModalSeam::Message(
            DialogParent(),
            tr("Cannot open %1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
        return false;
    }
    const QByteArray bytes = file.readAll();
    const CodeFileResult result =
        CCodeFile::Read(std::string_view(bytes.constData(), static_cast<size_t>(bytes.size())));
    if (!result) {
        CModalSeam::Message(DialogParent(), tr("%1 is not a Tonwerk practice file: %2")
                                                .arg(QDir::toNativeSeparators(path),
                                                     QString::fromStdString(result.error)));
        return false;
    }
    const QString fileName = FileNameOf(path);
    SetTitle(fileName);
    if (m_view) {
        m_view->SetTexts(QString::fromLatin1(result.document->practiceText),
                         QString::fromLatin1(result.document->codeText));
    }
    m_path = path;
    m_fileName = fileName;
    SetModifiedFlag(false);
    return true;
}

bool CTonwerkDoc::WriteFile(const QString& path) {
    CodeDocument document;
    if (m_view) {
        // Characters beyond one byte cannot be stored in the format; they become "?".
        document.practiceText = m_view->PracticeText().toLatin1().toStdString();
        document.codeText = m_view->CodeText().toLatin1().toStdString();
    }
    const std::string bytes = CCodeFile::Write(document);
    QSaveFile file(path);
    // Unbuffered, so a short write (full disk, file size limit) shows at once and the temporary
    // file is thrown away instead of replacing the old one.
    errno = 0;
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) ||
        file.write(bytes.data(), static_cast<qint64>(bytes.size())) !=
            static_cast<qint64>(bytes.size()) ||
        !file.commit()) {
        // The reason first: cancelling replaces it with its own text. A write cut short is no
        // error to the file, but the system said why it stopped.
        const int systemError = errno;
        const QString reason = file.error() == QFileDevice::NoError && systemError != 0
                                   ? QString::fromLocal8Bit(std::strerror(systemError))
                                   : file.errorString();
        file.cancelWriting();
        CModalSeam::Message(DialogParent(),
                            tr("Cannot save %1: %2").arg(QDir::toNativeSeparators(path), reason));
        return false;
    }
    return true;
}

bool CTonwerkDoc::OnFileSave() {
    if (m_path.isEmpty()) {
        return OnFileSaveAs();
    }
    if (!WriteFile(m_path)) {
        return false;
    }
    SetTitle(m_fileName);
    SetModifiedFlag(false);
    return true;
}

bool CTonwerkDoc::OnFileSaveAs() {
    const QString path =
        CModalSeam::SaveFileName(DialogParent(), m_title, QString::fromLatin1(kFilter), "code");
    if (path.isEmpty() || !WriteFile(path)) {
        return false;
    }
    m_path = path;
    m_fileName = FileNameOf(path);
    SetTitle(m_fileName);
    SetModifiedFlag(false);
    return true;
}

void CTonwerkDoc::OnConfig() {
    CPropSheet sheet(this, DialogParent());
    sheet.LoadFromProfile();
    if (CPropSheet::Run(sheet) == QDialog::Accepted) {
        SaveSettings(sheet.Timing());
    }
}
