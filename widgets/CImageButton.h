// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QPushButton>
#include <QSize>
#include <QString>

/// A push button showing an image beside (or instead of) its caption. The image is rendered at
/// the requested size, so icons drawn as vectors stay sharp.
class CImageButton : public QPushButton {
    Q_OBJECT
public:
    explicit CImageButton(QWidget* parent = nullptr);
    explicit CImageButton(const QString& text, QWidget* parent = nullptr);

    /// Sets the image from a resource path (e.g. ":/tonwerk/buttons/listen.svg") at this size.
    /// Returns false, and leaves the button without an image, when the path gives no image.
    bool SetImage(const QString& resourcePath, const QSize& size);
    void SetImage(const QIcon& icon, const QSize& size);
    QString ImagePath() const { return m_imagePath; }

private:
    QString m_imagePath;
};
