#pragma once

#include "image/picturefit.h"

#include <QObject>
#include <QThreadPool>
#include <functional>
#include <memory>

namespace mms {

// Runs one fit conversion at a time off the owner's thread (fitPictureToFile, or shrinkGifToFile for
// a GIF) and reports its result on the owner's thread. cancel() drops the one under way: it stops
// at its next trial and reports nothing more.
class FitTask final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FitTask)

public:
    explicit FitTask(QObject* parent = nullptr);
    ~FitTask() override;

    void start(const QString& source, const QString& target, qint64 maxBytes = kFitMaxBytes,
               int quality = kJpegQuality);
    // The result's jpeg stays empty: the GIF is in target.
    void startGif(const QString& source, const QString& target, qint64 maxBytes = kFitMaxBytes);
    void cancel();
    bool isRunning() const { return running_; }
    // Whether any fit, a cancelled one too, still works or has its outcome on the way: until then
    // a cancelled fit may still write its target.
    bool isWorking() const { return working_ > 0; }

signals:
    void finished(const mms::FitResult& result, const QString& target);

private:
    using Job = std::function<FitResult(const std::atomic<bool>* cancel)>;
    void run(Job job, const QString& target);

    QThreadPool pool_;
    std::shared_ptr<std::atomic<bool>> cancelled_;
    quint64 generation_ = 0;
    bool running_ = false;
    int working_ = 0;
};

} // namespace mms
