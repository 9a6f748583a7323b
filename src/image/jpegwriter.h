#pragma once

#include "common/libraryinfo.h"
#include "image/cdibsection.h"
#include "model/status.h"

#include <QByteArray>
#include <QImage>
#include <QString>

namespace mms {

// The quality every conversion of the program uses.
constexpr int kJpegQuality = 35;

// The JPEG library the encoder and decoder run on, in the version built against: it has no call
// that tells the version in use.
LibraryInfo jpegLibrary();

// Encodes the bitmap as a baseline JPEG of the same width and height: three colour components
// (YCbCr), chroma halved both ways (4:2:0), quality 1..100.
Status encodeJpeg(const cDIBSection& dib, int quality, QByteArray& jpeg);

// The same encoding of a picture in QImage::Format_RGB32 (anything else fails).
Status encodeJpeg(const QImage& picture, int quality, QByteArray& jpeg);

// Encodes and writes the JPEG to path. The file appears only when complete: on failure nothing is
// left under that name and an existing file there is untouched.
Status writeJpegFile(const cDIBSection& dib, const QString& path, int quality);

// The program's one conversion: loads source (its content decides the format; the stored pixels are
// taken unrotated) and writes it to target as JPEG at the picture's own size. A JPEG source streams
// from decoder to encoder (transcodeJpeg); any other goes through a cDIBSection. Nothing is written
// when the source cannot be loaded; the failure names the file.
Status reencodeAsJpeg(const QString& source, const QString& target, int quality = kJpegQuality);

} // namespace mms
