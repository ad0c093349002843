// SPDX-License-Identifier: GPL-3.0-or-later
#include <QScreen>
#include <QTimer>

#include "app/CMainFrame.h"
#include "app/CTonwerkApp.h"

int main(int argc, char** argv) {
    CTonwerkApp app(argc, argv);
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
