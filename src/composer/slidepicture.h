#pragma once

#include "common/mediakind.h"

#include <QImage>
#include <QSize>
#include <QString>

namespace mms {

// Pictures of the composer: the strip thumbnails and the phone-screen preview. GUI-free (QImage).

inline constexpr QSize kStripThumbnailSize{70, 70};
inline constexpr QSize kPhonePictureSize{160, 110}; // the image region of the phone screen

// The thumbnail of a slide without a picture: an empty page.
QImage blankThumbnail();
// `picture` fitted into `size`, aspect ratio kept, centred on a neutral background.
QImage fittedThumbnail(const QImage& picture, QSize size = kStripThumbnailSize);
// `picture` scaled down to fit the phone's image region (never enlarged), aspect ratio kept.
QImage fitToPhoneScreen(const QImage& picture);

// Whether `path` names a video clip rather than a picture.
inline bool isVideoClipPath(const QString& path) {
    return matchesClipPattern(path);
}
// Loads a picture file (GIF, JPEG, BMP, PNG); a null image when it cannot be read.
QImage loadPicture(const QString& path);
// What a slide shows in its image region: its picture, or a clip's first picture; null when
// neither can be read.
QImage loadSlideVisual(const QString& path);
// A thumbnail marked as standing for a clip (a play sign in its corner).
QImage markedAsClip(QImage thumbnail);

} // namespace mms
