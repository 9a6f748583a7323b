#pragma once

// Language entries several windows share, by number.
namespace mms::commontext {

// Interface strings.
inline constexpr int kAppTitle = 0;         // window captions and message box titles
inline constexpr int kSave = 5;             // File menu and the Save As dialog's button
inline constexpr int kChooseFolderTip = 19; // the folder buttons of the picture and sound tabs
inline constexpr int kRefresh = 20;         // both library tabs
inline constexpr int kStopSound = 27;       // sound preview and crop window, while playing
inline constexpr int kPlaySound = 28;       // sound preview and crop window, while stopped
inline constexpr int kChooseFolder = 62;    // title of the folder chooser
inline constexpr int kExport = 63;          // File menu, subject window title and button
inline constexpr int kYes = 66;             // message box buttons
inline constexpr int kNo = 67;
inline constexpr int kOk = 68;
inline constexpr int kCancel = 69;

inline constexpr int kUsedInterface[] = {kAppTitle,  kSave,         kChooseFolderTip, kRefresh, kStopSound,
                                         kPlaySound, kChooseFolder, kExport,          kYes,     kNo,
                                         kOk,        kCancel};

} // namespace mms::commontext
