#pragma once

#include "sound/multimediadevice.h"

#include <QHash>
#include <QStringList>

namespace mms::test {

// Records every call as a line ("open PATH", "play", "pause", "resume", "stop", "close"), answers
// open() and play() from `resultFor` (by that line; `result` for the rest) and lets the test report
// how a playback ended, from any thread.
class RecordingDevice final : public MultimediaDevice {
public:
    Result open(const QString& path) override {
        const Result r = answer(QStringLiteral("open ") + path);
        open_ = open_ || r == Result::Ok;
        return r;
    }
    Result play() override { return answer(QStringLiteral("play")); }
    void pause() override { calls << QStringLiteral("pause"); }
    void resume() override { calls << QStringLiteral("resume"); }
    void stop() override { calls << QStringLiteral("stop"); }
    void close() override {
        calls << QStringLiteral("close");
        open_ = false;
    }
    qint64 position() const override { return open_ ? positionMs : 0; }
    bool isOpen() const override { return open_; }
    void emitPlaybackEnded(Notify how) { emit playbackEnded(how); }

    QStringList calls;
    Result result = Result::Ok;
    QHash<QString, Result> resultFor;
    qint64 positionMs = 0;

private:
    Result answer(const QString& call) {
        calls << call;
        return resultFor.value(call, result);
    }
    bool open_ = false;
};

} // namespace mms::test
