// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBasicTimer>
#include <QString>
#include <QWidget>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>

#include "app/CPostedNotifyTarget.h"
#include "app/CProgressStepper.h"
#include "app/CQtVolumeSlider.h"
#include "audio/Beep.h"
#include "audio/CClipPlayer.h"
#include "audio/CSoundMixer.h"
#include "audio/CWaveDevice.h"
#include "model/CListeningCursor.h"
#include "model/CMorseAlphabet.h"
#include "model/CStraightKey.h"
#include "sound/CCodeSoundGen.h"
#include "sound/CCodeWaveGen.h"
#include "sound/CWaveInGate.h"

class CAnchorLayout;
class CClockDisplay;
class CHtmlToolTip;
class CImageButton;
class CKeyLamp;
class CMainFrame;
class CSegmentDisplay;
class CStatusProgress;
class CTonwerkDoc;
class CWave;
class CWaveIn;
class CWaveOut;
class QAbstractButton;
class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QSlider;
class QTextEdit;

/// The practice form: every control of the trainer, the conversions between practice text and
/// code text, the sliders and the selection buttons. Values move between the controls and the
/// view's members by UpdateData, as on a dialog form; the profile is reached through the document.
class CTonwerkView : public QWidget {
    Q_OBJECT

public:
    /// Stand-ins for the sound hardware, for tests: each hook left empty uses the real thing
    /// (the MIDI output count, the mixer's speakers volume on its 0..65535 scale, a spoken
    /// letter's clip by resource path, and the straight key's tone).
    struct AudioHooks {
        std::function<int()> midiOutputCount;
        std::function<int()> readVolume;
        std::function<void(int)> setVolume;
        std::function<void(const QString& resource)> playClip;
        std::function<void(std::uint32_t frequency, std::uint32_t milliseconds)> beep;
    };

    static constexpr int kFormWidth = 860;
    static constexpr int kFormHeight = 560;
    static constexpr int kVolumeMax = 65535;

    CTonwerkView(CTonwerkDoc* doc, CMainFrame* frame, QWidget* parent = nullptr);
    ~CTonwerkView() override;

    static void SetDefaultAudioHooks(AudioHooks hooks);

    /// The clock in whole seconds since the epoch that the session clock and the random
    /// generators read; the system clock unless a test sets another.
    void SetTimeSource(std::function<std::int64_t()> now);

    /// The form's start-up: fonts, layout, images, sliders, displays, selections from the
    /// profile, the first conversion, the MIDI check and the tooltips.
    void OnInitialUpdate();

    /// Data exchange between controls and members; false when a field was refused.
    bool UpdateData(bool saveAndValidate = true);

    /// The control with a form id (1000..1089), or nullptr.
    QWidget* Control(int id) const;
    CHtmlToolTip* ToolTips() const { return m_toolTip; }
    INotifyTarget& NotifyTarget() { return m_notifyTarget; }

    QString PracticeText() const;
    QString CodeText() const;
    /// Replaces both texts (loading or emptying the document) without marking it modified.
    void SetTexts(const QString& practiceText, const QString& codeText);

    void OnTextToMorse();
    void OnMorseToText();
    void OnMute();
    void OnSpeech();
    void OnKeyLamp();
    void OnVolumeControl();
    void OnCalculateCompletionTime();
    void OnEditCommand(int command);

    /// Saves the 58 selection buttons as "Letter_%c".
    void SaveSelection();

    /// Program that "Volume Control" starts, found on the path; empty when there is none.
    static QString VolumeControlProgram();

    /// Edit command ids, as the frame's menu uses them.
    enum EditCommand {
        kEditCopy = 57634,
        kEditCut = 57635,
        kEditPaste = 57637,
        kEditSelectAll = 57642,
        kEditUndo = 57643
    };

    /// The context menu of the two text boxes, built once.
    QMenu* ContextMenu() const { return m_contextMenu; }

    // -- Listening session --------------------------------------------------------------------
    /// Listen / Stop (control 1005).
    void OnListen();
    const CListeningCursor& ListeningCursor() const { return m_cursor; }

    // -- Random practice text -----------------------------------------------------------------
    void OnAllOn();
    void OnAllOff();
    void OnDitCharacters();
    void OnDahCharacters();
    /// "&1 Tone Characters" to "&4 Tone Characters".
    void OnToneCharacters(int tones);
    void OnNumbersToggle();
    void OnProSignsToggle();
    void OnDoubleSpace();
    /// "&Random" (control 1009).
    void OnRandom();
    void OnCallSigns();

    // -- Spoken read-back and the straight key ------------------------------------------------
    /// Says one letter in the chosen voice, when the settings allow it.
    void SpeakLetter(const QString& letter);
    void OnReadBack();
    /// Enter on the focused key lamp: the first press starts the hold, the release sounds it.
    void OnStraightKeyDown();
    void OnStraightKeyUp();
    /// The key's output is opened when the lamp takes the focus and let go when it leaves.
    void OnFocusChanged(QWidget* now);

    // -- Sound files and session recording ----------------------------------------------------
    void OnGenerateFile();
    /// The Record Session toggle (control 1046).
    void OnRecordSession();
    /// Opens and starts the recorder; run at the start of a listening session marked for it.
    void StartSessionRecording();
    /// Stops the recorder and offers the recording for saving; run when a session finishes.
    void FinishSessionRecording();

signals:
    /// A posted sound message arrived (kAppMessage + 1 .. + 6).
    void AppMessage(unsigned message);
    /// Listen started keying sentText, the practice text in the plain form that is keyed.
    void ListeningStarted(const QString& sentText);
    /// A run ended or was stopped (also sent for a generated file's run).
    void ListeningFinished();

protected:
    bool event(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void CreateControls();
    void RegisterLayout();
    void CreateToolTips();
    void SetChecksFromDocument();
    void OnWordRateMoved(int position);
    void OnPitchMoved(int position);
    void OnVolumeMoved(int position);
    void RefreshCodeHighlight();
    void CheckMidiOutputs();
    static QString FormatVolume(int position);
    QWidget* Register(QWidget* widget, int id, const char* name);
    void OnSessionFinished();
    void OnNextCharacter();
    /// The key lamp follows a tone when it is animated, below 25 words per minute or muted.
    void OnTone(bool on);
    /// The session's sound output was lost (the run keys on silently) or is back.
    void OnSoundOutput(bool back);
    void OnClockTick();
    /// The controls that stay disabled while a session runs.
    void EnableSessionControls(bool enable);
    /// The clock in whole seconds since the epoch.
    std::int64_t NowSeconds() const;
    /// The practice text as the model takes it: ASCII, typographic forms made plain, the rest
    /// left out; what is converted, estimated, keyed and written.
    QByteArray KeyedText() const;

    void PlayClip(const QString& resource);
    class CReadBackGuard;

    // Random practice text. The selection buttons stand in the order of the selectable
    // characters: the letters, the digits 0 to 9, then the pro signs.
    static constexpr int kLetterCount = 26;
    static constexpr int kDigitCount = 10;
    static constexpr int kSignCount = 22;
    void SetSelection(int first, int count, bool checked);
    void SelectLetterClass(LetterClass letterClass);
    void UpdateRandomMenuChecks();
    /// Takes and stores the word count and size and empties the practice text; false when the
    /// form refused a field.
    bool TakeRandomFields();
    /// Shows a generated text, saves the selection, converts it and estimates its time.
    void FinishRandomText(const std::string& text);

    CTonwerkDoc* m_doc;
    CMainFrame* m_frame;
    CPostedNotifyTarget m_notifyTarget;
    AudioHooks m_audio;
    std::unique_ptr<CQtVolumeSlider> m_volumeAdapter;
    CSoundMixer m_mixer;
    CAnchorLayout* m_layout = nullptr;
    CHtmlToolTip* m_toolTip = nullptr;
    QMenu* m_contextMenu = nullptr;
    bool m_loadingTexts = false;

    // Controls, by form id.
    CSegmentDisplay* m_current = nullptr;        // 1006
    CKeyLamp* m_keyLamp = nullptr;               // 1000
    QLabel* m_wordRateLabel = nullptr;           // 1004
    QLineEdit* m_farnsworthEdit = nullptr;       // 1050
    QCheckBox* m_speechCheck = nullptr;          // 1052
    QCheckBox* m_muteCheck = nullptr;            // 1051
    QSlider* m_wordRateSlider = nullptr;         // 1003
    QGroupBox* m_randomGroup = nullptr;          // 1045
    QLineEdit* m_wordCountEdit = nullptr;        // 1041
    QLineEdit* m_wordSizeEdit = nullptr;         // 1043
    CSegmentDisplay* m_next = nullptr;           // 1010
    CSegmentDisplay* m_previous = nullptr;       // 1037
    CClockDisplay* m_clock = nullptr;            // 1040
    CImageButton* m_listen = nullptr;            // 1005
    CImageButton* m_record = nullptr;            // 1046
    CImageButton* m_random = nullptr;            // 1009
    QSlider* m_volumeSlider = nullptr;           // 1038
    QSlider* m_pitchSlider = nullptr;            // 1039
    QTextEdit* m_practiceEdit = nullptr;         // 1002
    CImageButton* m_textToMorse = nullptr;       // 1007
    CImageButton* m_morseToText = nullptr;       // 1008
    QTextEdit* m_codeEdit = nullptr;             // 1001
    QLabel* m_volumeLabel = nullptr;             // 1088
    QLabel* m_pitchLabel = nullptr;              // 1089
    std::array<QPushButton*, 58> m_selection{};  // letters, digits 0..9, pro signs

    // -- Listening session state --------------------------------------------------------------
    CCodeSoundGen m_soundGen;
    CProgressStepper m_sessionProgress;
    CListeningCursor m_cursor;
    QBasicTimer m_clockTimer;
    std::int64_t m_sessionStart = 0;
    std::function<std::int64_t()> m_now;

    // -- Random practice text state -----------------------------------------------------------
    int m_numbersToggle = 0;
    int m_proSignsToggle = 0;
    int m_doubleSpace = 0;

    // -- Read-back and straight-key state -----------------------------------------------------
    CClipPlayer m_clips;
    QBasicTimer m_clipIdle;
    CStraightKey m_straightKey;
    CBeeper m_beeper;  // open while the key lamp has the focus, so a tone starts at once

    // -- Sound file and recording state -------------------------------------------------------
    bool m_recordSession = false;
    CCodeWaveGen m_waveGen;
    CWaveInGate m_waveGenGate;  // files are only generated where a recording input exists
    CProgressStepper m_waveGenProgress;
    // From StartSessionRecording to FinishSessionRecording; the wave only until the recorder
    // has started, which then collects the recording itself.
    std::unique_ptr<CWave> m_wave;
    std::unique_ptr<CWaveIn> m_waveIn;
    std::unique_ptr<CWaveOut> m_waveOut;
    CWaveDevice m_waveInDevice;

    // Values exchanged with the controls.
    QString m_strWordRate = QStringLiteral("Set Words/Minute: 5");
    QString m_practiceText = QStringLiteral("Welcome to learning MORSE CODE");
    QString m_codeText;
    QString m_currentChar;
    int m_wordCount = 20;
    int m_wordSize = 5;
    int m_mute = 0;
    int m_speech = 0;
    QString m_strPitch;
    QString m_strVolume;
    int m_farnsworth = 0;

    // Current settings copied from the document at start and kept by the sliders.
    int m_wordRate = 15;
    int m_pitch = 1000;
    int m_pauseDit = 1;
    int m_pauseDah = 1;
    int m_pauseChar = 1;
    int m_pauseWord = 1;
    bool m_soundEnabled = true;
    int m_midiDevices = 0;
    int m_keyLampEnabled = 1;
};
