#include "image/fittask.h"

#include "image/gifshrink.h"

namespace mms {

FitTask::FitTask(QObject* parent) : QObject(parent) {
    pool_.setMaxThreadCount(1);
}

FitTask::~FitTask() {
    cancel();
    // A cancelled fit stops at its next trial; it refers to this object until then.
    pool_.waitForDone();
}

void FitTask::start(const QString& source, const QString& target, qint64 maxBytes, int quality) {
    run(
        [=](const std::atomic<bool>* cancel) {
            return fitPictureToFile(source, target, maxBytes, cancel, quality);
        },
        target);
}

void FitTask::startGif(const QString& source, const QString& target, qint64 maxBytes) {
    run(
        [=](const std::atomic<bool>* cancel) {
            const GifShrink gif = shrinkGifToFile(source, target, maxBytes, cancel);
            FitResult result;
            result.outcome = gif.outcome;
            result.size = gif.size;
            result.message = gif.message;
            return result;
        },
        target);
}

void FitTask::run(Job job, const QString& target) {
    cancel();
    auto cancelled = std::make_shared<std::atomic<bool>>(false);
    cancelled_ = cancelled;
    running_ = true;
    ++working_;
    const quint64 generation = ++generation_;
    pool_.start([this, cancelled, generation, job = std::move(job), target] {
        FitResult result = job(cancelled.get());
        QMetaObject::invokeMethod(
            this,
            [this, generation, target, result = std::move(result)] {
                --working_;
                // A fit cancelled or replaced since reports nothing.
                if (generation != generation_ || !running_) return;
                running_ = false;
                emit finished(result, target);
            },
            Qt::QueuedConnection);
    });
}

void FitTask::cancel() {
    if (cancelled_) *cancelled_ = true;
    cancelled_.reset();
    running_ = false;
}

} // namespace mms
