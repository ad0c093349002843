// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CImageButton.h"

#include "res/TonwerkResources.h"

CImageButton::CImageButton(QWidget* parent) : QPushButton(parent) {
    tonwerk::res::InitResources();
}

CImageButton::CImageButton(const QString& text, QWidget* parent) : QPushButton(text, parent) {
    tonwerk::res::InitResources();
}

bool CImageButton::SetImage(const QString& resourcePath, const QSize& size) {
    const QIcon icon(resourcePath);
    // QIcon accepts any path; only a real image gives a pixmap.
    if (icon.isNull() || icon.pixmap(size).isNull()) {
        m_imagePath.clear();
        setIcon(QIcon());
        return false;
    }
    SetImage(icon, size);
    m_imagePath = resourcePath;
    return true;
}

void CImageButton::SetImage(const QIcon& icon, const QSize& size) {
    m_imagePath.clear();
    setIcon(icon);
    setIconSize(size);
    updateGeometry();
    update();
}
