// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CStatusProgress.h"

#include "res/TonwerkResources.h"

#include <QTest>
#include <atomic>
#include <latch>
#include <memory>
#include <thread>
#include <vector>

class StatusProgressTest : public QObject {
    Q_OBJECT
private slots:
    void stepsWithinRange_data();
    void stepsWithinRange();
    void emptyOrReversedRange();
    void setPosReturnsOldAndClamps();
    void workerStepsEndInRightValue();
    void stepperOutlivesTheBar();
    void barImagePaintsFilledPart();
    void missingBarImageIsRefused();
};

void StatusProgressTest::stepsWithinRange_data() {
    QTest::addColumn<int>("lower");
    QTest::addColumn<int>("upper");
    QTest::addColumn<int>("step");
    QTest::addColumn<int>("steps");
    QTest::addColumn<int>("expected");
    QTest::newRow("text of 30") << 0 << 30 << 1 << 30 << 30;
    QTest::newRow("partway") << 0 << 30 << 1 << 12 << 12;
    QTest::newRow("past the end stops there") << 0 << 10 << 1 << 25 << 10;
    QTest::newRow("bigger step") << 0 << 100 << 7 << 5 << 35;
    QTest::newRow("negative step stops at lower") << 0 << 10 << -3 << 4 << 0;
    QTest::newRow("offset range") << 5 << 9 << 1 << 2 << 7;
    QTest::newRow("huge step saturates") << 0 << 10 << 2147483647 << 3 << 10;
}

void StatusProgressTest::stepsWithinRange() {
    QFETCH(int, lower);
    QFETCH(int, upper);
    QFETCH(int, step);
    QFETCH(int, steps);
    QFETCH(int, expected);
    CStatusProgress bar;
    bar.SetRange(lower, upper);
    bar.SetStep(step);
    bar.SetPos(lower);
    for (int i = 0; i < steps; ++i) {
        bar.StepIt();
    }
    QCOMPARE(bar.Pos(), expected);
}

void StatusProgressTest::emptyOrReversedRange() {
    // A practice text longer than 32767 characters arrives as a negative 16-bit length.
    CStatusProgress bar;
    bar.SetRange(0, -30000);
    QCOMPARE(bar.Lower(), 0);
    QCOMPARE(bar.Upper(), 0);
    bar.SetStep(1);
    bar.StepIt();
    QCOMPARE(bar.Pos(), 0);
    bar.resize(100, 16);
    QVERIFY(!bar.grab().isNull());
}

void StatusProgressTest::setPosReturnsOldAndClamps() {
    CStatusProgress bar;
    bar.SetRange(0, 50);
    QCOMPARE(bar.SetPos(20), 0);
    QCOMPARE(bar.SetPos(80), 20);
    QCOMPARE(bar.Pos(), 50);
    QCOMPARE(bar.SetPos(-5), 50);
    QCOMPARE(bar.Pos(), 0);
    bar.SetPos(40);
    bar.SetRange(0, 10);  // a narrower range pulls the position in
    QCOMPARE(bar.Pos(), 10);
    bar.SetStep(1);
    QCOMPARE(bar.StepIt(), 10);
}

void StatusProgressTest::workerStepsEndInRightValue() {
    CStatusProgress bar;
    bar.resize(200, 16);
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    constexpr int kThreads = 4;
    constexpr int kStepsEach = 100000;
    bar.SetRange(0, kThreads * kStepsEach);
    bar.SetStep(1);
    bar.SetPos(0);
    std::latch start(kThreads);
    std::atomic<int> finished{0};
    std::vector<std::thread> workers;
    for (int t = 0; t < kThreads; ++t) {
        workers.emplace_back([&] {
            start.arrive_and_wait();  // all at once, so the steps really collide
            for (int i = 0; i < kStepsEach; ++i) {
                bar.StepIt();
            }
            ++finished;
        });
    }
    // The GUI thread keeps painting while the workers step.
    QTRY_VERIFY_WITH_TIMEOUT(finished.load() == kThreads, 60000);
    for (std::thread& worker : workers) {
        worker.join();
    }
    QCOMPARE(bar.Pos(), kThreads * kStepsEach);
    QTRY_COMPARE(bar.ShownPos(), kThreads * kStepsEach);
}

void StatusProgressTest::stepperOutlivesTheBar() {
    auto bar = std::make_unique<CStatusProgress>();
    bar->SetRange(0, 100);
    bar->SetStep(1);
    const std::function<void()> step = bar->Stepper();
    step();
    step();
    QCOMPARE(bar->Pos(), 2);
    // The frame replaces the bar while a worker still holds its stepper.
    std::thread worker([step] {
        for (int i = 0; i < 1000; ++i) {
            step();
        }
    });
    bar.reset();
    worker.join();
    step();
}

void StatusProgressTest::barImagePaintsFilledPart() {
    CStatusProgress bar;
    bar.resize(100, 16);
    QVERIFY(bar.SetBarImage(QString::fromLatin1(tonwerk::res::kBarSession)));
    QCOMPARE(bar.BarImage(), QString::fromLatin1(tonwerk::res::kBarSession));
    bar.SetRange(0, 4);
    bar.SetPos(2);
    const QImage image = bar.grab().toImage();
    // The session bar is green glass: the left half green, the right half empty.
    const QColor filled = image.pixelColor(25, 8);
    const QColor empty = image.pixelColor(75, 8);
    QVERIFY2(filled.green() > filled.red() + 40 && filled.green() > filled.blue() + 40,
             qPrintable(filled.name()));
    QVERIFY2(!(empty.green() > empty.red() + 40), qPrintable(empty.name()));
}

void StatusProgressTest::missingBarImageIsRefused() {
    CStatusProgress bar;
    QVERIFY(!bar.SetBarImage(QStringLiteral(":/tonwerk/bars/no-such-bar.svg")));
    QCOMPARE(bar.BarImage(), QString());
    bar.resize(50, 10);
    bar.SetPos(50);
    QVERIFY(!bar.grab().isNull());
}

QTEST_MAIN(StatusProgressTest)
#include "StatusProgressTest.moc"
