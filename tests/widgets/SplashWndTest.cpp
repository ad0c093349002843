// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CSplashWnd.h"

#include <QTest>

class SplashWndTest : public QObject {
    Q_OBJECT
private slots:
    void hiddenUntilAskedAndPaints();
};

void SplashWndTest::hiddenUntilAskedAndPaints() {
    CSplashWnd splash;
    QVERIFY(!splash.isVisible());
    QVERIFY(splash.windowFlags() & Qt::SplashScreen);
    splash.ShowSplash();
    QVERIFY(splash.isVisible());
    const QImage image = splash.grab().toImage();
    QCOMPARE(image.size(), splash.size());
    // Blue backdrop with the application icon on its left.
    const QColor corner = image.pixelColor(4, 4);
    QVERIFY2(corner.blue() > corner.red() + 80, qPrintable(corner.name()));
    const QColor icon = image.pixelColor(24 + 48, image.height() / 2);
    QVERIFY2(icon != image.pixelColor(4, image.height() / 2), qPrintable(icon.name()));
    splash.CloseSplash();
    QVERIFY(!splash.isVisible());
}

QTEST_MAIN(SplashWndTest)
#include "SplashWndTest.moc"
