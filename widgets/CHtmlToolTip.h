// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>

class QWidget;

/// Tooltips written in HTML, each shown with the same icon to the left of the text. Tools are
/// widgets; the tip appears on the widget's tooltip event while the control is active.
class CHtmlToolTip : public QObject {
    Q_OBJECT
public:
    explicit CHtmlToolTip(QObject* parent = nullptr);

    /// The icon shown in every tip, as a resource path; empty for none.
    void SetIcon(const QString& resourcePath, int size = 32);
    QString Icon() const { return m_iconPath; }

    /// Adds (or replaces) the tip of a widget. The HTML is kept exactly as given.
    void AddTool(QWidget* tool, const QString& html);
    void RemoveTool(QWidget* tool);
    bool HasTool(const QWidget* tool) const;
    /// The HTML given for the widget, empty for an unknown one.
    QString ToolText(const QWidget* tool) const;
    /// The complete rich text shown for the widget: icon and text side by side.
    QString TipHtml(const QWidget* tool) const;

    /// While inactive no tip is shown.
    void Activate(bool active);
    bool IsActive() const { return m_active; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QHash<const QWidget*, QString> m_tools;
    QString m_iconPath;
    int m_iconSize = 32;
    bool m_active = false;
};
