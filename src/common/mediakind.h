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
// A video file of a kind phones and cameras write (MP4/M4V, MOV, 3GP/3G2, WebM, MKV, AVI, OGV), which
// can be made into a clip.
bool isVideoFile(const QString& path);

// Two rules that go by the exact letters of a name rather than by its kind: a GIF too large to
// attach is refused when its name ends in ".gif" or ".GIF" (a ".Gif" is converted like any other
// picture), and a slide's thumbnail stays when its new picture ends in ".3gp" (a ".3GP" is loaded
// as a picture).
bool matchesGifPattern(const QString& path);
bool matchesClipPattern(const QString& path);

} // namespace mms
