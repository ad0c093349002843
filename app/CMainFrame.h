// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QMainWindow>
#include <QRect>
#include <memory>

class CCopyPracticePanel;
class CKochTrainer;
class CPracticeHistory;
class CProgressWindow;
class CStatusProgress;
class CTonwerkDoc;
class CTonwerkView;
class IProfile;
class QAction;
class QLabel;
class QScrollArea;

/// The top-level window: menu bar, toolbar, status bar with the progress pane, and the practice
/// view. It restores its placement from "WindowSettings" and stores it on close only when every
/// coordinate lies in 1..1999.
class CMainFrame : public QMainWindow {
    Q_OBJECT

public:
    static constexpr int kDefaultX = 200;
    static constexpr int kDefaultY = 100;
    static constexpr int kDefaultWidth = 875;
    static constexpr int kDefaultHeight = 700;

    /// Command ids of the menu, as the status-bar prompts and tests name them.
    enum Command {
        kFileNew = 57600,
        kFileOpen = 57601,
        kFileSave = 57603,
        kFileSaveAs = 57604,
        kAppExit = 57665,
        kAppAbout = 57664,
        kEditUndo = 57643,
        kEditCut = 57635,
        kEditCopy = 57634,
        kEditPaste = 57637,
        kEditSelectAll = 57642,
        kConfig = 32774,
        kViewToolbar = 59392,
        kViewStatusBar = 59393,
        kVolumeControl = 32783,
        kCompletionTime = 32791,
        kReadBack = 32792,
        kGenerateFile = 32795,
        kAllOn = 32771,
        kAllOff = 32772,
        kDitCharacters = 32775,
        kDahCharacters = 32776,
        kOneTone = 32778,
        kTwoTones = 32779,
        kThreeTones = 32780,
        kFourTones = 32781,
        kNumbersToggle = 32786,
        kProSignsToggle = 32790,
        kCallSigns = 32793,
        kDoubleSpace = 32785
    };
    /// Command ids of the copy practice.
    enum CopyCommand { kKochLesson = 32800, kViewProgress = 32801 };

    explicit CMainFrame(IProfile& profile, QWidget* parent = nullptr);
    ~CMainFrame() override;

    CTonwerkDoc* Document() const { return m_doc; }
    CTonwerkView* View() const { return m_view; }
    QAction* Action(int command) const { return m_actions.value(command); }
    CStatusProgress* Progress() const { return m_pProgress; }
    CCopyPracticePanel* CopyPanel() const { return m_copyPanel; }
    CKochTrainer* KochTrainer() const { return m_koch; }
    /// View > Progress: shows the progress window, read afresh, and returns it.
    CProgressWindow* OnProgress();

    /// Replaces the status-bar progress bar with a fresh one and returns it.
    CStatusProgress* ResetProgress();
    /// Takes the progress bar out of the status bar; Progress() is null until the next reset.
    void RemoveProgress();
    /// Puts a text in the message pane (pane 0) of the status bar.
    void SetMessageText(const QString& text);

    /// Reads "WindowSettings" (200, 100, 875, 700 when absent) and places the frame there, moved
    /// onto the nearest screen and no larger than it.
    void RestorePlacement();
    /// The rectangle last seen for the frame, in screen coordinates.
    QRect WindowRect() const { return m_rectWindow; }

    /// The title bar text for a document title.
    static QString FrameTitle(const QString& documentTitle);

protected:
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void CreateActions();
    void CreateMenus();
    void CreateToolBar();
    void CreateStatusBar();
    void SavePlacement();
    QRect WindowRectNow() const;
    QAction* AddAction(int command, const QString& text, const QString& prompt,
                       const char* icon = nullptr);
    void OnAbout();
    /// The copy-practice panel, the Koch course and the progress window (CMainFrameCopy.cpp).
    void CreateCopyPractice();

    IProfile& m_profile;
    QRect m_rectWindow;
    CTonwerkDoc* m_doc = nullptr;
    CTonwerkView* m_view = nullptr;
    QScrollArea* m_scroll = nullptr;
    QLabel* m_messagePane = nullptr;
    QWidget* m_progressPane = nullptr;
    CStatusProgress* m_pProgress = nullptr;
    QHash<int, QAction*> m_actions;
    CPracticeHistory* m_history = nullptr;
    CKochTrainer* m_koch = nullptr;
    CCopyPracticePanel* m_copyPanel = nullptr;
    CProgressWindow* m_progressWindow = nullptr;
};
