// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CAnchorLayout.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

class AnchorLayoutTest : public QObject {
    Q_OBJECT
private slots:
    void anchoredRect_data();
    void anchoredRect();
    void formResizeMovesControls();
    void formNeverShrinksBelowBase();
    void neighboursAtHalfMeet();
    void reAddingReplacesAnchors();
    void unknownWidgetIsRefused();
};

void AnchorLayoutTest::anchoredRect_data() {
    QTest::addColumn<QRect>("design");
    QTest::addColumn<QPoint>("topLeft");
    QTest::addColumn<QPoint>("bottomRight");
    QTest::addColumn<QSize>("form");
    QTest::addColumn<QRect>("expected");

    const QRect design(10, 20, 30, 40);
    // Base 100 x 100 in every row.
    QTest::newRow("fixed") << design << QPoint(0, 0) << QPoint(0, 0) << QSize(200, 300) << design;
    QTest::newRow("stretch width")
        << design << QPoint(0, 0) << QPoint(100, 0) << QSize(200, 300) << QRect(10, 20, 130, 40);
    QTest::newRow("move right") << design << QPoint(100, 0) << QPoint(100, 0) << QSize(200, 300)
                                << QRect(110, 20, 30, 40);
    QTest::newRow("half width") << design << QPoint(0, 0) << QPoint(50, 0) << QSize(200, 100)
                                << QRect(10, 20, 80, 40);
    QTest::newRow("move half") << design << QPoint(50, 0) << QPoint(50, 0) << QSize(200, 100)
                               << QRect(60, 20, 30, 40);
    QTest::newRow("right half") << design << QPoint(50, 0) << QPoint(100, 0) << QSize(200, 100)
                                << QRect(60, 20, 80, 40);
    QTest::newRow("upper text") << design << QPoint(0, 0) << QPoint(100, 50) << QSize(300, 300)
                                << QRect(10, 20, 230, 140);
    QTest::newRow("lower button") << design << QPoint(0, 50) << QPoint(50, 50) << QSize(300, 300)
                                  << QRect(10, 120, 130, 40);
    QTest::newRow("lower text") << design << QPoint(0, 50) << QPoint(100, 100) << QSize(300, 300)
                                << QRect(10, 120, 230, 140);
    QTest::newRow("smaller form") << design << QPoint(0, 0) << QPoint(100, 100) << QSize(50, 50)
                                  << design;
}

void AnchorLayoutTest::anchoredRect() {
    QFETCH(QRect, design);
    QFETCH(QPoint, topLeft);
    QFETCH(QPoint, bottomRight);
    QFETCH(QSize, form);
    QFETCH(QRect, expected);
    QCOMPARE(CAnchorLayout::AnchoredRect(design, QSize(100, 100), form, topLeft, bottomRight),
             expected);
}

void AnchorLayoutTest::formResizeMovesControls() {
    QWidget form;
    auto* layout = new CAnchorLayout(&form);
    layout->SetBaseSize(QSize(400, 300));
    auto* fixed = new QLabel("lamp", &form);
    auto* slider = new QLabel("slider", &form);
    auto* right = new QPushButton("Speech", &form);
    auto* practice = new QLabel("practice", &form);
    auto* code = new QLabel("code", &form);
    auto* unregistered = new QLabel("Words Per Minute: 5", &form);
    unregistered->setGeometry(5, 5, 80, 12);
    layout->AddWidget(fixed, QRect(10, 10, 40, 40));
    layout->AddWidget(slider, QRect(60, 10, 100, 20), {0, 0}, {100, 0});
    layout->AddWidget(right, QRect(300, 10, 60, 20), {100, 0}, {100, 0});
    layout->AddWidget(practice, QRect(10, 100, 380, 90), {0, 0}, {100, 50});
    layout->AddWidget(code, QRect(10, 200, 380, 90), {0, 50}, {100, 100});

    form.resize(400, 300);
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));
    QCOMPARE(fixed->geometry(), QRect(10, 10, 40, 40));
    QCOMPARE(right->geometry(), QRect(300, 10, 60, 20));

    form.resize(600, 500);
    QTRY_COMPARE(form.size(), QSize(600, 500));
    QTRY_COMPARE(slider->geometry(), QRect(60, 10, 300, 20));
    QCOMPARE(fixed->geometry(), QRect(10, 10, 40, 40));
    QCOMPARE(right->geometry(), QRect(500, 10, 60, 20));
    QCOMPARE(practice->geometry(), QRect(10, 100, 580, 190));
    QCOMPARE(code->geometry(), QRect(10, 300, 580, 190));
    // The two texts share the growth in height without overlapping.
    QVERIFY(practice->geometry().bottom() < code->geometry().top());
    QCOMPARE(unregistered->geometry(), QRect(5, 5, 80, 12));
}

void AnchorLayoutTest::formNeverShrinksBelowBase() {
    QWidget form;
    auto* layout = new CAnchorLayout(&form);
    layout->SetBaseSize(QSize(400, 300));
    auto* text = new QLabel("text", &form);
    layout->AddWidget(text, QRect(10, 10, 380, 280), {0, 0}, {100, 100});
    QCOMPARE(layout->minimumSize(), QSize(400, 300));
    layout->setGeometry(QRect(0, 0, 100, 100));
    QCOMPARE(text->geometry(), QRect(10, 10, 380, 280));
}

void AnchorLayoutTest::neighboursAtHalfMeet() {
    // Text to Morse Code ends where Morse Code to Text begins, for every odd growth too.
    QWidget form;
    auto* layout = new CAnchorLayout(&form);
    layout->SetBaseSize(QSize(200, 100));
    auto* left = new QPushButton("&Text to Morse Code", &form);
    auto* rightButton = new QPushButton("&Morse Code to Text", &form);
    layout->AddWidget(left, QRect(0, 50, 100, 20), {0, 50}, {50, 50});
    layout->AddWidget(rightButton, QRect(100, 50, 100, 20), {50, 50}, {100, 50});
    for (int width : {200, 201, 255, 333, 1001}) {
        layout->setGeometry(QRect(0, 0, width, 177));
        QCOMPARE(left->geometry().right() + 1, rightButton->geometry().left());
        QCOMPARE(rightButton->geometry().right() + 1, width);
        QCOMPARE(left->geometry().height(), 20);
    }
}

void AnchorLayoutTest::reAddingReplacesAnchors() {
    QWidget form;
    auto* layout = new CAnchorLayout(&form);
    layout->SetBaseSize(QSize(100, 100));
    auto* label = new QLabel("x", &form);
    layout->AddWidget(label, QRect(0, 0, 10, 10));
    layout->AddWidget(label, QRect(0, 0, 10, 10), {100, 100}, {100, 100});
    QCOMPARE(layout->count(), 1);
    layout->setGeometry(QRect(0, 0, 150, 120));
    QCOMPARE(label->geometry(), QRect(50, 20, 10, 10));
}

void AnchorLayoutTest::unknownWidgetIsRefused() {
    CAnchorLayout layout;
    QLabel stranger("x");
    QVERIFY(!layout.SetAnchors(&stranger, {0, 0}, {100, 100}));
    QVERIFY(!layout.SetDesignRect(&stranger, QRect(1, 1, 1, 1)));
    QCOMPARE(layout.DesignRect(&stranger), QRect());
    layout.AddWidget(nullptr, QRect(0, 0, 5, 5));
    QCOMPARE(layout.count(), 0);
}

QTEST_MAIN(AnchorLayoutTest)
#include "AnchorLayoutTest.moc"
