#pragma once

#include "image/jpegwriter.h"
#include "image/pictureimport.h"

#include <QByteArray>
#include <QSize>
#include <QString>
#include <atomic>

namespace mms {

// What fitting a picture under a byte limit gave.
struct FitResult {
    enum class Outcome {
        Fitted,    // jpeg and size hold the result
        NoFit,     // no size that keeps the picture's shape is under the limit; message says why
        Failed,    // the picture could not be read, or the result not written; message names the file
        Cancelled, // stopped on request; nothing was written
    };
    Outcome outcome = Outcome::Failed;
    QByteArray jpeg;
    QSize size;
    QString message;

    bool fitted() const { return outcome == Outcome::Fitted; }
};

// The most an attached picture may take: one byte under the attachment limit.
constexpr qint64 kFitMaxBytes = kAttachmentLimit - 1;
static_assert(!isTooLarge(kFitMaxBytes) && isTooLarge(kFitMaxBytes + 1));

// Converts a picture (GIF, JPEG, BMP or PNG; its content decides) to the largest JPEG of at most
// maxBytes bytes. Its EXIF orientation is applied first: the result is upright and carries no
// orientation tag. The JPEG is encoded as every conversion of the program is (baseline, three
// components) at the quality, which stays the same throughout the search. The picture is scaled
// down, never up, with its aspect ratio kept: the long side is searched, the short side is the
// exact scaled side rounded (at least 1 pixel), so the shape is kept within one pixel. The result
// is the largest long side whose JPEG is within the limit while the next larger one is not. A large
// JPEG is decoded once at a reduced DCT scale (1/2, 1/4, 1/8) that still leaves room above the size
// sought; should the picture fit at that scale, it is decoded at its full size. `cancel`, when
// given, is checked between trial encodings.
FitResult fitPicture(const QByteArray& bytes, const QString& name, qint64 maxBytes = kFitMaxBytes,
                     const std::atomic<bool>* cancel = nullptr, int quality = kJpegQuality);
// The same for a file; the messages name it.
FitResult fitPictureToLimit(const QString& source, qint64 maxBytes = kFitMaxBytes,
                            const std::atomic<bool>* cancel = nullptr, int quality = kJpegQuality);
// fitPictureToLimit, then the JPEG written to target whole or not at all (Failed when writing fails).
FitResult fitPictureToFile(const QString& source, const QString& target, qint64 maxBytes = kFitMaxBytes,
                           const std::atomic<bool>* cancel = nullptr, int quality = kJpegQuality);

} // namespace mms
