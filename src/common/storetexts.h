#pragma once

// Language entries of the message name dialogs (Open, Save As, Delete), by number.
namespace mms::storetext {

// Prompts.
inline constexpr int kPromptReplace = 9; // Save As with a taken name: Yes/No, titled kReplaceTitle

// Errors.
inline constexpr int kErrOpenNotDeletable = 11; // Delete given the open message
inline constexpr int kErrNoName = 12;
inline constexpr int kErrNoSuchMessage = 13;
inline constexpr int kErrAlreadyOpen = 14; // Open, or Open Recent, of the open message
inline constexpr int kReplaceTitle = 15;
inline constexpr int kErrBadName = 22;

// Interface strings.
inline constexpr int kDeleteTitle = 37;
inline constexpr int kOpenTitle = 38;
inline constexpr int kSaveAsTitle = 39;
inline constexpr int kNameLabel = 40;
inline constexpr int kCancelName = 41;
inline constexpr int kOpenButton = 42;
inline constexpr int kDeleteButton = 43;
inline constexpr int kNameColumn = 44;
inline constexpr int kDateColumn = 45;

inline constexpr int kUsedPrompts[] = {kPromptReplace};
inline constexpr int kUsedErrors[] = {kErrOpenNotDeletable, kErrNoName,    kErrNoSuchMessage,
                                      kErrAlreadyOpen,      kReplaceTitle, kErrBadName};
inline constexpr int kUsedInterface[] = {kDeleteTitle, kOpenTitle,    kSaveAsTitle, kNameLabel, kCancelName,
                                         kOpenButton,  kDeleteButton, kNameColumn,  kDateColumn};

} // namespace mms::storetext
