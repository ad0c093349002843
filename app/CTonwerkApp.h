// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <memory>

class CMainFrame;
class CSplashWnd;
class IProfile;

/// The application: names the profile, creates the frame with its document and view, opens a
/// ".code" file given on the command line (a file that cannot be opened ends start-up) and shows
/// the window.
class CTonwerkApp : public QApplication {
    Q_OBJECT

public:
    CTonwerkApp(int& argc, char** argv);
    ~CTonwerkApp() override;

    /// Start-up; false when the program should end at once.
    bool InitInstance();

    /// Opens the ".code" file named on the command line; false, after its message, when it
    /// cannot be opened, and start-up then ends.
    static bool OpenCommandLineDocument(CMainFrame& frame, const QString& path);

    CMainFrame* MainFrame() const { return m_frame.get(); }
    /// The "--screenshot FILE" option: where to save a picture of the window, or empty.
    QString ScreenshotFile() const { return m_screenshotFile; }

private:
    std::unique_ptr<IProfile> m_profile;
    std::unique_ptr<CMainFrame> m_frame;
    // A start-up splash is never shown; the slot stays empty.
    CSplashWnd* m_pSplashThread = nullptr;
    QString m_screenshotFile;
};
