// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CKeyLamp.h"

#include "res/TonwerkResources.h"

#include <QIcon>

namespace {
constexpr int kLampPixels = 128;  // rendered large; painting scales it to the control

QPixmap LampPixmap(const char* path) {
    return QIcon(QString::fromLatin1(path)).pixmap(QSize(kLampPixels, kLampPixels));
}
}  // namespace

CKeyLamp::CKeyLamp(QWidget* parent) : CLayeredBitmap(parent) {
    tonwerk::res::InitResources();
    AddLayer(kKeyUpLayer, QStringLiteral("Key Up"), LampPixmap(tonwerk::res::kKeyUp), true);
    AddLayer(kKeyDownLayer, QStringLiteral("Key Down"), LampPixmap(tonwerk::res::kKeyDown), false);
    setAccessibleName(QStringLiteral("Key Up"));
}

void CKeyLamp::SetKeyDown(bool down) {
    ShowLayer(kKeyDownLayer, down);
    ShowLayer(kKeyUpLayer, !down);
    setAccessibleName(LayerName(down ? kKeyDownLayer : kKeyUpLayer));
    repaint();
}
