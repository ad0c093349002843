// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CHtmlToolTip.h"

#include "res/TonwerkResources.h"

#include <QHelpEvent>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTextDocument>
#include <QToolTip>

class HtmlToolTipTest : public QObject {
    Q_OBJECT
private slots:
    void tipCarriesIconAndTextVerbatim();
    void unknownToolHasNoTip();
    void tipShowsOnlyWhileActive();
    void deletedToolIsForgotten();
    void tipRendersWithIcon();
};

namespace {
const QString kRandomTip = QStringLiteral(
    "<center><h2>Generate Random</h2></center><br><hr color=green><br><h4>Generates random "
    "sequences<br>of characters and groups<br>them into words</h4>");
}

void HtmlToolTipTest::tipCarriesIconAndTextVerbatim() {
    CHtmlToolTip tips;
    tips.SetIcon(QString::fromLatin1(tonwerk::res::kToolTipIcon));
    QPushButton random("&Random");
    tips.AddTool(&random, kRandomTip);
    QVERIFY(tips.HasTool(&random));
    QCOMPARE(tips.ToolText(&random), kRandomTip);
    const QString html = tips.TipHtml(&random);
    QVERIFY(html.contains(kRandomTip));
    QVERIFY(html.contains(QStringLiteral("<img src=\":/tonwerk/tooltip/tip.svg\"")));
    QVERIFY(html.indexOf(QStringLiteral("<img")) < html.indexOf(kRandomTip));
    QVERIFY(Qt::mightBeRichText(html));
    // A text holding "%1" or "%2" is still kept as it is.
    tips.AddTool(&random, QStringLiteral("<h1> 100%1 %2 </h1>"));
    QVERIFY(tips.TipHtml(&random).contains(QStringLiteral("<h1> 100%1 %2 </h1>")));
}

void HtmlToolTipTest::unknownToolHasNoTip() {
    CHtmlToolTip tips;
    QLabel label;
    QCOMPARE(tips.TipHtml(&label), QString());
    QCOMPARE(tips.ToolText(&label), QString());
    tips.AddTool(nullptr, QStringLiteral("x"));
    QVERIFY(!tips.HasTool(nullptr));
    tips.RemoveTool(&label);
}

void HtmlToolTipTest::tipShowsOnlyWhileActive() {
    CHtmlToolTip tips;
    tips.SetIcon(QString::fromLatin1(tonwerk::res::kToolTipIcon));
    QPushButton button("Pitch");
    button.resize(80, 30);
    button.show();
    QVERIFY(QTest::qWaitForWindowExposed(&button));
    tips.AddTool(&button, QStringLiteral("<h2>Pitch Control</h2>"));
    const QPoint local(10, 10);

    QHelpEvent inactive(QEvent::ToolTip, local, button.mapToGlobal(local));
    QApplication::sendEvent(&button, &inactive);
    QVERIFY(!QToolTip::isVisible());

    tips.Activate(true);
    QHelpEvent active(QEvent::ToolTip, local, button.mapToGlobal(local));
    QApplication::sendEvent(&button, &active);
    QTRY_VERIFY(QToolTip::isVisible());
    QVERIFY(QToolTip::text().contains(QStringLiteral("Pitch Control")));
    QVERIFY(QToolTip::text().contains(QStringLiteral("tip.svg")));

    tips.Activate(false);
    QTRY_VERIFY(!QToolTip::isVisible());
}

void HtmlToolTipTest::deletedToolIsForgotten() {
    CHtmlToolTip tips;
    auto* label = new QLabel;
    tips.AddTool(label, QStringLiteral("<b>x</b>"));
    const QWidget* key = label;
    delete label;
    QVERIFY(!tips.HasTool(key));
}

void HtmlToolTipTest::tipRendersWithIcon() {
    // The rich-text engine must find the icon in the resources, not show a broken image.
    CHtmlToolTip tips;
    tips.SetIcon(QString::fromLatin1(tonwerk::res::kToolTipIcon), 32);
    QLabel tool;
    tips.AddTool(&tool, kRandomTip);
    QTextDocument document;
    document.setHtml(tips.TipHtml(&tool));
    const QVariant image = document.resource(QTextDocument::ImageResource,
                                             QUrl(QString::fromLatin1(tonwerk::res::kToolTipIcon)));
    QVERIFY(image.isValid());
    QVERIFY(document.toPlainText().contains(QStringLiteral("Generate Random")));
}

QTEST_MAIN(HtmlToolTipTest)
#include "HtmlToolTipTest.moc"
