// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CTonwerkApp.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QThread>

#include "app/CMainFrame.h"
#include "app/CModalSeam.h"
#include "app/CTonwerkDoc.h"
#include "app/CTonwerkView.h"
#include "profile/CQtProfile.h"
#include "widgets/CSplashWnd.h"

namespace {

/// The pause between reading the command line and acting on it, kept from the original start-up.
constexpr unsigned long kShellCommandDelayMs = 150;

}  // namespace

CTonwerkApp::CTonwerkApp(int& argc, char** argv) : QApplication(argc, argv) {
    setOrganizationName(QString::fromLatin1(CQtProfile::kOrganization));
    setApplicationName(QString::fromLatin1(CQtProfile::kApplication));
    setApplicationDisplayName(QStringLiteral("Tonwerk"));
    setApplicationVersion(QStringLiteral("1.0"));
}

CTonwerkApp::~CTonwerkApp() = default;

bool CTonwerkApp::InitInstance() {
    QCommandLineParser parser;
    parser.setApplicationDescription(tr("Morse code practice trainer"));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        tr("Save a picture of the main window to <file> and quit."),
                                        tr("file"));
    parser.addOption(screenshot);
    parser.addPositionalArgument(QStringLiteral("file"), tr("A practice document to open."),
                                 QStringLiteral("[file.code]"));
    parser.process(*this);
    m_screenshotFile = parser.value(screenshot);
    if (!m_screenshotFile.isEmpty()) {
        // An unattended picture must not wait for anyone to close a message box.
        CModalSeam::SetScripted(true);
    }

    m_profile = std::make_unique<CQtProfile>();
    m_frame = std::make_unique<CMainFrame>(*m_profile);

    QThread::msleep(kShellCommandDelayMs);
    const QStringList files = parser.positionalArguments();
    if (!files.isEmpty() && !OpenCommandLineDocument(*m_frame, files.constFirst())) {
        return false;
    }
    m_frame->show();
    if (m_pSplashThread) {
        m_pSplashThread->CloseSplash();
    }
    return true;
}

bool CTonwerkApp::OpenCommandLineDocument(CMainFrame& frame, const QString& path) {
    if (!QFileInfo::exists(path)) {
        // Opening says nothing of a file that is not there; start-up must.
        CModalSeam::Message(frame.View(), tr("Cannot open %1: %2")
                                              .arg(QDir::toNativeSeparators(path),
                                                   tr("No such file or directory")));
        return false;
    }
    return frame.Document()->OpenFile(path);
}
