// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QString>
#include <functional>

class CImageButton;
class IProfile;
class QCheckBox;
class QLineEdit;

/// "Save Wave File As:": file name and folder of a session recording, with the browse button
/// and the remember box. Browsing stores the chosen folder as "Path" at once, whatever the
/// dialog's outcome; the caller stores the rest when the box is ticked.
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

    /// Initialises the dialog and runs it modally (or through the driver).
    static int Run(CWaveFileDlg& dialog);
    static void SetDriver(Driver driver);

private:
    IProfile& m_profile;
    QLineEdit* m_fileNameEdit;
    QLineEdit* m_folderEdit;
    CImageButton* m_browse;
    QCheckBox* m_rememberCheck;
};
