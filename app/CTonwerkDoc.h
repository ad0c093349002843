// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

#include "model/CProfileSettings.h"
#include "model/CodeTiming.h"

class CTonwerkView;
class QWidget;

/// The practice document: the two texts of the view as a ".code" file, the file commands with
/// their "Save Changes?" question, the alphabet conversions and every profile setting. Settings
/// are read from the profile on every use, so the sheet, the sliders and the view never disagree.
class CTonwerkDoc : public QObject {
    Q_OBJECT

public:
    static constexpr const char* kFilter = "All code files (*.code)";
    /// Larger files are refused unread.
    static constexpr qint64 kMaxFileBytes = qint64{16} << 20;

    explicit CTonwerkDoc(IProfile& profile, QObject* parent = nullptr);

    CProfileSettings& Settings() { return m_settings; }
    const CProfileSettings& Settings() const { return m_settings; }

    /// Code text of a practice text; reads "DblSpace" on every call.
    std::string TextToCode(std::string_view text) const;
    std::string PatternToText(std::string_view pattern, bool letterGroups) const;

    void SetView(CTonwerkView* view) { m_view = view; }
    CTonwerkView* View() const { return m_view; }

    QString Title() const { return m_title; }
    void SetTitle(const QString& title);
    QString PathName() const { return m_path; }
    QString FileName() const { return m_fileName; }
    bool IsModified() const { return m_modified; }
    void SetModifiedFlag(bool modified = true);

    /// Writes the eight timing values of the settings sheet.
    void SaveSettings(const CodeTiming& timing) { m_settings.SaveSettings(timing); }

    void OnFileNew();
    void OnFileOpen();
    /// @return true when the document was written
    bool OnFileSave();
    bool OnFileSaveAs();
    void OnConfig();

    /// Opens a file without a dialog (command line, dropped files). @return true when loaded.
    bool OpenFile(const QString& path);

    /// Asks "Save Changes?" when modified. @return false when the user cancelled or the save
    /// they asked for did not happen.
    bool SaveModified();

signals:
    void TitleChanged(const QString& title);
    void ModifiedChanged(bool modified);

private:
    bool WriteFile(const QString& path);
    QWidget* DialogParent() const;
    static QString FileNameOf(const QString& path);

    CProfileSettings m_settings;
    CTonwerkView* m_view = nullptr;
    QString m_path;
    QString m_fileName;
    QString m_title;
    bool m_modified = false;
};
