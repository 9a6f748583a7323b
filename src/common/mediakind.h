#pragma once

#include <QString>

namespace mms {

// What a file holds, as far as its extension tells: the one rule every listing, drop, attachment,
// package member and content type follows, so that a file one of them takes is taken by all.
enum class MediaKind { Gif, Jpeg, Bmp, Png, Video3gp, Amr, Midi, Text, Smil, Other };

// Decided by the extension after the last dot of the file name (not of a folder on the way), in any
// case: .gif, .jpg/.jpeg/.jpe, .bmp, .png, .3gp, .amr, .mid, .txt, .smil. No extension is Other.
MediaKind mediaKindOf(const QString& path);

// A still picture a slide takes (GIF, JPEG, BMP). PNG is known for its content type but not offered.
bool isPicture(const QString& path);
// A 3GP clip, which takes a slide's picture place.
bool isVideoClip(const QString& path);
// A slide sound: AMR or MIDI.
bool isSound(const QString& path);

} // namespace mms
