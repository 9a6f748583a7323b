#pragma once

#include "image/picturefit.h"

#include <QByteArray>
#include <QSize>
#include <QString>
#include <atomic>

namespace mms {

// What shrinking a GIF under a byte limit gave.
struct GifShrink {
    using Outcome = FitResult::Outcome;
    Outcome outcome = Outcome::Failed;
    QByteArray gif;
    QSize size;
    int frames = 0;
    QString message; // why, naming the file, unless it fitted

    bool fitted() const { return outcome == Outcome::Fitted; }
};

// Makes a GIF of at most maxBytes from a GIF: scaled down (never up) with its shape kept within a
// pixel, its colours reduced and, only when even the smallest of those does not fit, every k-th
// frame kept, each shown as long as the frames it stands for, so the total display time and the loop
// count stay. The largest result is the one with the most frames, then the most colours, then the
// largest size; a still GIF stays one frame. `cancel`, when given, is checked between trials.
GifShrink shrinkGif(const QByteArray& bytes, const QString& name, qint64 maxBytes = kFitMaxBytes,
                    const std::atomic<bool>* cancel = nullptr);
// The same for a file, the result written to target whole or not at all.
GifShrink shrinkGifToFile(const QString& source, const QString& target, qint64 maxBytes = kFitMaxBytes,
                          const std::atomic<bool>* cancel = nullptr);

} // namespace mms
