#pragma once

#include "model/status.h"

#include <QByteArrayView>
#include <QString>
#include <QtGlobal>

namespace mms {

// What the header probe learnt about a picture. Every probe starts from zero.
struct ImageProbe {
    enum Type : qint32 { Unknown = 0, Gif = 1, Jpeg = 2, Png = 3, Bmp = 4 };

    bool answer = false; // a header the picture panel can show was recognised
    qint32 imgType = Unknown;
    qint32 imgWidth = 0; // from a 16-bit header field: only the low 16 bits of larger sizes
    qint32 imgHeight = 0;
    quint8 imgDepth = 0; // bits per pixel; a hostile PNG product wraps to 8 bits
};

// The probe reads this many leading bytes of a file at once. Only a JPEG whose marker chain runs past
// them is read further, one segment header at a time.
constexpr int kImageProbeBytes = 65536;

// hi * 256 + lo.
constexpr qint32 bytesToWord(quint8 lo, quint8 hi) {
    return qint32(hi) * 256 + lo;
}

// Probes a whole file's bytes. The headers are tested on the first kImageProbeBytes (a shorter file
// reads as if padded with zero bytes): PNG, GIF and BMP in that order, each overwriting an earlier
// match; the JPEG marker scan runs only when none of them matched. A JPEG whose frame header lies
// beyond them (phone photos carry large Exif, maker and preview segments) is found by following the
// chain of segment lengths through the rest; the start-of-image pattern must lie within them.
ImageProbe checkValidImg(QByteArrayView bytes);

// The same for the file at `path`, reading its first kImageProbeBytes and, for such a JPEG, seeking
// from segment header to segment header. Fails when the file cannot be opened or read; `result` is
// then the all-zero probe.
Status checkValidImg(const QString& path, ImageProbe& result);

} // namespace mms
