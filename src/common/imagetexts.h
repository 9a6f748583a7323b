#pragma once

// Language entries of the picture tab and the picture import, by number.
namespace mms::imagetext {

// Errors.
inline constexpr int kErrPictureTooLarge = 0;      // also after its conversion to JPEG
inline constexpr int kErrPictureNotConverted = 27; // %1: what failed
inline constexpr int kErrPictureNotLoaded = 31;    // %1: what failed

// Interface strings.
inline constexpr int kUsePicture = 21;
// The type list; the program appends " (*.gif)" and so on to the last three.
inline constexpr int kAllPictures = 29;
inline constexpr int kGifPictures = 30;
inline constexpr int kJpegPictures = 31;
inline constexpr int kBmpPictures = 32;

inline constexpr int kUsedErrors[] = {kErrPictureTooLarge, kErrPictureNotConverted, kErrPictureNotLoaded};
inline constexpr int kUsedInterface[] = {kUsePicture, kAllPictures, kGifPictures, kJpegPictures,
                                         kBmpPictures};

} // namespace mms::imagetext
