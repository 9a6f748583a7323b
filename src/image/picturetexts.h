#pragma once

#include "image/picturecheck.h"

namespace mms::picturetext {

// Language entries of the picture checks: why a picture cannot be used (%1 the file; %2 and %3 the
// width and height of one too large to decode), and the questions about a damaged JPEG and a GIF
// over the limit.
inline constexpr int kPromptUseDamaged = 15; // %1 the file (Yes/No)
inline constexpr int kPromptShrinkGif = 16;  // %1 its size, %2 the limit (Yes/No)
inline constexpr int kLastPrompt = kPromptShrinkGif;
inline constexpr int kErrEmptyFile = 41;
inline constexpr int kErrTextFile = 42;
inline constexpr int kErrNotPicture = 43;
inline constexpr int kErrDamaged = 44;
inline constexpr int kErrTooLargeToDecode = 45;
inline constexpr int kFirstError = kErrEmptyFile, kLastError = kErrTooLargeToDecode;

// The error text for a trouble (Unreadable has the general "could not be loaded").
int errorNumber(PictureTrouble::Kind kind);

} // namespace mms::picturetext
