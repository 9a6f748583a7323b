#pragma once

#include "common/libraryinfo.h"
#include "model/status.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <vector>

namespace mms {

// AMR narrow band sounds in the single-channel storage format phones record ("#!AMR\n", then one
// frame per 20 ms), decoded with opencore-amr into 16-bit mono samples at 8 kHz.
inline constexpr int kAmrSampleRate = 8000;

// The AMR library the decoder runs on, in the version built against: it has no call that tells the
// version in use.
LibraryInfo amrLibrary();

// Decodes the bytes of an AMR file into `samples` (replacing what it held). Fails, saying what is
// wrong, on anything else: another header (wide band, multi-channel), a frame type narrow band AMR
// does not use, a frame cut short, or no frame at all; `samples` is then left empty.
Status decodeAmr(const QByteArray& bytes, std::vector<qint16>& samples);
// Reads and decodes an AMR file; a failure names the file.
Status decodeAmrFile(const QString& path, std::vector<qint16>& samples);

} // namespace mms
