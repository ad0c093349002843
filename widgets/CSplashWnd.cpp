// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CSplashWnd.h"

#include "res/TonwerkResources.h"

#include <QGuiApplication>
#include <QIcon>
#include <QLinearGradient>
#include <QPainter>
#include <QScreen>

namespace {
constexpr int kWidth = 360;
constexpr int kHeight = 180;
constexpr int kIconSize = 96;
}  // namespace

CSplashWnd::CSplashWnd(QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
    tonwerk::res::InitResources();
    setFixedSize(kWidth, kHeight);
    setAttribute(Qt::WA_DeleteOnClose, false);
}

void CSplashWnd::ShowSplash() {
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        QRect where(QPoint(0, 0), size());
        where.moveCenter(screen->availableGeometry().center());
        move(where.topLeft());
    }
    show();
    raise();
}

void CSplashWnd::CloseSplash() {
    hide();
}

void CSplashWnd::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, true);
    QLinearGradient gradient(0, 0, 0, height());
    gradient.setColorAt(0, QColor(59, 111, 216));
    gradient.setColorAt(1, QColor(29, 63, 143));
    painter.fillRect(rect(), gradient);
    const QPixmap icon =
        QIcon(QString::fromLatin1(tonwerk::res::kAppIcon)).pixmap(QSize(kIconSize, kIconSize));
    painter.drawPixmap(24, (height() - kIconSize) / 2, icon);
    QFont font = painter.font();
    font.setPixelSize(34);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    const QRect text(24 + kIconSize + 16, 0, width() - kIconSize - 56, height());
    painter.drawText(text, Qt::AlignVCenter | Qt::AlignLeft, QStringLiteral("Tonwerk"));
}
