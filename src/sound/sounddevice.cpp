#include "sound/sounddevice.h"

#include "common/mediakind.h"
#include "sound/amrdecoder.h"
#include "sound/fluidsynthdevice.h"
#include "sound/synthengine.h"

#include <QRegularExpression>

namespace mms {

SoundDevice::SoundDevice() : SoundDevice(std::make_unique<FluidSynthDevice>(), makeSystemPcmOutput()) {}

SoundDevice::SoundDevice(std::unique_ptr<MultimediaDevice> midi, std::unique_ptr<PcmOutput> pcm)
    : midi_(std::move(midi)), pcm_(std::move(pcm)) {
    midi_->setNotifyHandler([this](Notify how) { notify(how); });
}

SoundDevice::~SoundDevice() {
    pcm_->stop();
    midi_->setNotifyHandler({});
}

int SoundDevice::sendString(const QString& command) {
    static const QRegularExpression openCommand(QStringLiteral("\\Aopen \"([^\"]+)\" Alias music\\z"));
    const QRegularExpressionMatch match = openCommand.match(command);
    if (!match.hasMatch()) {
        if (open_ == Open::Amr) return sendAmr(command);
        const int result = midi_->sendString(command);
        if (command == QLatin1String("close music")) open_ = Open::None;
        return result;
    }
    if (open_ != Open::None) return kAlreadyOpen;
    const QString path = match.captured(1);
    if (mediaKindOf(path) == MediaKind::Midi) {
        const int result = midi_->sendString(command);
        if (result == kOk) open_ = Open::Midi;
        return result;
    }
    if (const QString reason = pcm_->unavailableReason(); !reason.isEmpty()) {
        reportSilenceOnce(reason);
        return kNoSound;
    }
    if (!decodeAmrFile(path, samples_)) return kCannotOpen;
    open_ = Open::Amr;
    return kOk;
}

int SoundDevice::sendAmr(const QString& command) {
    if (command == QLatin1String("play music from 0 notify")) {
        endPending(Notify::Superseded);
        if (!pcm_->start(samples_, kAmrSampleRate, [this] {
                notifyPending_ = false;
                notify(Notify::Successful);
            }))
            return kNoSound;
        notifyPending_ = true;
        return kOk;
    }
    if (command == QLatin1String("pause music")) {
        pcm_->pause();
        return kOk;
    }
    if (command == QLatin1String("resume music")) {
        pcm_->resume();
        return kOk;
    }
    if (command == QLatin1String("stop music") || command == QLatin1String("close music")) {
        pcm_->stop();
        endPending(Notify::Aborted);
        if (command == QLatin1String("close music")) {
            open_ = Open::None;
            samples_.clear();
        }
        return kOk;
    }
    return kUnknownCommand;
}

void SoundDevice::endPending(Notify how) {
    if (!notifyPending_) return;
    notifyPending_ = false;
    notify(how);
}

} // namespace mms
