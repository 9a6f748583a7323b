#pragma once

// Language-file entries of the composer's history, drafts, recent messages, drag and drop and
// About box, by number.
namespace mms::desktoptext {

// Prompts.
inline constexpr int kPromptRestoreDraft = 12;

// Errors.
inline constexpr int kErrDraftDamaged = 35;      // %1: where the damaged draft was set aside
inline constexpr int kErrRecentMissing = 36;     // %1: the message name
inline constexpr int kErrDropRefused = 37;       // %1: the refused file
inline constexpr int kErrDraftFilesMissing = 38; // %1: the missing files, one a line
inline constexpr int kErrDraftNotWritten = 39;   // %1: what failed
inline constexpr int kFirstError = kErrDraftDamaged;
inline constexpr int kLastError = kErrDraftNotWritten;

// Interface strings.
inline constexpr int kMenuEdit = 80;
inline constexpr int kUndo = 81;
inline constexpr int kRedo = 82;
inline constexpr int kUndoNamed = 83; // %1: the step
inline constexpr int kRedoNamed = 84; // %1: the step
inline constexpr int kStepDuration = 85;
inline constexpr int kStepText = 86;
inline constexpr int kStepAttachPicture = 87;
inline constexpr int kRemovePicture = 88; // a step and a context-menu command
inline constexpr int kStepAttachSound = 89;
inline constexpr int kRemoveSound = 90; // a step and a context-menu command
inline constexpr int kStepAttachCrop = 91;
inline constexpr int kStepMoveSlide = 92;
inline constexpr int kMenuOpenRecent = 93;
inline constexpr int kMenuHelp = 94;
inline constexpr int kAbout = 95;
inline constexpr int kAboutVersion = 96; // %1: the version
inline constexpr int kAboutLibraries = 97;
inline constexpr int kAboutSoundFont = 98; // %1: the sound font's name
inline constexpr int kFirstInterface = kMenuEdit;
inline constexpr int kLastInterface = kAboutSoundFont;

// Existing entries these features reuse as the names of steps.
inline constexpr int kStepAddSlide = 10;
inline constexpr int kStepRemoveSlide = 11;
inline constexpr int kStepToFront = 12;
inline constexpr int kStepToBack = 13;
inline constexpr int kStepForward = 14;
inline constexpr int kStepBackward = 15;

} // namespace mms::desktoptext
