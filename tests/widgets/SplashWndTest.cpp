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
    // The icon's long yellow dash, at three quarters of the icon's 128-pixel drawing.
    const QColor dash = image.pixelColor(24 + 43, (image.height() - 96) / 2 + 27);
    QVERIFY2(dash.red() > 200 && dash.green() > 180 && dash.blue() < 150,
             qPrintable(dash.name()));
    splash.CloseSplash();
    QVERIFY(!splash.isVisible());
}

QTEST_MAIN(SplashWndTest)
#include "SplashWndTest.moc"
