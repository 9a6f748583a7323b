#pragma once

// Language file entries of the message player and the sound preview, by number.
namespace mms::playbacktext {

// Interface entries.
inline constexpr int kPlayMessage = 70;   // Slide menu item, play button tooltip, player title
inline constexpr int kPaused = 71;        // player status line
inline constexpr int kMessageEnded = 72;  // player status line
inline constexpr int kNoAudioOutput = 73; // player status line
inline constexpr int kPreviousSlide = 74; // player button tooltips
inline constexpr int kPauseResume = 75;
inline constexpr int kNextSlide = 76;
inline constexpr int kStartAgain = 77;
inline constexpr int kZoom = 78; // tooltip of the zoom list
inline constexpr int kFirstInterface = kPlayMessage;
inline constexpr int kLastInterface = kZoom;

// Error entries.
inline constexpr int kSoundNotPlayable = 7; // the preview's sound is neither MIDI nor AMR
inline constexpr int kNoSlides = 32;        // Play on a message without slides
inline constexpr int kSoundsSkipped = 33;   // after playback: %1 lists the sounds, one a line

} // namespace mms::playbacktext
