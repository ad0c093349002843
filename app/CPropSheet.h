// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <functional>

#include "app/CPropPageSpeech.h"
#include "app/CPropPageSpeed.h"
#include "model/CodeTiming.h"

class CTonwerkDoc;
class QDialogButtonBox;
class QPushButton;
class QTabWidget;

/// "Tonwerk Configuration": the Speed and Speech pages as tabs with OK, Cancel and Apply. A page
/// is validated when it is left, on Apply and on OK; a page never shown is never validated.
class CPropSheet : public QDialog {
    Q_OBJECT

public:
    /// Replaces the modal loop in tests: gets the sheet, returns the dialog result.
    using Driver = std::function<int(CPropSheet&)>;

    CPropSheet(CTonwerkDoc* doc, QWidget* parent = nullptr);
    ~CPropSheet() override;

    /// The eight values from the profile with the sheet's own defaults.
    void LoadFromProfile();
    CodeTiming Timing() const;

    CPropPageSpeed& Speed() { return m_speed; }
    CPropPageSpeech& Speech() { return m_speech; }
    QTabWidget* Tabs() const { return m_tabs; }
    QPushButton* ApplyButton() const;
    QPushButton* OkButton() const;

    /// Apply: takes the active page's fields, writes all eight values. @return false if refused.
    bool OnApply();
    void accept() override;

    static int Run(CPropSheet& sheet);
    static void SetDriver(Driver driver);

private:
    bool UpdateActivePage();
    void SetModified(bool modified);

    CTonwerkDoc* m_doc;
    CPropPageSpeed m_speed;
    CPropPageSpeech m_speech;
    QTabWidget* m_tabs;
    QDialogButtonBox* m_buttons;
    int m_activePage = 0;
};
