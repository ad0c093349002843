// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CTonwerkView.h"

#include <QApplication>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QScrollBar>
#include <QSlider>
#include <QStandardPaths>
#include <QTextCursor>
#include <QTextEdit>

#include "app/CAppMessageEvent.h"
#include "app/CDataExchange.h"
#include "app/CMainFrame.h"
#include "app/CModalSeam.h"
#include "app/CTonwerkDoc.h"
#include "audio/CWaveIn.h"
#include "audio/CWaveOut.h"
#include "audio/MidiAudio.h"
#include "model/CMorseAlphabet.h"
#include "model/CodePatterns.h"
#include "model/CompletionEstimate.h"
#include "res/TonwerkResources.h"
#include "widgets/CAnchorLayout.h"
#include "widgets/CClockDisplay.h"
#include "widgets/CHtmlToolTip.h"
#include "widgets/CImageButton.h"
#include "widgets/CKeyLamp.h"
#include "widgets/CSegmentDisplay.h"
#include "widgets/CStatusProgress.h"

namespace {

constexpr int kFirstLetterId = 1011;
constexpr int kFirstDigitId = 1078;  // "0"; "1" to "9" follow
constexpr int kFirstSignId = 1056;
constexpr CDataExchange::Range kWordCountRange{1, 10000};
constexpr CDataExchange::Range kFarnsworthRange{0, 99};
/// The form's first Word Count and Word Size, also taken when the profile holds values the
/// fields would refuse.
constexpr int kFirstWordCount = 20;
constexpr int kFirstWordSize = 5;
const QColor kCodeHighlight(199, 216, 255);

// Design rectangles of the form at its base size, and the rows of selection buttons.
constexpr int kButtonPitch = 32;
constexpr int kButtonWidth = 30;
constexpr int kButtonHeight = 26;
constexpr int kDigitRowY = 232;
constexpr int kSignRowY = 262;
constexpr int kLetterRowY = 292;

int RowX(int count, int index) {
    const int rowWidth = count * kButtonPitch - (kButtonPitch - kButtonWidth);
    return (CTonwerkView::kFormWidth - rowWidth) / 2 + index * kButtonPitch;
}

CTonwerkView::AudioHooks& DefaultHooks() {
    static CTonwerkView::AudioHooks hooks;
    return hooks;
}

QString Latin1(const std::string& text) {
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

QString SignCaption(char c) {
    if (c == '&') {
        return QStringLiteral("&&");
    }
    if (c == '-') {
        return QStringLiteral("--");
    }
    return QString(QLatin1Char(c));
}

}  // namespace

void CTonwerkView::SetDefaultAudioHooks(AudioHooks hooks) {
    DefaultHooks() = std::move(hooks);
}

CTonwerkView::CTonwerkView(CTonwerkDoc* doc, CMainFrame* frame, QWidget* parent)
    : QWidget(parent), m_doc(doc), m_frame(frame), m_notifyTarget(this), m_audio(DefaultHooks()) {
    setObjectName("TonwerkView");
    CreateControls();
}

CTonwerkView::~CTonwerkView() {
    // Before any member goes: the worker steps the session's progress and posts to this view.
    m_soundGen.Quit();
}

QWidget* CTonwerkView::Register(QWidget* widget, int id, const char* name) {
    widget->setProperty("controlId", id);
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

void CTonwerkView::CreateControls() {
    // Created in the form's tab order, which Qt's default focus chain follows.
    m_current = new CSegmentDisplay(this);
    Register(m_current, 1006, "displayCurrent");
    m_current->setFrameShape(QFrame::Panel);
    m_current->setFrameShadow(QFrame::Sunken);
    m_keyLamp = new CKeyLamp(this);
    Register(m_keyLamp, 1000, "keyLamp");
    m_wordRateLabel = new QLabel(tr("Words Per Minute: 5"), this);
    Register(m_wordRateLabel, 1004, "labelWordRate");
    auto* farnsworthLabel = new QLabel(tr("Farnsworth Factor:"), this);
    Register(farnsworthLabel, 1049, "labelFarnsworth");
    m_farnsworthEdit = new QLineEdit(this);
    Register(m_farnsworthEdit, 1050, "editFarnsworth");
    farnsworthLabel->setBuddy(m_farnsworthEdit);
    m_speechCheck = new QCheckBox(tr("Speech"), this);
    Register(m_speechCheck, 1052, "checkSpeech");
    m_muteCheck = new QCheckBox(tr("Mute"), this);
    Register(m_muteCheck, 1051, "checkMute");
    m_wordRateSlider = new QSlider(Qt::Horizontal, this);
    Register(m_wordRateSlider, 1003, "sliderWordRate");
    m_randomGroup = new QGroupBox(tr("Random Word Properties"), this);
    Register(m_randomGroup, 1045, "groupRandom");
    auto* countLabel = new QLabel(tr("Word Count:"), this);
    Register(countLabel, 1042, "labelWordCount");
    m_wordCountEdit = new QLineEdit(this);
    Register(m_wordCountEdit, 1041, "editWordCount");
    countLabel->setBuddy(m_wordCountEdit);
    auto* sizeLabel = new QLabel(tr("Word Size:"), this);
    Register(sizeLabel, 1044, "labelWordSize");
    m_wordSizeEdit = new QLineEdit(this);
    Register(m_wordSizeEdit, 1043, "editWordSize");
    sizeLabel->setBuddy(m_wordSizeEdit);
    m_next = new CSegmentDisplay(this);
    Register(m_next, 1010, "displayNext");
    m_previous = new CSegmentDisplay(this);
    Register(m_previous, 1037, "displayPrevious");
    for (CSegmentDisplay* display : {m_next, m_previous}) {
        display->setFrameShape(QFrame::Panel);
        display->setFrameShadow(QFrame::Sunken);
    }
    m_clock = new CClockDisplay(this);
    Register(m_clock, 1040, "clock");
    m_clock->SetText(tr("Static Timer"));
    m_listen = new CImageButton(tr("&Listen"), this);
    Register(m_listen, 1005, "buttonListen");
    m_record = new CImageButton(this);
    Register(m_record, 1046, "buttonRecord");
    m_record->setAccessibleName(tr("Record Session"));
    m_record->setCheckable(true);
    m_random = new CImageButton(tr("&Random"), this);
    Register(m_random, 1009, "buttonRandom");
    m_volumeSlider = new QSlider(Qt::Horizontal, this);
    Register(m_volumeSlider, 1038, "sliderVolume");

    auto makeSelection = [this](int index, int id, const QString& caption, char c) {
        auto* button = new QPushButton(caption, this);
        button->setCheckable(true);
        button->setFocusPolicy(Qt::TabFocus);
        const QByteArray name = QByteArray("checkChar_") + QByteArray::number(id);
        Register(button, id, name.constData());
        button->setProperty("selectionChar", QString(QLatin1Char(c)));
        m_selection[static_cast<size_t>(index)] = button;
    };
    for (int digit = 1; digit <= kDigitCount; ++digit) {
        const int d = digit % kDigitCount;  // 1 to 9, then 0
        makeSelection(kLetterCount + d, kFirstDigitId + d, QString::number(d),
                      static_cast<char>('0' + d));
    }
    m_pitchSlider = new QSlider(Qt::Horizontal, this);
    Register(m_pitchSlider, 1039, "sliderPitch");
    const auto signs = CMorseAlphabet::ProSigns();
    for (int i = 0; i < kSignCount; ++i) {
        const char c = signs[static_cast<size_t>(i)].character;
        makeSelection(kLetterCount + kDigitCount + i, kFirstSignId + i, SignCaption(c), c);
    }
    for (int i = 0; i < kLetterCount; ++i) {
        const char c = static_cast<char>('A' + i);
        makeSelection(i, kFirstLetterId + i, QString(QLatin1Char(c)), c);
    }

    m_practiceEdit = new QTextEdit(this);
    Register(m_practiceEdit, 1002, "editPracticeText");
    m_textToMorse = new CImageButton(tr("&Text to Morse Code"), this);
    Register(m_textToMorse, 1007, "buttonTextToMorse");
    m_morseToText = new CImageButton(tr("&Morse Code to Text"), this);
    Register(m_morseToText, 1008, "buttonMorseToText");
    m_codeEdit = new QTextEdit(this);
    Register(m_codeEdit, 1001, "editCodeText");
    m_volumeLabel = new QLabel(this);
    Register(m_volumeLabel, 1088, "labelVolume");
    m_pitchLabel = new QLabel(this);
    Register(m_pitchLabel, 1089, "labelPitch");

    for (QTextEdit* edit : {m_practiceEdit, m_codeEdit}) {
        edit->setAcceptRichText(false);
        edit->setTabChangesFocus(true);
        // The view shows its own menu over the two text boxes and none anywhere else.
        edit->setContextMenuPolicy(Qt::NoContextMenu);
    }
    // The numeric fields take digits only; a value pasted with anything else is not taken.
    auto* digitsOnly =
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), this);
    for (QLineEdit* edit : {m_farnsworthEdit, m_wordCountEdit, m_wordSizeEdit}) {
        edit->setContextMenuPolicy(Qt::NoContextMenu);
        edit->setAlignment(Qt::AlignRight);
        edit->setValidator(digitsOnly);
    }
    m_volumeLabel->setAlignment(Qt::AlignCenter);
    m_pitchLabel->setAlignment(Qt::AlignCenter);
    m_codeEdit->setFont(QFont(QStringLiteral("Monospace")));

    m_contextMenu = new QMenu(this);
    const std::pair<const char*, int> items[] = {{"&Undo\tCtrl+Z", kEditUndo},
                                                 {"Cu&t\tCtrl+X", kEditCut},
                                                 {"&Copy\tCtrl+C", kEditCopy},
                                                 {"&Paste\tCtrl+V", kEditPaste},
                                                 {"Select A&ll\tCtrl+A", kEditSelectAll}};
    for (const auto& [text, command] : items) {
        QAction* action = m_contextMenu->addAction(tr(text));
        action->setData(command);
        const int id = command;
        connect(action, &QAction::triggered, this, [this, id] { OnEditCommand(id); });
    }

    connect(m_textToMorse, &QPushButton::clicked, this, &CTonwerkView::OnTextToMorse);
    connect(m_morseToText, &QPushButton::clicked, this, &CTonwerkView::OnMorseToText);
    connect(m_muteCheck, &QCheckBox::clicked, this, &CTonwerkView::OnMute);
    connect(m_speechCheck, &QCheckBox::clicked, this, &CTonwerkView::OnSpeech);
    connect(m_keyLamp, &CKeyLamp::clicked, this, &CTonwerkView::OnKeyLamp);
    connect(m_keyLamp, &CKeyLamp::enterPressed, this, &CTonwerkView::OnStraightKeyDown);
    // Held keys repeat as release and press pairs here; only the real release ends the hold.
    connect(m_keyLamp, &CKeyLamp::enterReleased, this, [this](bool autoRepeat) {
        if (!autoRepeat) {
            OnStraightKeyUp();
        }
    });
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { OnFocusChanged(now); });
    connect(m_clock, &CSegmentDisplay::clicked, this, &CTonwerkView::OnCalculateCompletionTime);
    connect(m_wordRateSlider, &QSlider::valueChanged, this, &CTonwerkView::OnWordRateMoved);
    connect(m_pitchSlider, &QSlider::valueChanged, this, &CTonwerkView::OnPitchMoved);
    connect(m_volumeSlider, &QSlider::valueChanged, this, &CTonwerkView::OnVolumeMoved);
    for (QPushButton* button : m_selection) {
        const char c = button->property("selectionChar").toString().at(0).toLatin1();
        connect(button, &QPushButton::toggled, this,
                [this, c](bool checked) { m_doc->Settings().SetLetter(c, checked ? 1 : 0); });
    }
    connect(m_practiceEdit, &QTextEdit::textChanged, this, [this] {
        m_practiceText = m_practiceEdit->toPlainText();
        if (!m_loadingTexts) {
            m_doc->SetModifiedFlag(true);
        }
    });
    connect(m_codeEdit, &QTextEdit::textChanged, this, [this] {
        m_codeText = m_codeEdit->toPlainText();
        if (!m_loadingTexts) {
            m_doc->SetModifiedFlag(true);
        }
    });

    connect(m_listen, &QAbstractButton::clicked, this, &CTonwerkView::OnListen);
    connect(m_record, &QAbstractButton::clicked, this, &CTonwerkView::OnRecordSession);
    connect(m_random, &QAbstractButton::clicked, this, &CTonwerkView::OnRandom);
}

QWidget* CTonwerkView::Control(int id) const {
    for (QWidget* child : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (child->property("controlId").toInt() == id) {
            return child;
        }
    }
    return nullptr;
}

void CTonwerkView::RegisterLayout() {
    m_layout = new CAnchorLayout(this);
    m_layout->SetBaseSize(QSize(kFormWidth, kFormHeight));
    m_layout->setContentsMargins(0, 0, 0, 0);
    const QPoint fixed(0, 0);
    const QPoint right(100, 0);
    const QPoint half(50, 0);
    auto add = [this](QWidget* widget, QRect rect, QPoint topLeft, QPoint bottomRight) {
        m_layout->AddWidget(widget, rect, topLeft, bottomRight);
    };
    add(m_previous, QRect(8, 8, 56, 64), fixed, fixed);
    add(m_current, QRect(70, 8, 96, 64), fixed, fixed);
    add(m_next, QRect(172, 8, 56, 64), fixed, fixed);
    add(m_clock, QRect(8, 78, 220, 32), fixed, fixed);
    add(m_keyLamp, QRect(8, 114, 220, 60), fixed, fixed);
    add(m_wordRateSlider, QRect(238, 30, 434, 26), fixed, right);
    add(m_randomGroup, QRect(238, 64, 614, 58), fixed, right);
    add(Control(1049), QRect(684, 10, 112, 22), right, right);
    add(m_farnsworthEdit, QRect(798, 8, 54, 24), right, right);
    add(m_speechCheck, QRect(684, 36, 80, 22), right, right);
    add(m_muteCheck, QRect(772, 36, 80, 22), right, right);
    add(Control(1042), QRect(252, 90, 140, 24), fixed, half);
    add(m_listen, QRect(238, 130, 246, 44), fixed, half);
    add(m_volumeSlider, QRect(8, 180, 414, 26), fixed, half);
    add(m_volumeLabel, QRect(8, 206, 414, 20), fixed, half);
    add(m_wordCountEdit, QRect(396, 88, 70, 26), half, half);
    add(Control(1044), QRect(500, 90, 80, 24), half, half);
    add(m_wordSizeEdit, QRect(584, 88, 70, 26), half, half);
    add(m_record, QRect(492, 130, 84, 44), half, half);
    add(m_random, QRect(584, 130, 268, 44), half, right);
    add(m_pitchSlider, QRect(438, 180, 414, 26), half, right);
    add(m_pitchLabel, QRect(438, 206, 414, 20), half, right);
    for (int i = 0; i < kLetterCount; ++i) {
        const QPoint topLeft = i == 0 ? fixed : half;
        const QPoint bottomRight = i == kLetterCount - 1 ? right : half;
        add(m_selection[static_cast<size_t>(i)],
            QRect(RowX(kLetterCount, i), kLetterRowY, kButtonWidth, kButtonHeight), topLeft,
            bottomRight);
    }
    for (int i = 0; i < kDigitCount; ++i) {
        const int d = (i + 1) % kDigitCount;  // laid out 1 to 9, then 0
        add(m_selection[static_cast<size_t>(kLetterCount + d)],
            QRect(RowX(kDigitCount, i), kDigitRowY, kButtonWidth, kButtonHeight), half, half);
    }
    for (int i = 0; i < kSignCount; ++i) {
        add(m_selection[static_cast<size_t>(kLetterCount + kDigitCount + i)],
            QRect(RowX(kSignCount, i), kSignRowY, kButtonWidth, kButtonHeight), half, half);
    }
    add(m_practiceEdit, QRect(8, 326, 844, 106), fixed, QPoint(100, 50));
    add(m_textToMorse, QRect(8, 438, 418, 30), QPoint(0, 50), QPoint(50, 50));
    add(m_morseToText, QRect(434, 438, 418, 30), QPoint(50, 50), QPoint(100, 50));
    add(m_codeEdit, QRect(8, 474, 844, 78), QPoint(0, 50), QPoint(100, 100));
    // The words-per-minute label keeps its place at any size.
    m_wordRateLabel->setGeometry(238, 8, 300, 20);
}

void CTonwerkView::OnInitialUpdate() {
    m_loadingTexts = true;
    // The form starts from its members' initial values, as every form's first update does.
    UpdateData(false);
    QFont displayFont = font();
    displayFont.setBold(true);
    displayFont.setItalic(true);
    displayFont.setPointSize(12);
    displayFont.setStyleHint(QFont::SansSerif);
    m_current->setFont(displayFont);

    RegisterLayout();

    using namespace tonwerk::res;
    m_textToMorse->SetImage(QString::fromLatin1(kButtonTextToMorse), QSize(48, 16));
    m_morseToText->SetImage(QString::fromLatin1(kButtonMorseToText), QSize(48, 16));
    m_listen->SetImage(QString::fromLatin1(kButtonListen), QSize(32, 32));
    m_record->SetImage(QString::fromLatin1(kButtonRecordOff), QSize(32, 32));
    m_random->SetImage(QString::fromLatin1(kButtonRandom), QSize(32, 32));

    {
        const QSignalBlocker blocker(m_wordRateSlider);
        m_wordRateSlider->setRange(5, 99);
        m_wordRate = m_doc->Settings().GetWordRate();
        m_wordRateSlider->setValue(m_wordRate);
    }
    m_strWordRate = tr("Set Words/Minute: %1").arg(m_wordRateSlider->value());
    m_wordRateLabel->setText(m_strWordRate);

    m_clock->SetColours(QColor(0, 0, 255), QColor(Qt::white));
    m_clock->SetStyleFlags(CSegmentDisplay::kStyleGradient);
    m_clock->SetText(QStringLiteral("00:00:00"));
    m_current->SetColours(QColor(152, 180, 253), QColor(142, 168, 243), QColor(Qt::black));
    m_current->SetStyleFlags(CSegmentDisplay::kStyleGradient);
    for (CSegmentDisplay* display : {m_next, m_previous}) {
        display->SetColours(QColor(0, 255, 0), QColor(Qt::black));
        display->SetStyleFlags(CSegmentDisplay::kStyleSegments);
    }

    CProfileSettings& settings = m_doc->Settings();
    // Shown at once, so the first conversion below takes the stored values back, not the
    // form's first ones; values the fields would refuse fall back to those quietly.
    m_wordSize = settings.GetRandomWordSize();
    m_wordCount = settings.GetRandomWordCount();
    if (m_wordCount < kWordCountRange.min || m_wordCount > kWordCountRange.max) {
        m_wordCount = kFirstWordCount;
    }
    if (m_wordSize < 0) {
        m_wordSize = kFirstWordSize;
    }
    CDataExchange::Push(m_wordCountEdit, m_wordCount);
    CDataExchange::Push(m_wordSizeEdit, m_wordSize);

    m_keyLamp->SetKeyDown(false);
    SetChecksFromDocument();
    m_numbersToggle = settings.GetNumTog();
    m_proSignsToggle = settings.GetRanProSnTog();
    m_doubleSpace = settings.GetDblSpace();
    UpdateRandomMenuChecks();

    OnTextToMorse();

    m_mute = settings.GetMute();
    m_speech = settings.GetSpeech();
    m_pauseDit = settings.GetPauseDit();
    m_pauseDah = settings.GetPauseDah();
    m_pauseChar = settings.GetPauseChar();
    m_pauseWord = settings.GetPauseWord();
    m_pitch = settings.GetToneMHz();
    m_soundEnabled = m_mute == 0;
    m_doc->SetView(this);
    m_keyLampEnabled = settings.GetAntimateKey();
    m_keyLamp->show();

    CheckMidiOutputs();

    CreateToolTips();

    {
        const QSignalBlocker pitchBlocker(m_pitchSlider);
        const QSignalBlocker volumeBlocker(m_volumeSlider);
        m_pitchSlider->setRange(100, 1800);
        m_pitchSlider->setValue(settings.GetToneMHz());
        m_volumeSlider->setRange(0, kVolumeMax);
        m_volumeSlider->setValue(m_audio.readVolume ? m_audio.readVolume() : kVolumeMax);
    }
    if (!m_audio.readVolume) {
        m_volumeAdapter = std::make_unique<CQtVolumeSlider>(m_volumeSlider);
        m_mixer.AttachSlider(m_volumeAdapter.get());
        m_mixer.Initialize();
    }
    m_strPitch = tr("Pitch: %1").arg(m_pitchSlider->value());
    m_strVolume = FormatVolume(m_volumeSlider->value());

    m_farnsworth = settings.GetFarnsworthFactor();
    UpdateData(false);
    m_doc->SetModifiedFlag(false);
    m_loadingTexts = false;
}

void CTonwerkView::CheckMidiOutputs() {
    m_midiDevices =
        m_audio.midiOutputCount ? m_audio.midiOutputCount() : static_cast<int>(MidiOutGetNumDevs());
    if (m_midiDevices == 0) {
        CModalSeam::Message(this, tr("There are no MIDI output devices."), QMessageBox::Ok,
                            QMessageBox::Information);
        return;
    }
    if (m_audio.midiOutputCount) {
        return;  // a stand-in count has no devices to ask
    }
    constexpr int kMaxQueried = 8;
    constexpr unsigned kErrorTextLength = 80;
    for (int device = 0; device < std::min(m_midiDevices, kMaxQueried); ++device) {
        MidiOutCaps caps;
        const MmResult result =
            MidiOutGetDevCaps(static_cast<unsigned>(device), &caps, sizeof(caps));
        if (result != kMmNoError) {
            char text[kErrorTextLength] = {};
            MidiOutGetErrorText(result, text, kErrorTextLength);
            CModalSeam::Message(this, QString::fromLocal8Bit(text));
        }
    }
}

void CTonwerkView::SetChecksFromDocument() {
    const std::string_view characters = CMorseAlphabet::SelectableCharacters();
    for (size_t i = 0; i < m_selection.size(); ++i) {
        const QSignalBlocker blocker(m_selection[i]);
        m_selection[i]->setChecked(m_doc->Settings().GetLetter(characters[i]) != 0);
    }
}

void CTonwerkView::SaveSelection() {
    const std::string_view characters = CMorseAlphabet::SelectableCharacters();
    for (size_t i = 0; i < m_selection.size(); ++i) {
        m_doc->Settings().SetLetter(characters[i], m_selection[i]->isChecked() ? 1 : 0);
    }
}

void CTonwerkView::CreateToolTips() {
    m_toolTip = new CHtmlToolTip(this);
    m_toolTip->SetIcon(QString::fromLatin1(tonwerk::res::kToolTipIcon));
    m_toolTip->AddTool(
        m_random,
        QStringLiteral(
            "<center><h2>Generate Random</h2></center><br><hr color=green><br><h4>Generates random "
            "sequences<br>of characters and groups<br>them into words</h4>"));
    m_toolTip->AddTool(
        m_record,
        QStringLiteral(
            "<center><h2>Record Session</h2></center><br><hr color=green><br><h4>Toggles Session "
            "Recording<br>Press to record next session<br>At the end of the session<br>You'll be "
            "prompted for a file name<br>To save the recorded session to</h4>"));
    m_toolTip->AddTool(
        m_pitchSlider,
        QStringLiteral(
            "<center><h2>Pitch Control</h2></center><br><hr color=green><br><h4>Scroll left to "
            "decrease and<br>right to increase pitch.</h4>"));
    m_toolTip->AddTool(
        m_volumeSlider,
        QStringLiteral(
            "<center><h2>Volume Control</h2></center><br><hr color=green><br><h4>Scroll left to "
            "decrease and<br>right to increase volume.</h4>"));
    for (int i = 0; i < kLetterCount; ++i) {
        const char c = static_cast<char>('A' + i);
        m_toolTip->AddTool(m_selection[static_cast<size_t>(i)],
                           QStringLiteral("<center><h2>The Letter %1</h2></center><br><hr "
                                          "color=green><br><h1> %2 </h1>")
                               .arg(QString(QLatin1Char(c)), Latin1(m_doc->TextToCode({&c, 1}))));
    }
    const auto signs = CMorseAlphabet::ProSigns();
    for (int i = 0; i < kSignCount; ++i) {
        const ProSign& sign = signs[static_cast<size_t>(i)];
        const char c = sign.character;
        const QString pattern = Latin1(m_doc->TextToCode({&c, 1})).trimmed();
        const QString group = Latin1(m_doc->PatternToText(pattern.toLatin1().toStdString(), true));
        m_toolTip->AddTool(m_selection[static_cast<size_t>(kLetterCount + kDigitCount + i)],
                           QStringLiteral("<center><h2>The Pro Sign %1 (%2)</h2></center><br><hr "
                                          "color=green><br><h1> %3 %4 </h1>")
                               .arg(QString(QLatin1Char(c)), group, pattern,
                                    QString::fromLatin1(sign.name.data(),
                                                        static_cast<qsizetype>(sign.name.size()))));
    }
    for (int d = 0; d < kDigitCount; ++d) {
        const char c = static_cast<char>('0' + d);
        m_toolTip->AddTool(m_selection[static_cast<size_t>(kLetterCount + d)],
                           QStringLiteral("<center><h2>The Number %1</h2></center><br><hr "
                                          "color=green><br><h1> %2 </h1>")
                               .arg(QString(QLatin1Char(c)), Latin1(m_doc->TextToCode({&c, 1}))));
    }
    m_toolTip->Activate(true);
}

bool CTonwerkView::UpdateData(bool saveAndValidate) {
    const bool wasLoading = m_loadingTexts;
    if (!saveAndValidate) {
        m_loadingTexts = true;
        m_wordRateLabel->setText(m_strWordRate);
        if (m_practiceEdit->toPlainText() != m_practiceText) {
            m_practiceEdit->setPlainText(m_practiceText);
        }
        if (m_codeEdit->toPlainText() != m_codeText) {
            m_codeEdit->setPlainText(m_codeText);
        }
        m_loadingTexts = wasLoading;
        m_current->SetText(m_currentChar);
        CDataExchange::Push(m_wordCountEdit, m_wordCount);
        CDataExchange::Push(m_wordSizeEdit, m_wordSize);
        m_muteCheck->setChecked(m_mute != 0);
        m_speechCheck->setCheckState(m_speech == 0   ? Qt::Unchecked
                                     : m_speech == 2 ? Qt::PartiallyChecked
                                                     : Qt::Checked);
        m_pitchLabel->setText(m_strPitch);
        m_volumeLabel->setText(m_strVolume);
        CDataExchange::Push(m_farnsworthEdit, m_farnsworth);
        return true;
    }
    m_strWordRate = m_wordRateLabel->text();
    m_practiceText = m_practiceEdit->toPlainText();
    m_codeText = m_codeEdit->toPlainText();
    m_currentChar = m_current->Text();
    if (!CDataExchange::Pull(m_wordCountEdit, m_wordCount, kWordCountRange) ||
        !CDataExchange::Pull(m_wordSizeEdit, m_wordSize)) {
        return false;
    }
    m_mute = m_muteCheck->isChecked() ? 1 : 0;
    m_speech = m_speechCheck->checkState() == Qt::Checked ? 1 : 0;
    m_strPitch = m_pitchLabel->text();
    m_strVolume = m_volumeLabel->text();
    // The factor is stored when a session starts, not at every read of the form.
    return CDataExchange::Pull(m_farnsworthEdit, m_farnsworth, kFarnsworthRange);
}

QByteArray CTonwerkView::KeyedText() const {
    return QByteArray::fromStdString(PlainPracticeText(m_practiceText.toStdString()));
}

QString CTonwerkView::PracticeText() const {
    return m_practiceEdit->toPlainText();
}
QString CTonwerkView::CodeText() const {
    return m_codeEdit->toPlainText();
}

namespace {

/// No word is this long. A text with such a run offers no word boundary to wrap at, and Qt lays
/// out one enormous line in minutes; it is wrapped anywhere instead.
constexpr qsizetype kLongestWord = 200;

QTextOption::WrapMode WrapFor(const QString& text) {
    qsizetype run = 0;
    for (const QChar c : text) {
        run = c.isSpace() ? 0 : run + 1;
        if (run > kLongestWord) {
            return QTextOption::WrapAnywhere;
        }
    }
    return QTextOption::WrapAtWordBoundaryOrAnywhere;
}

void ShowText(QTextEdit* edit, const QString& text) {
    const QTextOption::WrapMode wrap = WrapFor(text);
    if (edit->wordWrapMode() != wrap) {
        edit->clear();  // the old text is not laid out again in the new way
        edit->setWordWrapMode(wrap);
    }
    edit->setPlainText(text);
}

}  // namespace

void CTonwerkView::SetTexts(const QString& practiceText, const QString& codeText) {
    const bool wasLoading = m_loadingTexts;
    m_loadingTexts = true;
    m_practiceText = practiceText;
    m_codeText = codeText;
    ShowText(m_practiceEdit, practiceText);
    ShowText(m_codeEdit, codeText);
    m_loadingTexts = wasLoading;
    OnCalculateCompletionTime();
}

void CTonwerkView::OnTextToMorse() {
    if (!UpdateData(true)) {
        return;
    }
    CStatusProgress* progress = m_frame ? m_frame->ResetProgress() : nullptr;
    const QByteArray text = KeyedText();
    if (progress) {
        progress->SetStep(1);
        progress->SetRange(0, static_cast<int>(text.size()));
        progress->SetBarImage(QString::fromLatin1(tonwerk::res::kBarConvert));
    }
    std::string code;
    code.reserve(static_cast<size_t>(text.size()) * 6);
    for (const char c : text) {
        code += m_doc->TextToCode(std::string_view(&c, 1));
        if (progress) {
            progress->StepIt();
        }
    }
    m_codeText = Latin1(code);
    UpdateData(false);
    RefreshCodeHighlight();
    m_codeEdit->moveCursor(QTextCursor::Start);
    m_codeEdit->horizontalScrollBar()->setValue(0);
    m_codeEdit->verticalScrollBar()->setValue(0);
    m_codeEdit->update();
    if (progress) {
        progress->SetPos(0);
    }
    OnCalculateCompletionTime();
}

void CTonwerkView::RefreshCodeHighlight() {
    const bool wasLoading = m_loadingTexts;
    m_loadingTexts = true;
    QTextCursor cursor(m_codeEdit->document());
    cursor.select(QTextCursor::Document);
    QTextCharFormat format;
    format.setBackground(kCodeHighlight);
    cursor.mergeCharFormat(format);
    m_loadingTexts = wasLoading;
}

void CTonwerkView::OnMorseToText() {
    if (!UpdateData(true)) {
        return;
    }
    QString text;
    for (const QString& piece : m_codeText.split(QLatin1Char(' '))) {
        const QString trimmed = piece.trimmed();
        if (trimmed == QLatin1String("/")) {
            text += QLatin1Char(' ');
        } else if (!trimmed.isEmpty()) {
            text += Latin1(m_doc->PatternToText(trimmed.toLatin1().toStdString(), false));
        }
    }
    m_practiceText = text;
    UpdateData(false);
}

void CTonwerkView::OnMute() {
    m_mute = m_mute ? 0 : 1;
    m_soundEnabled = m_mute == 0;
    UpdateData(false);
    m_doc->Settings().SetMute(m_mute);
}

void CTonwerkView::OnSpeech() {
    if (!UpdateData(true)) {
        m_speech = m_speechCheck->checkState() == Qt::Checked ? 1 : 0;
    }
    m_doc->Settings().SetSpeech(m_speech);
}

void CTonwerkView::OnKeyLamp() {
    m_keyLampEnabled = m_keyLampEnabled ? 0 : 1;
    m_doc->Settings().SetAntimateKey(m_keyLampEnabled);
    if (!m_keyLampEnabled) {
        m_keyLamp->SetKeyDown(false);
    }
}

void CTonwerkView::OnWordRateMoved(int position) {
    m_strWordRate = tr("Set Words/Minute: %1").arg(position);
    m_wordRate = position;
    m_doc->Settings().SetWordRate(position);
    UpdateData(false);
    // The pause values are copied again with every speed change although nothing times by them.
    m_pauseDit = m_doc->Settings().GetPauseDit();
    m_pauseDah = m_doc->Settings().GetPauseDah();
    m_pauseChar = m_doc->Settings().GetPauseChar();
    m_pauseWord = m_doc->Settings().GetPauseWord();
    OnCalculateCompletionTime();
}

void CTonwerkView::OnPitchMoved(int position) {
    m_pitch = position;
    m_doc->Settings().SetToneMHz(position);
    m_strPitch = tr("Pitch: %1").arg(position);
    m_pitchLabel->setText(m_strPitch);
}

QString CTonwerkView::FormatVolume(int position) {
    return tr("Volume: %1").arg(position / 1000 + 1);
}

void CTonwerkView::OnVolumeMoved(int position) {
    if (m_audio.setVolume) {
        m_audio.setVolume(position);
    } else if (!m_audio.readVolume) {
        m_mixer.SetVolume(static_cast<std::uint32_t>(position));
    }
    m_strVolume = FormatVolume(position);
    m_volumeLabel->setText(m_strVolume);
}

void CTonwerkView::OnCalculateCompletionTime() {
    UpdateData(true);
    const double seconds = EstimateSeconds(KeyedText().toStdString(), m_wordRate, m_farnsworth);
    m_clock->SetText(QString::fromStdString(FormatCompletionTime(seconds)));
}

QString CTonwerkView::VolumeControlProgram() {
    return QStandardPaths::findExecutable(QStringLiteral("pavucontrol"));
}

void CTonwerkView::OnVolumeControl() {
    const QString program = VolumeControlProgram();
    if (!program.isEmpty()) {
        QProcess::startDetached(program, {});
    }
}

void CTonwerkView::OnEditCommand(int command) {
    QWidget* focus = QApplication::focusWidget();
    if (auto* edit = qobject_cast<QTextEdit*>(focus)) {
        switch (command) {
            case kEditCopy:
                edit->copy();
                break;
            case kEditCut:
                edit->cut();
                break;
            case kEditPaste:
                edit->paste();
                break;
            case kEditUndo:
                edit->undo();
                break;
            case kEditSelectAll:
                edit->selectAll();
                edit->ensureCursorVisible();
                break;
            default:
                break;
        }
    } else if (auto* line = qobject_cast<QLineEdit*>(focus)) {
        switch (command) {
            case kEditCopy:
                line->copy();
                break;
            case kEditCut:
                line->cut();
                break;
            case kEditPaste:
                line->paste();
                break;
            case kEditUndo:
                line->undo();
                break;
            case kEditSelectAll:
                line->selectAll();
                break;
            default:
                break;
        }
    }
}

void CTonwerkView::contextMenuEvent(QContextMenuEvent* event) {
    const QPoint point = event->reason() == QContextMenuEvent::Keyboard ? mapToGlobal(QPoint(5, 5))
                                                                        : event->globalPos();
    bool inside = false;
    for (QTextEdit* edit : {m_practiceEdit, m_codeEdit}) {
        inside = inside || edit->rect().contains(edit->mapFromGlobal(point));
    }
    if (!inside) {
        event->ignore();
        return;
    }
    event->accept();
    m_contextMenu->setProperty("lastPoint", point);
    if (CModalSeam::IsScripted()) {
        m_contextMenu->setProperty("shownCount", m_contextMenu->property("shownCount").toInt() + 1);
        return;
    }
    m_contextMenu->exec(point);
}

bool CTonwerkView::event(QEvent* event) {
    if (event->type() == CAppMessageEvent::EventType()) {
        const unsigned message = static_cast<CAppMessageEvent*>(event)->Message();
        switch (message) {
            case kAppMessage + 1:
                OnSessionFinished();
                break;
            case kAppMessage + 2:
                OnNextCharacter();
                break;
            case kAppMessage + 3:
            case kAppMessage + 4:
                OnTone(message == kAppMessage + 4);
                break;
            case CCodeSoundGen::kOutputLost:
            case CCodeSoundGen::kOutputBack:
                OnSoundOutput(message == CCodeSoundGen::kOutputBack);
                break;
            default:
                break;  // the worker's registered completion notice needs nothing
        }
        emit AppMessage(message);
        return true;
    }
    return QWidget::event(event);
}
