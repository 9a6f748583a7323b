// The fit conversion: the largest upright JPEG of a picture under a byte limit, found by searching
// the long side. JPEG size grows with the picture roughly as a power of its side; the power is
// measured from the trials either side of the limit, and each guess aims from the trial nearest the
// limit at the side whose JPEG would take exactly the limit. Near the end the bracket closes a pixel
// at a time; should a picture defy the model, plain halving takes over, which bounds the trials.

#include "image/picturefit.h"

#include "common/fileio.h"
#include "image/jpegwriter.h"
#include "image/uprightdecode.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cmath>
#include <optional>

namespace mms {

namespace {

// The largest side a JPEG can have (libjpeg's limit).
constexpr int kMaxJpegSide = 65500;
// At quality 35 a photograph takes at least a byte for about 24 pixels (fewer at a higher quality),
// so a decode of maxBytes * 24 pixels leaves room above the size sought; a flatter picture costs a
// second decode.
constexpr qint64 kPixelsPerByte = 24;

struct Trial {
    int longSide = 0;
    qint64 bytes = 0;
    QByteArray jpeg;
    QSize size;
};

class Fitter {
public:
    Fitter(const UprightPicture& picture, const QString& name, qint64 maxBytes,
           const std::atomic<bool>* cancel, int quality)
        : picture_(picture), name_(QDir::toNativeSeparators(name)), maxBytes_(maxBytes), cancel_(cancel),
          quality_(quality), full_(picture.size()), long_(qMax(full_.width(), full_.height())),
          short_(qMin(full_.width(), full_.height())) {}

    FitResult run();

private:
    QSize sizeFor(int longSide) const;
    int smallestLongSide() const;
    Status decodeFirst(int& guess);
    Status encodeAt(int longSide, Trial& trial);
    int nextGuess(int lo, int hi);

    FitResult noFit(const QString& why) const;

    const UprightPicture& picture_;
    const QString name_;
    const qint64 maxBytes_;
    const std::atomic<bool>* cancel_;
    const int quality_;
    const QSize full_;
    const int long_, short_;
    QImage decoded_;
    std::optional<Trial> fits_, tooBig_; // the nearest trials on either side of the limit
    double exponent_ = 2.0;              // bytes grow as the side to this power; area until measured
    int trials_ = 0;
};

QSize Fitter::sizeFor(int longSide) const {
    if (longSide >= long_) return full_;
    const int shortSide = qMax(1, qRound(double(short_) * longSide / long_));
    return full_.width() >= full_.height() ? QSize(longSide, shortSide) : QSize(shortSide, longSide);
}

// Below this the short side would round to 0: the shape could no longer be kept.
int Fitter::smallestLongSide() const {
    int side = qMax(1, int(std::ceil(double(long_) / (2.0 * short_))));
    while (side < long_ && qRound(double(short_) * side / long_) < 1)
        ++side;
    return side;
}

// Decodes at the smallest scale holding the pixels the limit may allow; that size is tried first.
Status Fitter::decodeFirst(int& guess) {
    const double budget = double(maxBytes_) * kPixelsPerByte;
    const double share = qMin(1.0, std::sqrt(budget / (double(long_) * short_)));
    if (Status s = picture_.decode(int(std::ceil(long_ * share)), decoded_); !s) return s;
    guess = qMax(decoded_.width(), decoded_.height());
    return Status::ok();
}

Status Fitter::encodeAt(int longSide, Trial& trial) {
    const QSize size = sizeFor(longSide);
    const int decodedLong = qMax(decoded_.width(), decoded_.height());
    if (decodedLong < longSide && decodedLong < long_)
        if (Status s = picture_.decode(longSide, decoded_); !s) return s;
    const QImage scaled = decoded_.size() == size
                              ? decoded_
                              : decoded_.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (scaled.isNull())
        return Status::failure(QStringLiteral("%1: out of memory while scaling the picture").arg(name_));
    trial.longSide = longSide;
    trial.size = size;
    if (Status s = encodeJpeg(scaled, quality_, trial.jpeg); !s)
        return Status::failure(QStringLiteral("%1: %2").arg(name_, s.message()));
    trial.bytes = trial.jpeg.size();
    return Status::ok();
}

int Fitter::nextGuess(int lo, int hi) {
    // Beyond the trials a good model needs, halving bounds the search.
    constexpr int kModelTrials = 8;
    if (++trials_ > kModelTrials && fits_ && tooBig_) return lo + (hi - lo) / 2;
    // Trials close together measure noise more than the power.
    if (fits_ && tooBig_ && tooBig_->longSide > fits_->longSide * 1.03) {
        const double measured = std::log(double(tooBig_->bytes) / double(fits_->bytes)) /
                                std::log(double(tooBig_->longSide) / double(fits_->longSide));
        if (std::isfinite(measured)) exponent_ = std::clamp(measured, 0.8, 3.0);
    }
    const auto distance = [this](const Trial& t) { return std::abs(std::log(double(t.bytes) / maxBytes_)); };
    // A fit this close to the limit is within the noise of a pixel's change: the next side decides.
    if (fits_ && distance(*fits_) < 0.004) return lo + 1;
    const Trial& from = !tooBig_ || (fits_ && distance(*fits_) < distance(*tooBig_)) ? *fits_ : *tooBig_;
    const double side = from.longSide * std::pow(double(maxBytes_) / double(from.bytes), 1.0 / exponent_);
    return int(std::clamp(std::floor(side), double(lo + 1), double(hi - 1)));
}

FitResult Fitter::noFit(const QString& why) const {
    FitResult result;
    result.outcome = FitResult::Outcome::NoFit;
    result.message = QStringLiteral("%1: %2").arg(name_, why);
    return result;
}

FitResult Fitter::run() {
    FitResult result;
    const int lmin = smallestLongSide();
    const int lmax = qMin(long_, kMaxJpegSide);
    if (lmin > lmax)
        return noFit(QStringLiteral("its shape cannot be kept within the largest JPEG side of %1 pixels")
                         .arg(kMaxJpegSide));
    int lo = lmin - 1; // largest side known to fit, or below the range
    int hi = lmax + 1; // smallest side known not to fit, or above the range
    int guess = 0;
    if (Status s = decodeFirst(guess); !s) {
        result.message = s.message();
        return result;
    }
    while (hi - lo > 1) {
        if (cancel_ && cancel_->load()) {
            result.outcome = FitResult::Outcome::Cancelled;
            return result;
        }
        Trial trial;
        if (Status s = encodeAt(qBound(lo + 1, guess, hi - 1), trial); !s) {
            result.message = s.message();
            return result;
        }
        (trial.bytes <= maxBytes_ ? lo : hi) = trial.longSide;
        (trial.bytes <= maxBytes_ ? fits_ : tooBig_) = std::move(trial);
        if (hi - lo > 1) guess = nextGuess(lo, hi);
    }
    if (!fits_) {
        const QSize smallest = sizeFor(lmin);
        return noFit(QStringLiteral("even at %1 by %2 pixels, the smallest size that keeps its shape, the "
                                    "picture takes %3 bytes as a JPEG; at most %4 are allowed")
                         .arg(smallest.width())
                         .arg(smallest.height())
                         .arg(tooBig_->bytes)
                         .arg(maxBytes_));
    }
    result.outcome = FitResult::Outcome::Fitted;
    result.jpeg = std::move(fits_->jpeg);
    result.size = fits_->size;
    return result;
}

} // namespace

FitResult fitPicture(const QByteArray& bytes, const QString& name, qint64 maxBytes,
                     const std::atomic<bool>* cancel, int quality) {
    UprightPicture picture;
    if (Status s = picture.open(bytes, name); !s) {
        FitResult failed;
        failed.message = s.message();
        return failed;
    }
    return Fitter(picture, name, maxBytes, cancel, quality).run();
}

FitResult fitPictureToLimit(const QString& source, qint64 maxBytes, const std::atomic<bool>* cancel,
                            int quality) {
    FitResult failed;
    const QString shown = QDir::toNativeSeparators(source);
    QFile file(source);
    if (!QFileInfo(source).isFile()) {
        failed.message = QStringLiteral("%1: no such file").arg(shown);
        return failed;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        failed.message = QStringLiteral("%1: %2").arg(shown, file.errorString());
        return failed;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        failed.message = QStringLiteral("%1: %2").arg(shown, file.errorString());
        return failed;
    }
    return fitPicture(bytes, source, maxBytes, cancel, quality);
}

FitResult fitPictureToFile(const QString& source, const QString& target, qint64 maxBytes,
                           const std::atomic<bool>* cancel, int quality) {
    FitResult result = fitPictureToLimit(source, maxBytes, cancel, quality);
    if (!result.fitted()) return result;
    if (Status written = fileio::writeFileSafely(target, result.jpeg); !written) {
        result.outcome = FitResult::Outcome::Failed;
        result.message = written.message();
    }
    return result;
}

} // namespace mms
