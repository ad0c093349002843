// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CWaveFileDlg.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "app/CModalSeam.h"
#include "model/IProfile.h"
#include "res/TonwerkResources.h"
#include "widgets/CImageButton.h"

namespace {

// 303 x 137 dialog units of an 8-point dialog font.
constexpr int kDialogWidth = 455;
constexpr int kDialogHeight = 223;

CWaveFileDlg::Driver& DialogDriver() {
    static CWaveFileDlg::Driver driver;
    return driver;
}

template <typename T>
T* Register(T* widget, int id, const char* name) {
    widget->setProperty("controlId", id);
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

}  // namespace

CWaveFileDlg::CWaveFileDlg(IProfile& profile, QWidget* parent)
    : QDialog(parent), m_profile(profile) {
    setWindowTitle(tr("Save Wave File As:"));
    setObjectName("WaveFileDlg");
    auto* layout = new QGridLayout(this);

    // Created in tab order.
    auto* nameLabel = new QLabel(tr("File Name:"), this);
    m_fileNameEdit = Register(new QLineEdit(this), 1089, "editFileName");
    nameLabel->setBuddy(m_fileNameEdit);
    auto* folderLabel = new QLabel(tr("Folder Name:"), this);
    m_folderEdit = Register(new QLineEdit(this), 1090, "editFolder");
    folderLabel->setBuddy(m_folderEdit);
    m_browse =
        Register(new CImageButton(tr("Browse for Folder Location"), this), 1091, "buttonBrowse");
    m_browse->setAutoDefault(false);
    auto* format = new QLabel(tr("Output Audio Format is: PCM 44.100 kHz, 16 Bit, Mono"), this);
    format->setObjectName("labelFormat");
    format->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_rememberCheck =
        Register(new QCheckBox(tr("Remember these Settings and don't ask again please"), this),
                 1092, "checkRemember");
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    Register(buttons->button(QDialogButtonBox::Ok), 1, "buttonOk")->setDefault(true);
    Register(buttons->button(QDialogButtonBox::Cancel), 2, "buttonCancel");

    layout->addWidget(nameLabel, 0, 0);
    layout->addWidget(m_fileNameEdit, 0, 1, 1, 2);
    layout->addWidget(folderLabel, 1, 0);
    layout->addWidget(m_folderEdit, 1, 1);
    layout->addWidget(m_browse, 1, 2);
    layout->addWidget(format, 2, 0, 1, 3);
    layout->addWidget(m_rememberCheck, 3, 0, 1, 3);
    layout->setRowStretch(4, 1);
    layout->addWidget(buttons, 5, 0, 1, 3);
    layout->setColumnStretch(1, 1);
    resize(kDialogWidth, kDialogHeight);

    connect(m_browse, &QPushButton::clicked, this, &CWaveFileDlg::OnBrowse);
    connect(buttons, &QDialogButtonBox::accepted, this, &CWaveFileDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CWaveFileDlg::reject);
}

CWaveFileDlg::~CWaveFileDlg() = default;

bool CWaveFileDlg::UpdateData(bool saveAndValidate) {
    if (saveAndValidate) {
        m_fileName = m_fileNameEdit->text();
        m_folder = m_folderEdit->text();
        m_remember = m_rememberCheck->isChecked() ? 1 : 0;
    } else {
        m_fileNameEdit->setText(m_fileName);
        m_folderEdit->setText(m_folder);
        m_rememberCheck->setChecked(m_remember != 0);
    }
    return true;
}

void CWaveFileDlg::OnInitDialog() {
    UpdateData(false);
    m_browse->SetImage(QString::fromLatin1(tonwerk::res::kButtonBrowse), QSize(16, 16));
}

void CWaveFileDlg::OnBrowse() {
    const QString folder =
        CModalSeam::FolderName(this, tr("Select a Folder..."), m_folderEdit->text());
    if (folder.isEmpty()) {
        return;
    }
    // The browsed folder is kept even if the dialog is cancelled afterwards.
    m_profile.WriteString(kSection, "Path", folder.toStdString());
    m_folder = folder;
    // Pushes every member, so fields edited since the dialog opened show their old values again.
    UpdateData(false);
}

void CWaveFileDlg::accept() {
    if (UpdateData(true)) {
        QDialog::accept();
    }
}

void CWaveFileDlg::SetDriver(Driver driver) {
    DialogDriver() = std::move(driver);
}

int CWaveFileDlg::Run(CWaveFileDlg& dialog) {
    dialog.OnInitDialog();
    if (DialogDriver()) {
        return DialogDriver()(dialog);
    }
    return dialog.exec();
}
