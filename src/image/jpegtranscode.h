#pragma once

#include "model/status.h"

#include <QByteArray>

namespace mms {

// Re-encodes a JPEG at its own size, a band of rows at a time: the decoder's blue-green-red rows go
// straight to the encoder, so no full-size bitmap is allocated, filled and walked again. The bytes
// are those of decoding the whole picture to BGR with TurboJPEG (accurate DCT, smooth upsampling)
// and encoding that with encodeJpeg at the same quality.
//
// jpeg stays empty (and the call succeeds) when the bytes are not a JPEG this path can turn into
// BGR (CMYK, or damaged beyond its reach): the general reader takes over then. A picture that is
// only cut short is still converted, its missing part filled in as TurboJPEG fills it. Fails when the
// header claims more pixels than the image readers' allocation limit allows.
Status transcodeJpeg(const QByteArray& bytes, int quality, QByteArray& jpeg);

} // namespace mms
