// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CKeyLamp.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

namespace {

int CountReddish(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (c.red() > 180 && c.green() < 120 && c.blue() < 120) {
                ++count;
            }
        }
    }
    return count;
}

}  // namespace

class KeyLampTest : public QObject {
    Q_OBJECT
private slots:
    void startsWithKeyUp();
    void layersSwitch();
    void unknownLayerIsIgnored();
    void layersPaintBottomToTop();
    void lampFollowsLayers();
    void takesFocusByTabAndClick();
    void enterIsReportedOnlyWhenFocused();
    void clicksAreReported();
};

void KeyLampTest::startsWithKeyUp() {
    CKeyLamp lamp;
    QCOMPARE(lamp.LayerCount(), 2);
    QCOMPARE(lamp.LayerName(CKeyLamp::kKeyUpLayer), QStringLiteral("Key Up"));
    QCOMPARE(lamp.LayerName(CKeyLamp::kKeyDownLayer), QStringLiteral("Key Down"));
    QCOMPARE(CKeyLamp::kKeyUpLayer, 100);
    QCOMPARE(CKeyLamp::kKeyDownLayer, 101);
    QVERIFY(lamp.IsLayerVisible(100));
    QVERIFY(!lamp.IsLayerVisible(101));
    QVERIFY(!lamp.IsKeyDown());
}

void KeyLampTest::layersSwitch() {
    CKeyLamp lamp;
    lamp.SetKeyDown(true);
    QVERIFY(lamp.IsKeyDown());
    QCOMPARE(lamp.VisibleLayers(), std::vector<int>{101});
    lamp.SetKeyDown(false);
    QCOMPARE(lamp.VisibleLayers(), std::vector<int>{100});
    // The form switches layers one by one as well.
    QVERIFY(lamp.ShowLayer(101));
    QVERIFY(lamp.HideLayer(100));
    QCOMPARE(lamp.VisibleLayers(), std::vector<int>{101});
}

void KeyLampTest::unknownLayerIsIgnored() {
    CKeyLamp lamp;
    QVERIFY(!lamp.ShowLayer(7));
    QVERIFY(!lamp.HasLayer(7));
    QCOMPARE(lamp.LayerName(7), QString());
    QCOMPARE(lamp.VisibleLayers(), std::vector<int>{100});
}

void KeyLampTest::layersPaintBottomToTop() {
    CLayeredBitmap bitmap;
    bitmap.setFrameStyle(QFrame::NoFrame);
    bitmap.resize(20, 20);
    QPixmap red(10, 10);
    red.fill(Qt::red);
    QPixmap blue(10, 10);
    blue.fill(Qt::blue);
    bitmap.AddLayer(1, "red", red, true);
    bitmap.AddLayer(2, "blue", blue, true);
    QCOMPARE(bitmap.grab().toImage().pixelColor(10, 10), QColor(Qt::blue));
    bitmap.HideLayer(2);
    QCOMPARE(bitmap.grab().toImage().pixelColor(10, 10), QColor(Qt::red));
    // Replacing a layer keeps its place in the stack.
    QPixmap green(10, 10);
    green.fill(Qt::green);
    bitmap.AddLayer(1, "green", green, true);
    bitmap.ShowLayer(2);
    QCOMPARE(bitmap.LayerCount(), 2);
    QCOMPARE(bitmap.grab().toImage().pixelColor(10, 10), QColor(Qt::blue));
}

void KeyLampTest::lampFollowsLayers() {
    CKeyLamp lamp;
    lamp.resize(40, 40);
    const int upRed = CountReddish(lamp.grab().toImage());
    lamp.SetKeyDown(true);
    const int downRed = CountReddish(lamp.grab().toImage());
    QVERIFY2(downRed > 200 && upRed < 20,
             qPrintable(QStringLiteral("up %1, down %2").arg(upRed).arg(downRed)));
}

void KeyLampTest::takesFocusByTabAndClick() {
    QWidget form;
    auto* layout = new QVBoxLayout(&form);
    auto* edit = new QLineEdit(&form);
    auto* lamp = new CKeyLamp(&form);
    layout->addWidget(edit);
    layout->addWidget(lamp);
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));
    QVERIFY(lamp->focusPolicy() & Qt::TabFocus);
    QVERIFY(lamp->focusPolicy() & Qt::ClickFocus);
    edit->setFocus();
    QTRY_VERIFY(edit->hasFocus());
    QTest::keyClick(edit, Qt::Key_Tab);
    QTRY_VERIFY(lamp->hasFocus());
    edit->setFocus();
    QTRY_VERIFY(edit->hasFocus());
    QTest::mouseClick(lamp, Qt::LeftButton);
    QTRY_VERIFY(lamp->hasFocus());
}

void KeyLampTest::enterIsReportedOnlyWhenFocused() {
    QWidget form;
    auto* layout = new QVBoxLayout(&form);
    auto* edit = new QLineEdit(&form);
    auto* lamp = new CKeyLamp(&form);
    layout->addWidget(edit);
    layout->addWidget(lamp);
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));
    QSignalSpy pressed(lamp, &CLayeredBitmap::enterPressed);
    QSignalSpy released(lamp, &CLayeredBitmap::enterReleased);

    lamp->setFocus();
    QTRY_VERIFY(lamp->hasFocus());
    QTest::keyPress(lamp, Qt::Key_Return);
    QTest::keyEvent(QTest::Press, lamp, Qt::Key_Return, Qt::NoModifier, -1);
    QTest::keyRelease(lamp, Qt::Key_Return);
    QTest::keyClick(lamp, Qt::Key_Enter, Qt::KeypadModifier);
    QTest::keyClick(lamp, Qt::Key_Space);
    QCOMPARE(pressed.count(), 3);
    QCOMPARE(released.count(), 2);
    QCOMPARE(pressed.at(0).at(0).toBool(), false);

    // A held key repeats as auto-repeat presses.
    QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(lamp, &repeat);
    QCOMPARE(pressed.count(), 4);
    QCOMPARE(pressed.at(3).at(0).toBool(), true);

    edit->setFocus();
    QTRY_VERIFY(edit->hasFocus());
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(pressed.count(), 4);
    QCOMPARE(released.count(), 2);
}

void KeyLampTest::clicksAreReported() {
    CKeyLamp lamp;
    lamp.resize(32, 32);
    QSignalSpy clicked(&lamp, &CLayeredBitmap::clicked);
    QTest::mouseClick(&lamp, Qt::LeftButton);
    QTest::mouseClick(&lamp, Qt::LeftButton);
    QCOMPARE(clicked.count(), 2);
}

QTEST_MAIN(KeyLampTest)
#include "KeyLampTest.moc"
