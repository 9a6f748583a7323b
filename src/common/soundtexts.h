#pragma once

// Language entries of the sound tab and the crop window, by number.
namespace mms::soundtext {

// Errors.
inline constexpr int kErrSoundTooLarge = 1;
inline constexpr int kErrCropEndNotAfterStart = 18;
inline constexpr int kErrCropFailed = 19;
inline constexpr int kErrCropEndBeyondTune = 20;
inline constexpr int kErrCropStartBeforeTune = 21;
inline constexpr int kErrSoundNotRead = 28; // %1: the file and why

// Interface strings.
inline constexpr int kUseSound = 22;
inline constexpr int kCropMidi = 23; // the tab's button and the crop window's title
// The type list; the program appends " (*.amr)" and " (*.mid)" to the last two.
inline constexpr int kAllSounds = 33;
inline constexpr int kAmrSounds = 34;
inline constexpr int kMidiSounds = 35;
// The crop window.
inline constexpr int kPlaySelection = 48;
inline constexpr int kSetStart = 49;
inline constexpr int kSetEnd = 50;
inline constexpr int kCrop = 51;
inline constexpr int kStatusLabel = 52;
inline constexpr int kPosition = 53; // before "00:12 / 01:30" in the status line
inline constexpr int kTuneLabel = 54;
inline constexpr int kPlayerFrame = 55;
inline constexpr int kSelectionFrame = 56;
inline constexpr int kStartLabel = 57;
inline constexpr int kEndLabel = 58;

inline constexpr int kUsedErrors[] = {kErrSoundTooLarge,     kErrCropEndNotAfterStart, kErrCropFailed,
                                      kErrCropEndBeyondTune, kErrCropStartBeforeTune,  kErrSoundNotRead};
inline constexpr int kUsedInterface[] = {
    kUseSound, kCropMidi,    kAllSounds, kAmrSounds, kMidiSounds,  kPlaySelection,  kSetStart,   kSetEnd,
    kCrop,     kStatusLabel, kPosition,  kTuneLabel, kPlayerFrame, kSelectionFrame, kStartLabel, kEndLabel};

} // namespace mms::soundtext
