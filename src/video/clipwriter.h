#pragma once

#include "video/clipframes.h"

#include <QByteArray>
#include <QSize>

namespace mms {

// One encoding of a clip: its pictures as H.263 at a fixed quantizer (2 best to 31 smallest), its
// sound as AMR frames (each with its header byte, 20 ms each), in a 3GP file made in memory.
struct ClipEncoding {
    const std::vector<FramePtr>* pictures = nullptr; // kClipMaxRate a second
    QSize size;
    int step = 1;     // every step-th picture kept: kClipMaxRate / step frames a second
    qint64 count = 0; // pictures of `pictures` the clip takes (before thinning)
    int quantizer = 8;
    QByteArray amrFrames; // empty: no sound
    int amrFrameBytes = 0;
};

// The 3GP file, or nothing when the media library refused.
QByteArray writeClip(const ClipEncoding& clip);

} // namespace mms
