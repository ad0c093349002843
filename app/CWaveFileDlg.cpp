// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CWaveFileDlg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>

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

QString FromView(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
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
    auto* typeLabel = new QLabel(tr("File Type:"), this);
    m_typeCombo = new QComboBox(this);
    m_typeCombo->setObjectName("comboType");
    for (const SoundFileTypeInfo& info : SoundFileTypes()) {
        m_typeCombo->addItem(FromView(info.name), static_cast<int>(info.type));
    }
    typeLabel->setBuddy(m_typeCombo);
    auto* qualityLabel = new QLabel(tr("Quality:"), this);
    m_qualitySpin = new QSpinBox(this);
    m_qualitySpin->setObjectName("spinQuality");
    qualityLabel->setBuddy(m_qualitySpin);
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
    layout->addWidget(typeLabel, 2, 0);
    layout->addWidget(m_typeCombo, 2, 1, 1, 2);
    layout->addWidget(qualityLabel, 3, 0);
    layout->addWidget(m_qualitySpin, 3, 1, 1, 2);
    layout->addWidget(format, 4, 0, 1, 3);
    layout->addWidget(m_rememberCheck, 5, 0, 1, 3);
    layout->setRowStretch(6, 1);
    layout->addWidget(buttons, 7, 0, 1, 3);
    layout->setColumnStretch(1, 1);
    resize(kDialogWidth, kDialogHeight);

    connect(m_browse, &QPushButton::clicked, this, &CWaveFileDlg::OnBrowse);
    connect(m_typeCombo, &QComboBox::activated, this, &CWaveFileDlg::OnTypeChosen);
    connect(m_fileNameEdit, &QLineEdit::textEdited, this, [this](const QString& name) {
        if (const auto type = SoundFileTypeFromPath(name.toStdString())) {
            m_typeCombo->setCurrentIndex(m_typeCombo->findData(static_cast<int>(*type)));
            ShowQuality();
        }
    });
    connect(m_qualitySpin, &QSpinBox::valueChanged, this, [this](int value) {
        (ShownType() == SoundFileType::kMp3 ? m_quality.mp3BitRate : m_quality.quality) = value;
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &CWaveFileDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CWaveFileDlg::reject);
}

CWaveFileDlg::~CWaveFileDlg() = default;

bool CWaveFileDlg::UpdateData(bool saveAndValidate) {
    if (saveAndValidate) {
        m_fileName = m_fileNameEdit->text();
        m_folder = m_folderEdit->text();
        m_remember = m_rememberCheck->isChecked() ? 1 : 0;
        // A name without a known extension gets the chosen type's.
        m_fileType = ShownType();
        if (const auto named = SoundFileTypeFromPath(m_fileName.toStdString())) {
            m_fileType = *named;
        } else if (!m_fileName.isEmpty()) {
            m_fileName += '.' + FromView(SoundFileTypeOf(m_fileType).extension);
        }
    } else {
        m_fileNameEdit->setText(m_fileName);
        m_folderEdit->setText(m_folder);
        m_rememberCheck->setChecked(m_remember != 0);
        const auto type = SoundFileTypeFromPath(m_fileName.toStdString()).value_or(m_fileType);
        m_typeCombo->setCurrentIndex(m_typeCombo->findData(static_cast<int>(type)));
        ShowQuality();
    }
    return true;
}

void CWaveFileDlg::OnInitDialog() {
    UpdateData(false);
    m_browse->SetImage(QString::fromLatin1(tonwerk::res::kButtonBrowse), QSize(16, 16));
}

SoundFileType CWaveFileDlg::ShownType() const {
    return static_cast<SoundFileType>(m_typeCombo->currentData().toInt());
}

void CWaveFileDlg::ShowQuality() {
    const QSignalBlocker blocker(m_qualitySpin);
    const SoundFileType type = ShownType();
    const bool bitRate = type == SoundFileType::kMp3;
    const bool quality = type == SoundFileType::kOggVorbis || type == SoundFileType::kOpus;
    m_qualitySpin->setEnabled(bitRate || quality);
    m_qualitySpin->setSuffix(bitRate ? tr(" kbit/s") : QString());
    m_qualitySpin->setRange(
        bitRate ? SoundFileQuality::kMinBitRate : 0,
        bitRate ? SoundFileQuality::kMaxBitRate : SoundFileQuality::kMaxQuality);
    m_qualitySpin->setValue(bitRate ? m_quality.mp3BitRate : m_quality.quality);
}

void CWaveFileDlg::OnTypeChosen() {
    const QString extension = FromView(SoundFileTypeOf(ShownType()).extension);
    QString name = m_fileNameEdit->text();
    if (SoundFileTypeFromPath(name.toStdString())) {
        name.truncate(name.lastIndexOf('.'));
    }
    if (!name.isEmpty()) {
        m_fileNameEdit->setText(name + '.' + extension);
    }
    ShowQuality();
}

QString CWaveFileDlg::FileFilter() {
    QStringList filters;
    for (const SoundFileTypeInfo& info : SoundFileTypes()) {
        filters.append(
            QStringLiteral("%1 (*.%2)").arg(FromView(info.name), FromView(info.extension)));
    }
    return filters.join(QStringLiteral(";;"));
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
