#pragma once

// Language-file entries of the composer's history, drafts, recent messages, drag and drop and
// About box. Only these names refer to them, so a renumbering touches this file alone.
namespace mms::texts {

// Prompts.
inline constexpr int kPromptRestoreDraft = 12;

// Errors.
inline constexpr int kErrDraftDamaged = 32;      // %1: where the damaged draft was set aside
inline constexpr int kErrRecentMissing = 33;     // %1: the message name
inline constexpr int kErrDropRefused = 34;       // %1: the refused file
inline constexpr int kErrDraftFilesMissing = 35; // %1: the missing files, one a line
inline constexpr int kErrDraftNotWritten = 36;   // %1: what failed

// Interface strings.
inline constexpr int kMenuEdit = 70;
inline constexpr int kUndo = 71;
inline constexpr int kRedo = 72;
inline constexpr int kUndoNamed = 73; // %1: the step
inline constexpr int kRedoNamed = 74; // %1: the step
inline constexpr int kStepDuration = 75;
inline constexpr int kStepText = 76;
inline constexpr int kStepAttachPicture = 77;
inline constexpr int kRemovePicture = 78; // a step and a context-menu command
inline constexpr int kStepAttachSound = 79;
inline constexpr int kRemoveSound = 80; // a step and a context-menu command
inline constexpr int kStepAttachCrop = 81;
inline constexpr int kStepMoveSlide = 82;
inline constexpr int kMenuOpenRecent = 83;
inline constexpr int kMenuHelp = 84;
inline constexpr int kAbout = 85;
inline constexpr int kAboutVersion = 86; // %1: the version
inline constexpr int kAboutLibraries = 87;
inline constexpr int kAboutSoundFont = 88; // %1: the sound font's name

// Existing entries these features reuse.
inline constexpr int kStepAddSlide = 10;
inline constexpr int kStepRemoveSlide = 11;
inline constexpr int kStepToFront = 12;
inline constexpr int kStepToBack = 13;
inline constexpr int kStepForward = 14;
inline constexpr int kStepBackward = 15;

} // namespace mms::texts
