#pragma once

// Language entries of the composer window, by number. They are defined here rather than beside
// the window so that the language lookups can require every one of them; the window reads them
// through composer/composertexts.h.
namespace mms::desktoptext {

// Prompts.
inline constexpr int kPromptDeleteMessage = 1;  // Yes/No, titled kDelete
inline constexpr int kPromptSaveBeforeExit = 2; // Yes/No/Cancel
inline constexpr int kPromptSaveFirst = 3;      // before New or Open: Yes/No, for New also Cancel
inline constexpr int kPromptExit = 4;           // Yes/No
inline constexpr int kPromptDeleted = 7;
inline constexpr int kPromptSaved = 8;
inline constexpr int kPromptExported = 10;
inline constexpr int kPromptMmsWritten = 11;
inline constexpr int kPromptRestoreDraft = 12;

// Errors.
inline constexpr int kErrCannotMoveLater = 3;
inline constexpr int kErrCannotMoveEarlier = 4;
inline constexpr int kErrSlideNotRemoved = 5;
inline constexpr int kErrSlideNotShown = 6;
inline constexpr int kErrNotSaved = 23;           // %1: what failed
inline constexpr int kErrNotOpened = 24;          // %1: what failed
inline constexpr int kErrStoredFilesMissing = 25; // %1: the missing files, one a line
inline constexpr int kErrNotDeleted = 26;         // %1: what failed
inline constexpr int kErrMmsNotWritten = 29;      // %1: what failed
inline constexpr int kErrNotExported = 30;        // %1: what failed
inline constexpr int kErrDraftDamaged = 35;       // %1: where the damaged draft was set aside
inline constexpr int kErrRecentMissing = 36;      // %1: the message name
inline constexpr int kErrDropRefused = 37;        // %1: the refused file
inline constexpr int kErrDraftFilesMissing = 38;  // %1: the missing files, one a line
inline constexpr int kErrDraftNotWritten = 39;    // %1: what failed

// Interface strings.
inline constexpr int kUntitled = 1; // caption of a message never saved
inline constexpr int kMenuFile = 2;
inline constexpr int kNew = 3;
inline constexpr int kOpen = 4;
inline constexpr int kSaveAs = 6;
inline constexpr int kDelete = 7; // also the title of the delete question
inline constexpr int kExit = 8;
// The Slide menu, the slide frame ("Slide 3") and the warning about a duration that is no number.
inline constexpr int kSlide = 9;
// Slide menu items, strip button tooltips and the names of their steps.
inline constexpr int kAddSlide = 10;
inline constexpr int kRemoveSlide = 11;
inline constexpr int kMoveToStart = 12;
inline constexpr int kMoveToEnd = 13;
inline constexpr int kMoveEarlier = 14;
inline constexpr int kMoveLater = 15;
inline constexpr int kPicturesTab = 17;
inline constexpr int kSoundsTab = 18;
inline constexpr int kSlidesFrame = 24;
inline constexpr int kMessageSizeFrame = 25;
inline constexpr int kTotal = 26;    // "Total : 3" in both counters
inline constexpr int kTextHint = 36; // placeholder of an empty slide text
inline constexpr int kDurationTip = 61;
inline constexpr int kExportMms = 64;
inline constexpr int kMmsFileType = 65; // " (*.mms)" is appended
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
inline constexpr int kAbout = 95;        // menu item and box title
inline constexpr int kAboutVersion = 96; // %1: the version
inline constexpr int kAboutLibraries = 97;
inline constexpr int kAboutSoundFont = 98; // %1: the sound font's name

// The Slide menu's commands as the names of their steps.
inline constexpr int kStepAddSlide = kAddSlide;
inline constexpr int kStepRemoveSlide = kRemoveSlide;
inline constexpr int kStepToFront = kMoveToStart;
inline constexpr int kStepToBack = kMoveToEnd;
inline constexpr int kStepForward = kMoveEarlier;
inline constexpr int kStepBackward = kMoveLater;

inline constexpr int kUsedPrompts[] = {kPromptDeleteMessage, kPromptSaveBeforeExit, kPromptSaveFirst,
                                       kPromptExit,          kPromptDeleted,        kPromptSaved,
                                       kPromptExported,      kPromptMmsWritten,     kPromptRestoreDraft};
inline constexpr int kUsedErrors[] = {kErrCannotMoveLater,    kErrCannotMoveEarlier, kErrSlideNotRemoved,
                                      kErrSlideNotShown,      kErrNotSaved,          kErrNotOpened,
                                      kErrStoredFilesMissing, kErrNotDeleted,        kErrMmsNotWritten,
                                      kErrNotExported,        kErrDraftDamaged,      kErrRecentMissing,
                                      kErrDropRefused,        kErrDraftFilesMissing, kErrDraftNotWritten};
inline constexpr int kUsedInterface[] = {kUntitled,
                                         kMenuFile,
                                         kNew,
                                         kOpen,
                                         kSaveAs,
                                         kDelete,
                                         kExit,
                                         kSlide,
                                         kAddSlide,
                                         kRemoveSlide,
                                         kMoveToStart,
                                         kMoveToEnd,
                                         kMoveEarlier,
                                         kMoveLater,
                                         kPicturesTab,
                                         kSoundsTab,
                                         kSlidesFrame,
                                         kMessageSizeFrame,
                                         kTotal,
                                         kTextHint,
                                         kDurationTip,
                                         kExportMms,
                                         kMmsFileType,
                                         kMenuEdit,
                                         kUndo,
                                         kRedo,
                                         kUndoNamed,
                                         kRedoNamed,
                                         kStepDuration,
                                         kStepText,
                                         kStepAttachPicture,
                                         kRemovePicture,
                                         kStepAttachSound,
                                         kRemoveSound,
                                         kStepAttachCrop,
                                         kStepMoveSlide,
                                         kMenuOpenRecent,
                                         kMenuHelp,
                                         kAbout,
                                         kAboutVersion,
                                         kAboutLibraries,
                                         kAboutSoundFont};

} // namespace mms::desktoptext
