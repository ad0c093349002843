// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QString>
#include <functional>

#include "sound/CSoundFileWriter.h"

class CImageButton;
class IProfile;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QSpinBox;

/// "Save Wave File As:": file name and folder of a session recording, with the browse button
/// and the remember box. Browsing stores the chosen folder as "Path" at once, whatever the
/// dialog's outcome; the caller stores the rest when the box is ticked. The file type follows the
/// file name's extension, or the type box's choice for a name without a known one; the quality
/// box holds the MP3 bit rate or the Vorbis and Opus quality.
class CWaveFileDlg : public QDialog {
    Q_OBJECT

public:
    /// Replaces the modal loop in tests: gets the initialised dialog, returns the dialog result.
    using Driver = std::function<int(CWaveFileDlg&)>;

    static constexpr const char* kSection = "WaveFile";

    explicit CWaveFileDlg(IProfile& profile, QWidget* parent = nullptr);
    ~CWaveFileDlg() override;

    QString m_fileName;
    QString m_folder;
    int m_remember = 0;
    SoundFileType m_fileType = SoundFileType::kWave;
    SoundFileQuality m_quality;

    /// The save dialogs' filter, one entry per type: "Wave (*.wav);;MP3 (*.mp3);;...".
    static QString FileFilter();

    /// Data exchange: true pulls the fields into the members, false pushes the members.
    bool UpdateData(bool saveAndValidate = true);
    /// Shows the members and gives the browse button its image.
    void OnInitDialog();
    /// Control 1091: the folder browser, starting at the folder field's text.
    void OnBrowse();
    void accept() override;

    QLineEdit* FileNameEdit() const { return m_fileNameEdit; }
    QLineEdit* FolderEdit() const { return m_folderEdit; }
    QCheckBox* RememberCheck() const { return m_rememberCheck; }
    CImageButton* BrowseButton() const { return m_browse; }
    QComboBox* TypeCombo() const { return m_typeCombo; }
    QSpinBox* QualitySpin() const { return m_qualitySpin; }

    /// Initialises the dialog and runs it modally (or through the driver).
    static int Run(CWaveFileDlg& dialog);
    static void SetDriver(Driver driver);

private:
    /// The quality box's range and value for the type shown in the type box.
    void ShowQuality();
    /// A type picked in the box gives the file name its extension.
    void OnTypeChosen();
    SoundFileType ShownType() const;

    IProfile& m_profile;
    QLineEdit* m_fileNameEdit;
    QLineEdit* m_folderEdit;
    CImageButton* m_browse;
    QCheckBox* m_rememberCheck;
    QComboBox* m_typeCombo;
    QSpinBox* m_qualitySpin;
};
