// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CHtmlToolTip.h"

#include "res/TonwerkResources.h"

#include <QEvent>
#include <QHelpEvent>
#include <QToolTip>
#include <QWidget>

CHtmlToolTip::CHtmlToolTip(QObject* parent) : QObject(parent) {
    tonwerk::res::InitResources();
}

void CHtmlToolTip::SetIcon(const QString& resourcePath, int size) {
    m_iconPath = resourcePath;
    m_iconSize = size > 0 ? size : 32;
}

void CHtmlToolTip::AddTool(QWidget* tool, const QString& html) {
    if (tool == nullptr) {
        return;
    }
    if (!m_tools.contains(tool)) {
        tool->installEventFilter(this);
        // A deleted widget must not leave a dangling key behind.
        connect(tool, &QObject::destroyed, this,
                [this, tool] { m_tools.remove(static_cast<const QWidget*>(tool)); });
    }
    m_tools.insert(tool, html);
}

void CHtmlToolTip::RemoveTool(QWidget* tool) {
    if (tool != nullptr && m_tools.remove(tool) > 0) {
        tool->removeEventFilter(this);
        disconnect(tool, &QObject::destroyed, this, nullptr);
    }
}

bool CHtmlToolTip::HasTool(const QWidget* tool) const {
    return m_tools.contains(tool);
}

QString CHtmlToolTip::ToolText(const QWidget* tool) const {
    return m_tools.value(tool);
}

QString CHtmlToolTip::TipHtml(const QWidget* tool) const {
    const auto it = m_tools.constFind(tool);
    if (it == m_tools.cend()) {
        return {};
    }
    // A two-cell table keeps the icon beside the text, whatever the text's own markup does.
    QString icon;
    if (!m_iconPath.isEmpty()) {
        icon = QStringLiteral("<td valign=\"top\"><img src=\"%1\" width=\"%2\" height=\"%2\"></td>")
                   .arg(m_iconPath)
                   .arg(m_iconSize);
    }
    return QStringLiteral(
               "<html><table cellspacing=\"0\" cellpadding=\"4\"><tr>%1<td>%2</td>"
               "</tr></table></html>")
        .arg(icon, it.value());
}

void CHtmlToolTip::Activate(bool active) {
    m_active = active;
    if (!active) {
        QToolTip::hideText();
    }
}

bool CHtmlToolTip::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ToolTip && m_active) {
        auto* widget = qobject_cast<QWidget*>(watched);
        if (widget != nullptr && m_tools.contains(widget)) {
            const auto* help = static_cast<QHelpEvent*>(event);
            QToolTip::showText(help->globalPos(), TipHtml(widget), widget);
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}
