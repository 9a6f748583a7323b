// The system audio output: Qt Multimedia's QAudioSink pulling from an in-memory buffer.

#include "sound/pcmoutput.h"

#include <QAudioDevice>
#include <QAudioSink>
#include <QBuffer>
#include <QMediaDevices>

namespace mms {

namespace {

class QtPcmOutput final : public PcmOutput {
public:
    QtPcmOutput() = default;
    ~QtPcmOutput() override {
        if (!sink_) return;
        sink_->disconnect();
        sink_->stop();
        delete sink_;
    }
    Q_DISABLE_COPY_MOVE(QtPcmOutput)

    QString unavailableReason() override {
        if (QMediaDevices::defaultAudioOutput().isNull()) return QStringLiteral("no audio output was found");
        return {};
    }

    bool start(std::vector<qint16> samples, int sampleRate, std::function<void()> finished) override {
        stop();
        const QAudioDevice device = QMediaDevices::defaultAudioOutput();
        if (device.isNull()) return false;
        QAudioFormat format;
        format.setSampleRate(sampleRate);
        format.setChannelCount(1);
        format.setSampleFormat(QAudioFormat::Int16);
        sink_ = new QAudioSink(device, format);
        // The buffer belongs to the sink, so both go together whenever the sink is deleted.
        auto* buffer = new QBuffer(sink_);
        buffer->setData(reinterpret_cast<const char*>(samples.data()),
                        qsizetype(samples.size() * sizeof(qint16)));
        buffer->open(QIODevice::ReadOnly);
        finished_ = std::move(finished);
        // The sink turns idle when the buffer has run dry: the sound has been heard to its end. A sink
        // that stops on an error (the output went away) has ended as well.
        QObject::connect(sink_, &QAudioSink::stateChanged, sink_, [this, buffer](QAudio::State state) {
            const bool heard = state == QAudio::IdleState && buffer->atEnd();
            const bool failed = state == QAudio::StoppedState && sink_->error() != QAudio::NoError;
            if (starting_ || (!heard && !failed)) return; // a failed start is answered by start()
            auto done = std::move(finished_);
            stop();
            if (done) done();
        });
        starting_ = true;
        sink_->start(buffer);
        starting_ = false;
        if (sink_->error() != QAudio::NoError) {
            stop();
            return false;
        }
        return true;
    }

    void pause() override {
        if (sink_) sink_->suspend();
    }
    void resume() override {
        if (sink_) sink_->resume();
    }

    void stop() override {
        finished_ = nullptr;
        if (!sink_) return;
        sink_->disconnect();
        sink_->stop();
        // Deleted later: stop() may run inside the sink's own state signal.
        sink_->deleteLater();
        sink_ = nullptr;
    }

    qint64 positionMs() const override { return sink_ ? sink_->processedUSecs() / 1000 : 0; }

private:
    QAudioSink* sink_ = nullptr;
    bool starting_ = false;
    std::function<void()> finished_;
};

} // namespace

std::unique_ptr<PcmOutput> makeSystemPcmOutput() {
    return std::make_unique<QtPcmOutput>();
}

} // namespace mms
