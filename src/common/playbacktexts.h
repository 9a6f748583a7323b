#pragma once

// Language file entries of the message player and the sound preview, by number.
namespace mms::playbacktext {

// Interface entries.
inline constexpr int kPlayMessage = 71;   // Slide menu item, play button tooltip, player title
inline constexpr int kPaused = 72;        // player status line
inline constexpr int kMessageEnded = 73;  // player status line
inline constexpr int kNoAudioOutput = 74; // player status line
inline constexpr int kPreviousSlide = 75; // player button tooltips
inline constexpr int kPauseResume = 76;
inline constexpr int kNextSlide = 77;
inline constexpr int kStartAgain = 78;
inline constexpr int kZoom = 79; // tooltip of the zoom list

// Error entries.
inline constexpr int kSoundNotPlayable = 7; // the preview's sound is neither MIDI nor AMR
inline constexpr int kNoSlides = 33;        // Play on a message without slides
inline constexpr int kSoundsSkipped = 34;   // after playback: %1 lists the sounds, one a line

inline constexpr int kUsedErrors[] = {kSoundNotPlayable, kNoSlides, kSoundsSkipped};
inline constexpr int kUsedInterface[] = {kPlayMessage,   kPaused,        kMessageEnded,
                                         kNoAudioOutput, kPreviousSlide, kPauseResume,
                                         kNextSlide,     kStartAgain,    kZoom};

} // namespace mms::playbacktext
