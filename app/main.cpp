// SPDX-License-Identifier: GPL-3.0-or-later
#include <QScreen>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "app/CMainFrame.h"
#include "app/CTonwerkApp.h"

namespace {

QtMessageHandler g_previousHandler = nullptr;

/// While the window system is opened: a session without a display (over SSH, on a console) gets
/// one line instead of the platform plugin's complaints and abort.
void StartupMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type == QtFatalMsg) {
        std::fputs(
            "tonwerk: needs a graphical session and found no display; "
            "tonwerk-cli offers the trainer on a terminal\n",
            stderr);
        std::_Exit(1);
    }
    if (context.category != nullptr && std::string_view(context.category).starts_with("qt.qpa")) {
        return;
    }
    if (g_previousHandler != nullptr) {
        g_previousHandler(type, context, message);
    }
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]) == "--version") {
            std::puts("tonwerk " TONWERK_VERSION);
            return 0;
        }
    }
    g_previousHandler = qInstallMessageHandler(&StartupMessage);
    CTonwerkApp app(argc, argv);
    qInstallMessageHandler(g_previousHandler);
    if (!app.InitInstance()) {
        return 1;
    }
    const QString screenshot = app.ScreenshotFile();
    if (!screenshot.isEmpty()) {
        QTimer::singleShot(500, &app, [&app, screenshot] {
            const bool saved = app.MainFrame()->grab().save(screenshot);
            app.exit(saved ? 0 : 2);
        });
    }
    return app.exec();
}
