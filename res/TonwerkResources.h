// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <string_view>

/// Paths of the artwork built into tonwerk_res (Qt resource system, prefix ":/tonwerk").
/// All images are SVG, so they load as QIcon or QPixmap at any size.
namespace tonwerk::res {

inline constexpr char kAppIcon[] = ":/tonwerk/app/tonwerk.svg";

// Toolbar and menu images, one per command.
inline constexpr char kFileNew[] = ":/tonwerk/toolbar/file-new.svg";
inline constexpr char kFileOpen[] = ":/tonwerk/toolbar/file-open.svg";
inline constexpr char kFileSave[] = ":/tonwerk/toolbar/file-save.svg";
inline constexpr char kEditCut[] = ":/tonwerk/toolbar/edit-cut.svg";
inline constexpr char kEditCopy[] = ":/tonwerk/toolbar/edit-copy.svg";
inline constexpr char kEditPaste[] = ":/tonwerk/toolbar/edit-paste.svg";
inline constexpr char kEditUndo[] = ":/tonwerk/toolbar/edit-undo.svg";
inline constexpr char kConfig[] = ":/tonwerk/toolbar/config.svg";
inline constexpr char kAbout[] = ":/tonwerk/toolbar/about.svg";
inline constexpr char kGenerateFile[] = ":/tonwerk/toolbar/generate-file.svg";
inline constexpr char kVolumeControl[] = ":/tonwerk/toolbar/volume.svg";
inline constexpr char kCompletionTime[] = ":/tonwerk/toolbar/completion-time.svg";
inline constexpr char kReadBack[] = ":/tonwerk/toolbar/read-back.svg";
inline constexpr char kAllOn[] = ":/tonwerk/toolbar/all-on.svg";
inline constexpr char kAllOff[] = ":/tonwerk/toolbar/all-off.svg";
inline constexpr char kDitCharacters[] = ":/tonwerk/toolbar/dit-chars.svg";
inline constexpr char kDahCharacters[] = ":/tonwerk/toolbar/dah-chars.svg";
inline constexpr char kNumbersToggle[] = ":/tonwerk/toolbar/numbers.svg";
inline constexpr char kProSignsToggle[] = ":/tonwerk/toolbar/pro-signs.svg";
inline constexpr char kCallSigns[] = ":/tonwerk/toolbar/call-signs.svg";
inline constexpr char kDoubleSpace[] = ":/tonwerk/toolbar/double-space.svg";

// Form buttons, by the icon number the form uses.
inline constexpr char kButtonMorseToText[] = ":/tonwerk/buttons/morse-to-text.svg";  // 130, 48x16
inline constexpr char kButtonListen[] = ":/tonwerk/buttons/listen.svg";              // 131, 32x32
inline constexpr char kButtonBrowse[] = ":/tonwerk/buttons/browse-folder.svg";       // 134, 16x16
inline constexpr char kButtonTextToMorse[] = ":/tonwerk/buttons/text-to-morse.svg";  // 180, 48x16
inline constexpr char kButtonRandom[] = ":/tonwerk/buttons/random.svg";              // 181, 32x32
inline constexpr char kButtonRecordOff[] = ":/tonwerk/buttons/record-off.svg";       // 183, 32x32
inline constexpr char kButtonRecordOn[] = ":/tonwerk/buttons/record-on.svg";         // 184, 40x32

inline constexpr char kToolTipIcon[] = ":/tonwerk/tooltip/tip.svg";   // 142
inline constexpr char kSheetPageIcon[] = ":/tonwerk/sheet/page.svg";  // 175

// Key lamp layers and progress-bar images.
inline constexpr char kKeyUp[] = ":/tonwerk/lamp/key-up.svg";            // 160
inline constexpr char kKeyDown[] = ":/tonwerk/lamp/key-down.svg";        // 161
inline constexpr char kBarConvert[] = ":/tonwerk/bars/bar-convert.svg";  // 179
inline constexpr char kBarSession[] = ":/tonwerk/bars/bar-session.svg";  // 26020

/// The spoken letters: this prefix and the clip's resource id (SpeechClipId), as ":/wave/224".
inline constexpr char kSpeechClipPrefix[] = ":/wave/";

/// Every path above, for checks that walk them all.
inline constexpr std::array<std::string_view, 35> kAllPaths{
    kAppIcon,
    kFileNew,
    kFileOpen,
    kFileSave,
    kEditCut,
    kEditCopy,
    kEditPaste,
    kEditUndo,
    kConfig,
    kAbout,
    kGenerateFile,
    kVolumeControl,
    kCompletionTime,
    kReadBack,
    kAllOn,
    kAllOff,
    kDitCharacters,
    kDahCharacters,
    kNumbersToggle,
    kProSignsToggle,
    kCallSigns,
    kDoubleSpace,
    kButtonMorseToText,
    kButtonListen,
    kButtonBrowse,
    kButtonTextToMorse,
    kButtonRandom,
    kButtonRecordOff,
    kButtonRecordOn,
    kToolTipIcon,
    kSheetPageIcon,
    kKeyUp,
    kKeyDown,
    kBarConvert,
    kBarSession,
};

/// Registers the artwork with the resource system; call once before the first use (the
/// widgets that load art call it themselves). Calling it again does nothing.
void InitResources();

}  // namespace tonwerk::res
