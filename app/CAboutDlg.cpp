// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CAboutDlg.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>

#include "res/TonwerkResources.h"

CAboutDlg::CAboutDlg(QWidget* parent) : QDialog(parent) {
    setWindowTitle(tr("About Tonwerk"));
    setObjectName("AboutDlg");
    auto* layout = new QGridLayout(this);
    auto* icon = new QLabel(this);
    icon->setPixmap(QIcon(QString::fromLatin1(tonwerk::res::kAppIcon)).pixmap(48, 48));
    layout->addWidget(icon, 0, 0, 2, 1, Qt::AlignTop);
    auto* version = new QLabel(tr("Tonwerk Version 1.0"), this);
    version->setObjectName("labelVersion");
    layout->addWidget(version, 0, 1);
    layout->addWidget(new QLabel(tr("Morse code practice trainer"), this), 1, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    layout->addWidget(buttons, 2, 0, 1, 2);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}
