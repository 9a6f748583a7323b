#pragma once

// Language entries of the picture tab and the picture import, by number.
namespace mms::imagetext {

// Prompts: the questions about a damaged JPEG and a GIF over the limit.
inline constexpr int kPromptUseDamaged = 15; // %1 the file (Yes/No)
inline constexpr int kPromptShrinkGif = 16;  // %1 its size, %2 the limit (Yes/No)

// Errors.
inline constexpr int kErrPictureTooLarge = 0;      // also after its conversion to JPEG
inline constexpr int kErrPictureNotConverted = 27; // %1: what failed
inline constexpr int kErrPictureNotLoaded = 31;    // %1: what failed
// Why a picture cannot be used: %1 the file; %2 and %3 the width and height of one too large to decode.
inline constexpr int kErrEmptyFile = 41;
inline constexpr int kErrTextFile = 42;
inline constexpr int kErrNotPicture = 43;
inline constexpr int kErrDamaged = 44;
inline constexpr int kErrTooLargeToDecode = 45;

// Interface strings.
inline constexpr int kUsePicture = 21;
// The type list; the program appends " (*.gif)" and so on to the last three.
inline constexpr int kAllPictures = 29;
inline constexpr int kGifPictures = 30;
inline constexpr int kJpegPictures = 31;
inline constexpr int kBmpPictures = 32;
// The quality of converted pictures: the list's label and tooltip, its three choices, and a
// quality set outside them (%1 the number).
inline constexpr int kPictureQuality = 108;
inline constexpr int kPictureQualityTip = 109;
inline constexpr int kQualityStandard = 110;
inline constexpr int kQualityHigh = 111;
inline constexpr int kQualityBest = 112;
inline constexpr int kQualityOther = 113;

inline constexpr int kUsedPrompts[] = {kPromptUseDamaged, kPromptShrinkGif};
inline constexpr int kUsedErrors[] = {
    kErrPictureTooLarge, kErrPictureNotConverted, kErrPictureNotLoaded, kErrEmptyFile,
    kErrTextFile,        kErrNotPicture,          kErrDamaged,          kErrTooLargeToDecode};
inline constexpr int kUsedInterface[] = {kUsePicture,  kAllPictures,    kGifPictures,       kJpegPictures,
                                         kBmpPictures, kPictureQuality, kPictureQualityTip, kQualityStandard,
                                         kQualityHigh, kQualityBest,    kQualityOther};

} // namespace mms::imagetext
