// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CMainFrame.h"

#include <QAction>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QScrollArea>
#include <QStatusBar>
#include <QToolBar>
#include <algorithm>
#include <cstdint>

#include "app/CAboutDlg.h"
#include "app/CCopyPracticePanel.h"
#include "app/CLockIndicators.h"
#include "app/CModalSeam.h"
#include "app/CTonwerkDoc.h"
#include "app/CTonwerkView.h"
#include "model/IProfile.h"
#include "res/TonwerkResources.h"
#include "widgets/CStatusProgress.h"

namespace {

constexpr std::string_view kWindowSettings = "WindowSettings";
constexpr std::string_view kBarStateSection = "TonwerkApp";
constexpr std::string_view kBarStateEntry = "BarState";
constexpr std::string_view kStatusBarEntry = "StatusBar";
constexpr int kPlacementMin = 1;
constexpr int kPlacementMax = 1999;

/// The width of the text that sizes the progress pane: 52 blanks.
constexpr int kProgressPaneBlanks = 52;

/// Keeps the toolbar's button of a command whose prompt has no tip part from showing one: Qt
/// would fall back on the menu caption, shortcut and all.
class CNoToolTip final : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        return event->type() == QEvent::ToolTip || QObject::eventFilter(watched, event);
    }
};

/// The stored rectangle moved onto the screen nearest to it and no larger than that screen's
/// free area, so a placement from another monitor setup (or a broken profile) can neither hide
/// the window nor give it a size the window system cannot handle. Computed in 64 bits: stored
/// values may be anything an int holds.
QRect OnNearestScreen(std::int64_t x, std::int64_t y, std::int64_t w, std::int64_t h) {
    const QList<QScreen*> screens = QGuiApplication::screens();
    if (screens.isEmpty()) {
        return QRect(static_cast<int>(x), static_cast<int>(y), static_cast<int>(w),
                     static_cast<int>(h));
    }
    const auto distance = [&](const QRect& area) {
        const auto gap = [](std::int64_t from, std::int64_t to, std::int64_t low,
                            std::int64_t high) {
            return to < low ? low - to : from > high ? from - high : std::int64_t{0};
        };
        return gap(x, x + w - 1, area.left(), area.right()) +
               gap(y, y + h - 1, area.top(), area.bottom());
    };
    QRect area = screens.constFirst()->availableGeometry();
    for (const QScreen* screen : screens) {
        if (distance(screen->availableGeometry()) < distance(area)) {
            area = screen->availableGeometry();
        }
    }
    const std::int64_t width = std::clamp<std::int64_t>(w, 1, area.width());
    const std::int64_t height = std::clamp<std::int64_t>(h, 1, area.height());
    const std::int64_t left = std::clamp<std::int64_t>(x, area.left(), area.right() + 1 - width);
    const std::int64_t top = std::clamp<std::int64_t>(y, area.top(), area.bottom() + 1 - height);
    return QRect(static_cast<int>(left), static_cast<int>(top), static_cast<int>(width),
                 static_cast<int>(height));
}

bool InPlacementRange(int value) {
    // As an unsigned difference, so zero and negative values fail along with the large ones.
    return static_cast<unsigned>(value) - kPlacementMin <=
           static_cast<unsigned>(kPlacementMax - kPlacementMin);
}

}  // namespace

CMainFrame::CMainFrame(IProfile& profile, QWidget* parent)
    : QMainWindow(parent), m_profile(profile) {
    tonwerk::res::InitResources();
    setObjectName("MainFrame");
    setWindowIcon(QIcon(QString::fromLatin1(tonwerk::res::kAppIcon)));
    RestorePlacement();

    m_doc = new CTonwerkDoc(profile, this);
    m_view = new CTonwerkView(m_doc, this);
    m_doc->SetView(m_view);
    m_scroll = new QScrollArea(this);
    m_scroll->setObjectName("ViewScrollArea");
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(true);
    m_scroll->setWidget(m_view);
    setCentralWidget(m_scroll);

    CreateActions();
    CreateToolBar();
    CreateStatusBar();
    CreateCopyPractice();
    CreateMenus();
    const std::string state = m_profile.GetString(kBarStateSection, kBarStateEntry, "");
    if (!state.empty()) {
        restoreState(QByteArray::fromBase64(QByteArray::fromStdString(state)));
    }
    Action(kViewStatusBar)->setChecked(m_profile.GetInt(kBarStateSection, kStatusBarEntry, 1) != 0);
    m_copyPanel->RestoreOpen();
    ResetProgress();

    connect(m_doc, &CTonwerkDoc::TitleChanged, this,
            [this](const QString& title) { setWindowTitle(FrameTitle(title)); });
    setWindowTitle(FrameTitle(QString()));
    setAcceptDrops(true);

    m_view->OnInitialUpdate();
}

CMainFrame::~CMainFrame() = default;

QString CMainFrame::FrameTitle(const QString& documentTitle) {
    return (documentTitle.isEmpty() ? tr("Untitled") : documentTitle) + tr(" - Tonwerk");
}

void CMainFrame::RestorePlacement() {
    const int x = m_profile.GetInt(kWindowSettings, "TopLeftX", kDefaultX);
    const int y = m_profile.GetInt(kWindowSettings, "TopLeftY", kDefaultY);
    const int w = m_profile.GetInt(kWindowSettings, "SizeX", kDefaultWidth);
    const int h = m_profile.GetInt(kWindowSettings, "SizeY", kDefaultHeight);
    const QRect placement = OnNearestScreen(x, y, w, h);
    move(placement.topLeft());
    resize(placement.size());
    m_rectWindow = placement;
}

QAction* CMainFrame::AddAction(int command, const QString& text, const QString& prompt,
                               const char* icon) {
    auto* action = new QAction(text, this);
    action->setObjectName(QStringLiteral("action%1").arg(command));
    action->setData(command);
    // A prompt is "status text\ntooltip"; without a line break all of it is the status text.
    const qsizetype newline = prompt.indexOf(QLatin1Char('\n'));
    action->setStatusTip(newline < 0 ? prompt : prompt.left(newline));
    if (newline >= 0) {
        action->setToolTip(prompt.mid(newline + 1));
    }
    action->setProperty("hasToolTip", newline >= 0);
    if (icon) {
        action->setIcon(QIcon(QString::fromLatin1(icon)));
    }
    m_actions.insert(command, action);
    return action;
}

void CMainFrame::CreateActions() {
    namespace res = tonwerk::res;
    AddAction(kFileNew, tr("&New\tCtrl+N"), tr("Create a new document\nNew"), res::kFileNew);
    AddAction(kFileOpen, tr("&Open...\tCtrl+O"), tr("Open an existing document\nOpen"),
              res::kFileOpen);
    AddAction(kFileSave, tr("&Save\tCtrl+S"), tr("Save the active document\nSave"), res::kFileSave);
    AddAction(kFileSaveAs, tr("Save &As..."),
              tr("Save the active document with a new name\nSave As"));
    AddAction(kGenerateFile, tr("&Generate File"), QString(), res::kGenerateFile);
    AddAction(kAppExit, tr("E&xit"), tr("Quit the application; prompts to save documents\nExit"));
    AddAction(kEditUndo, tr("&Undo\tCtrl+Z"), tr("Undo the last action\nUndo"), res::kEditUndo);
    AddAction(kEditCut, tr("Cu&t\tCtrl+X"),
              tr("Cut the selection and put it on the Clipboard\nCut"), res::kEditCut);
    AddAction(kEditCopy, tr("&Copy\tCtrl+C"),
              tr("Copy the selection and put it on the Clipboard\nCopy"), res::kEditCopy);
    AddAction(kEditPaste, tr("&Paste\tCtrl+V"), tr("Insert Clipboard contents\nPaste"),
              res::kEditPaste);
    AddAction(kEditSelectAll, tr("Select A&ll\tCtrl+A"),
              tr("Select the entire document\nSelect All"));
    AddAction(kConfig, tr("C&onfig"), tr("Edit Config"), res::kConfig);
    AddAction(kViewToolbar, tr("&Toolbar"), tr("Show or hide the toolbar\nToggle ToolBar"));
    AddAction(kViewStatusBar, tr("&Status Bar"),
              tr("Show or hide the status bar\nToggle StatusBar"));
    AddAction(kVolumeControl, tr("Volume Control"), tr("Launch the volume control utility"),
              res::kVolumeControl);
    AddAction(kCompletionTime, tr("&Calculate Completion Time\tCtrl+T"),
              tr("Run the estimation tool to get exercise completion time\\Calculate Time to "
                 "Complete"),
              res::kCompletionTime);
    AddAction(kAllOn, tr("All &On"),
              tr("Turn On all characters to be used for random text generation"), res::kAllOn);
    AddAction(kAllOff, tr("All O&ff"),
              tr("Turn Off all characters to be used for random text generation"), res::kAllOff);
    AddAction(kDitCharacters, tr("D&it Characters"), tr("Select all letters that start with a Dit"),
              res::kDitCharacters);
    AddAction(kDahCharacters, tr("D&ah Characters"), tr("Select all letters that start with a Dah"),
              res::kDahCharacters);
    AddAction(kOneTone, tr("&1 Tone Characters"),
              tr("Select all letters that contain a single tone"));
    AddAction(kTwoTones, tr("&2 Tone Characters"), tr("Select all letters that contain two tones"));
    AddAction(kThreeTones, tr("&3 Tone Characters"),
              tr("Select all letters that contain three tones"));
    AddAction(kFourTones, tr("&4 Tone Characters"),
              tr("Select all letters that contain four tones"));
    AddAction(kNumbersToggle, tr("&Numbers Toggle"),
              tr("Toggle numbers to be used for random text generation"), res::kNumbersToggle);
    AddAction(kProSignsToggle, tr("&Pro Signs Toggle"),
              tr("Toggle Pro Signs to be used for random text generation"), res::kProSignsToggle);
    AddAction(kCallSigns, tr("&US Call Signs"), tr("Random US Calls Signs"), res::kCallSigns);
    AddAction(kDoubleSpace, tr("&Double Space"), tr("Double Space when Generating"),
              res::kDoubleSpace);
    AddAction(kReadBack, tr("Read &Back\tCtrl+B"),
              tr("Read the Letters back to me for checking my answers"), res::kReadBack);
    AddAction(kAppAbout, tr("&About Tonwerk..."),
              tr("Display program information, version number and copyright\nAbout"), res::kAbout);

    const std::pair<int, QKeySequence> shortcuts[] = {
        {kFileNew, QKeySequence(tr("Ctrl+N"))},        {kFileOpen, QKeySequence(tr("Ctrl+O"))},
        {kFileSave, QKeySequence(tr("Ctrl+S"))},       {kEditUndo, QKeySequence(tr("Ctrl+Z"))},
        {kEditCut, QKeySequence(tr("Ctrl+X"))},        {kEditCopy, QKeySequence(tr("Ctrl+C"))},
        {kEditPaste, QKeySequence(tr("Ctrl+V"))},      {kEditSelectAll, QKeySequence(tr("Ctrl+A"))},
        {kCompletionTime, QKeySequence(tr("Ctrl+T"))}, {kReadBack, QKeySequence(tr("Ctrl+B"))}};
    for (const auto& [command, keys] : shortcuts) {
        m_actions.value(command)->setShortcut(keys);
    }

    connect(Action(kFileNew), &QAction::triggered, m_doc, &CTonwerkDoc::OnFileNew);
    connect(Action(kFileOpen), &QAction::triggered, m_doc, &CTonwerkDoc::OnFileOpen);
    connect(Action(kFileSave), &QAction::triggered, m_doc, &CTonwerkDoc::OnFileSave);
    connect(Action(kFileSaveAs), &QAction::triggered, m_doc, &CTonwerkDoc::OnFileSaveAs);
    connect(Action(kConfig), &QAction::triggered, m_doc, &CTonwerkDoc::OnConfig);
    connect(Action(kAppExit), &QAction::triggered, this, &QWidget::close);
    connect(Action(kAppAbout), &QAction::triggered, this, &CMainFrame::OnAbout);
    connect(Action(kVolumeControl), &QAction::triggered, m_view, &CTonwerkView::OnVolumeControl);
    connect(Action(kCompletionTime), &QAction::triggered, m_view,
            &CTonwerkView::OnCalculateCompletionTime);
    for (const int command : {kEditUndo, kEditCut, kEditCopy, kEditPaste, kEditSelectAll}) {
        connect(Action(command), &QAction::triggered, m_view,
                [this, command] { m_view->OnEditCommand(command); });
    }
    Action(kViewToolbar)->setCheckable(true);
    Action(kViewStatusBar)->setCheckable(true);
    Action(kViewStatusBar)->setChecked(true);
    connect(Action(kViewStatusBar), &QAction::toggled, this, [this](bool on) {
        statusBar()->setVisible(on);
        m_profile.WriteInt(kBarStateSection, kStatusBarEntry, on ? 1 : 0);
    });

    const std::pair<int, void (CTonwerkView::*)()> viewCommands[] = {
        {kGenerateFile, &CTonwerkView::OnGenerateFile},
        {kReadBack, &CTonwerkView::OnReadBack},
        {kAllOn, &CTonwerkView::OnAllOn},
        {kAllOff, &CTonwerkView::OnAllOff},
        {kDitCharacters, &CTonwerkView::OnDitCharacters},
        {kDahCharacters, &CTonwerkView::OnDahCharacters},
        {kNumbersToggle, &CTonwerkView::OnNumbersToggle},
        {kProSignsToggle, &CTonwerkView::OnProSignsToggle},
        {kCallSigns, &CTonwerkView::OnCallSigns},
        {kDoubleSpace, &CTonwerkView::OnDoubleSpace}};
    for (const auto& [command, handler] : viewCommands) {
        connect(Action(command), &QAction::triggered, m_view, handler);
    }
    const int toneCommands[] = {kOneTone, kTwoTones, kThreeTones, kFourTones};
    for (int tones = 1; tones <= 4; ++tones) {
        connect(Action(toneCommands[tones - 1]), &QAction::triggered, m_view,
                [this, tones] { m_view->OnToneCharacters(tones); });
    }
    for (const int command : {kNumbersToggle, kProSignsToggle, kDoubleSpace}) {
        Action(command)->setCheckable(true);
    }
}

void CMainFrame::CreateMenus() {
    QMenuBar* bar = menuBar();
    QMenu* file = bar->addMenu(tr("&File"));
    file->addActions({Action(kFileNew), Action(kFileOpen), Action(kFileSave), Action(kFileSaveAs)});
    file->addSeparator();
    file->addAction(Action(kGenerateFile));
    file->addSeparator();
    file->addAction(Action(kAppExit));
    QMenu* edit = bar->addMenu(tr("&Edit"));
    edit->addAction(Action(kEditUndo));
    edit->addSeparator();
    edit->addActions(
        {Action(kEditCut), Action(kEditCopy), Action(kEditPaste), Action(kEditSelectAll)});
    edit->addSeparator();
    edit->addAction(Action(kConfig));
    QMenu* view = bar->addMenu(tr("&View"));
    view->addActions({Action(kViewToolbar), Action(kViewStatusBar)});
    view->addSeparator();
    view->addActions({Action(kVolumeControl), Action(kCompletionTime)});
    view->addSeparator();
    view->addActions({m_copyPanel->toggleViewAction(), Action(kViewProgress)});
    QMenu* random = bar->addMenu(tr("&Random"));
    random->addActions({Action(kAllOn), Action(kAllOff)});
    random->addSeparator();
    random->addActions({Action(kDitCharacters), Action(kDahCharacters)});
    random->addSeparator();
    random->addActions(
        {Action(kOneTone), Action(kTwoTones), Action(kThreeTones), Action(kFourTones)});
    random->addSeparator();
    random->addActions({Action(kNumbersToggle), Action(kProSignsToggle), Action(kDoubleSpace)});
    random->addSeparator();
    random->addAction(Action(kCallSigns));
    random->addSeparator();
    random->addAction(Action(kKochLesson));
    QMenu* recheck = bar->addMenu(tr("R&echeck"));
    recheck->addAction(Action(kReadBack));
    recheck->addAction(m_copyPanel->CheckAction());
    QMenu* help = bar->addMenu(tr("&Help"));
    help->addAction(Action(kAppAbout));
}

void CMainFrame::CreateToolBar() {
    QToolBar* toolBar = addToolBar(tr("Standard"));
    toolBar->setObjectName("ToolBar");
    toolBar->setIconSize(QSize(16, 16));
    toolBar->addActions({Action(kFileNew), Action(kFileOpen), Action(kFileSave)});
    toolBar->addSeparator();
    toolBar->addActions({Action(kEditCut), Action(kEditCopy), Action(kEditPaste)});
    toolBar->addSeparator();
    toolBar->addActions({Action(kConfig), Action(kVolumeControl), Action(kCompletionTime)});
    toolBar->addSeparator();
    toolBar->addActions({Action(kAllOn), Action(kAllOff), Action(kDitCharacters),
                         Action(kDahCharacters), Action(kNumbersToggle), Action(kProSignsToggle),
                         Action(kCallSigns), Action(kDoubleSpace)});
    toolBar->addSeparator();
    toolBar->addActions({Action(kReadBack), Action(kGenerateFile)});
    toolBar->addSeparator();
    toolBar->addAction(Action(kAppAbout));
    auto* noToolTip = new CNoToolTip(toolBar);
    for (QAction* action : toolBar->actions()) {
        if (!action->isSeparator() && !action->property("hasToolTip").toBool()) {
            toolBar->widgetForAction(action)->installEventFilter(noToolTip);
        }
    }
    Action(kViewToolbar)->setChecked(true);
    connect(Action(kViewToolbar), &QAction::toggled, toolBar, &QToolBar::setVisible);
    connect(toolBar, &QToolBar::visibilityChanged, Action(kViewToolbar), &QAction::setChecked);
}

void CMainFrame::CreateStatusBar() {
    QStatusBar* bar = statusBar();
    bar->setObjectName("StatusBar");
    m_messagePane = new QLabel(tr("Ready"), bar);
    m_messagePane->setObjectName("paneMessage");
    bar->addWidget(m_messagePane, 1);
    m_progressPane = new QWidget(bar);
    m_progressPane->setObjectName("paneProgress");
    auto* paneLayout = new QHBoxLayout(m_progressPane);
    paneLayout->setContentsMargins(0, 0, 0, 0);
    m_progressPane->setFixedWidth(
        bar->fontMetrics().horizontalAdvance(QString(kProgressPaneBlanks, QLatin1Char(' '))));
    bar->addPermanentWidget(m_progressPane);
    new CLockIndicators(bar);
}

void CMainFrame::SetMessageText(const QString& text) {
    m_messagePane->setText(text);
}

CStatusProgress* CMainFrame::ResetProgress() {
    RemoveProgress();
    m_pProgress = new CStatusProgress(m_progressPane);
    m_pProgress->setObjectName("progress");
    m_progressPane->layout()->addWidget(m_pProgress);
    m_pProgress->show();
    return m_pProgress;
}

void CMainFrame::RemoveProgress() {
    delete m_pProgress;
    m_pProgress = nullptr;
}

void CMainFrame::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    m_rectWindow = WindowRectNow();
}

void CMainFrame::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    m_rectWindow = WindowRectNow();
}

QRect CMainFrame::WindowRectNow() const {
    // The outer corner is where move() puts the window; the size is what resize() takes, so a
    // stored placement comes back exactly, whatever the window manager adds around the frame.
    return QRect(frameGeometry().topLeft(), size());
}

void CMainFrame::SavePlacement() {
    if (isVisible()) {
        m_rectWindow = WindowRectNow();
    }
    const QByteArray state = saveState().toBase64();
    m_profile.WriteString(kBarStateSection, kBarStateEntry, state.toStdString());
    const int x = m_rectWindow.left();
    const int y = m_rectWindow.top();
    const int w = m_rectWindow.width();
    const int h = m_rectWindow.height();
    // A maximised frame's rectangle is the screen's, not the user's placement.
    if (isMaximized() || !InPlacementRange(x) || !InPlacementRange(y) || !InPlacementRange(w) ||
        !InPlacementRange(h)) {
        return;
    }
    m_profile.WriteInt(kWindowSettings, "TopLeftX", x);
    m_profile.WriteInt(kWindowSettings, "TopLeftY", y);
    m_profile.WriteInt(kWindowSettings, "SizeX", w);
    m_profile.WriteInt(kWindowSettings, "SizeY", h);
}

void CMainFrame::closeEvent(QCloseEvent* event) {
    SavePlacement();
    if (!m_doc->SaveModified()) {
        event->ignore();
        return;
    }
    event->accept();
}

void CMainFrame::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    }
}

void CMainFrame::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.constFirst().isLocalFile()) {
        return;
    }
    event->acceptProposedAction();
    if (m_doc->SaveModified()) {
        m_doc->OpenFile(urls.constFirst().toLocalFile());
    }
}

void CMainFrame::OnAbout() {
    CAboutDlg dialog(this);
    if (!CModalSeam::IsScripted()) {
        dialog.exec();
    }
}
