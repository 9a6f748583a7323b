#pragma once

#include <QByteArray>
#include <QtGlobal>
#include <optional>
#include <vector>

namespace mms {

// AMR narrow band encoding into the storage format ("#!AMR\n", one frame per 160 samples), with
// opencore-amr. Without silence frames every frame of a mode has the same size, so the size of a
// sound is known before it is encoded.
inline constexpr int kAmrFrameSamples = 160;
inline constexpr int kAmrHeaderBytes = 6;

// The eight modes, from 4.75 to 12.2 kbit/s (opencore's numbering), and each one's frame bytes.
inline constexpr int kAmrModes = 8;
int amrFrameBytes(int mode);
double amrKbps(int mode);

struct AmrPlan {
    int mode = 0;
    qint64 frames = 0;
    qint64 bytes = 0;
    bool shortened = false; // only the first `frames` frames fit, at the smallest mode
};

// The best mode at which `samples` samples make a file under `maxBytes` bytes; when even the
// smallest mode cannot hold them, the longest start that it can. Nothing when not one frame fits.
std::optional<AmrPlan> planAmr(qint64 samples, qint64 maxBytes);

// Encodes the first `plan.frames` frames of `samples` (the last one filled with silence).
QByteArray encodeAmr(const std::vector<qint16>& samples, const AmrPlan& plan);

} // namespace mms
