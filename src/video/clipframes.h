#pragma once

#include "model/status.h"
#include "sound/audiodecoder.h"

#include <QSize>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

struct AVFrame;

namespace mms {

// The sizes a phone clip may have (H.263's QCIF and sub-QCIF).
inline const QSize kClipLarge(176, 144);
inline const QSize kClipSmall(128, 96);
// The most frames a second a clip is made with; lower rates keep every second, third... of these.
inline constexpr int kClipMaxRate = 15;

struct FrameDeleter {
    void operator()(AVFrame* frame) const;
};
using FramePtr = std::unique_ptr<AVFrame, FrameDeleter>;

// A stretch of a video read once, as the clip's pictures at both sizes (letterboxed, shape kept)
// sampled at kClipMaxRate a second, with its sound at 8 kHz mono when it has any.
struct ClipSource {
    std::vector<FramePtr> large, small; // YUV 4:2:0 pictures, kClipMaxRate a second
    std::vector<qint16> sound;
    bool hasSound = false;
    QSize sourceSize;
    std::optional<double> sourceSeconds;
    QString videoCodec; // the source's, as the media library names it ("h263", "mpeg4", ...)
    QString container;
    double seconds() const { return double(large.size()) / kClipMaxRate; }
};

// Reads the first video stream of `path` from `start` seconds on, up to `end` and at most
// `maxSeconds` seconds. Fails with a plain reason naming the file when it cannot be read, holds no
// video or none that can be decoded, or is damaged before the first picture; a cancel through
// `progress` fails with an empty message.
// Only what the header tells: the container, the video codec, the picture size and the length. The
// same refusals as below, but for damage past the header.
Status readClipHeader(const QString& path, ClipSource& out);

Status readClipSource(const QString& path, double start, std::optional<double> end, double maxSeconds,
                      ClipSource& out, const Progress& progress = {});

} // namespace mms
