// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CImageButton.h"

#include "res/TonwerkResources.h"

#include <QSignalSpy>
#include <QTest>

class ImageButtonTest : public QObject {
    Q_OBJECT
private slots:
    void imageAtRequestedSize_data();
    void imageAtRequestedSize();
    void missingImageLeavesNone();
    void recordToggleSwapsImage();
    void clickStillWorks();
};

void ImageButtonTest::imageAtRequestedSize_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QSize>("size");
    QTest::newRow("text to morse 180") << tonwerk::res::kButtonTextToMorse << QSize(48, 16);
    QTest::newRow("morse to text 130") << tonwerk::res::kButtonMorseToText << QSize(48, 16);
    QTest::newRow("listen 131") << tonwerk::res::kButtonListen << QSize(32, 32);
    QTest::newRow("record 183") << tonwerk::res::kButtonRecordOff << QSize(32, 32);
    QTest::newRow("record on 184") << tonwerk::res::kButtonRecordOn << QSize(40, 32);
    QTest::newRow("random 181") << tonwerk::res::kButtonRandom << QSize(32, 32);
    QTest::newRow("browse 134") << tonwerk::res::kButtonBrowse << QSize(16, 16);
}

void ImageButtonTest::imageAtRequestedSize() {
    QFETCH(QString, path);
    QFETCH(QSize, size);
    CImageButton button(QStringLiteral("&Listen"));
    QVERIFY(button.SetImage(path, size));
    QCOMPARE(button.ImagePath(), path);
    QCOMPARE(button.iconSize(), size);
    const QPixmap pixmap = button.icon().pixmap(size);
    QCOMPARE(pixmap.deviceIndependentSize().toSize(), size);
    QCOMPARE(button.text(), QStringLiteral("&Listen"));
}

void ImageButtonTest::missingImageLeavesNone() {
    CImageButton button;
    QVERIFY(button.SetImage(QString::fromLatin1(tonwerk::res::kButtonListen), QSize(32, 32)));
    QVERIFY(!button.SetImage(QStringLiteral(":/tonwerk/buttons/none.svg"), QSize(32, 32)));
    QVERIFY(button.icon().isNull());
    QCOMPARE(button.ImagePath(), QString());
}

void ImageButtonTest::recordToggleSwapsImage() {
    CImageButton button;
    button.SetImage(QString::fromLatin1(tonwerk::res::kButtonRecordOff), QSize(32, 32));
    const QImage off = button.icon().pixmap(QSize(32, 32)).toImage();
    button.SetImage(QString::fromLatin1(tonwerk::res::kButtonRecordOn), QSize(40, 32));
    QCOMPARE(button.iconSize(), QSize(40, 32));
    const QImage on = button.icon().pixmap(QSize(40, 32)).toImage();
    QVERIFY(off.size() != on.size() || off != on);
}

void ImageButtonTest::clickStillWorks() {
    CImageButton button(QStringLiteral("&Random"));
    button.SetImage(QString::fromLatin1(tonwerk::res::kButtonRandom), QSize(32, 32));
    button.resize(120, 40);
    QSignalSpy clicked(&button, &QPushButton::clicked);
    QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(clicked.count(), 1);
}

QTEST_MAIN(ImageButtonTest)
#include "ImageButtonTest.moc"
