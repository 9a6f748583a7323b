#include "sound/sounddevice.h"

#include "common/mediakind.h"

#include "sound/amrdecoder.h"
#include "sound/fluidsynthdevice.h"
#include "sound/synthengine.h"

namespace mms {

SoundDevice::SoundDevice() : SoundDevice(std::make_unique<FluidSynthDevice>(), makeSystemPcmOutput()) {}

SoundDevice::SoundDevice(std::unique_ptr<MultimediaDevice> midi, std::unique_ptr<PcmOutput> pcm)
    : midi_(std::move(midi)), pcm_(std::move(pcm)) {
    connect(midi_.get(), &MultimediaDevice::playbackEnded, this, &MultimediaDevice::playbackEnded);
}

SoundDevice::~SoundDevice() {
    pcm_->stop();
    midi_->disconnect(this);
}

MultimediaDevice::Result SoundDevice::open(const QString& path) {
    if (open_ != Open::None) return Result::AlreadyOpen;
    if (mediaKindOf(path) == MediaKind::Midi) {
        const Result result = midi_->open(path);
        if (result == Result::Ok) open_ = Open::Midi;
        return result;
    }
    if (const QString reason = pcm_->unavailableReason(); !reason.isEmpty()) {
        reportSilenceOnce(reason);
        return Result::NoSound;
    }
    if (!decodeAmrFile(path, samples_)) return Result::CannotOpen;
    open_ = Open::Amr;
    amrPositionMs_ = 0;
    return Result::Ok;
}

// Anything but an open AMR sound is the MIDI device's to answer.
MultimediaDevice::Result SoundDevice::play() {
    if (open_ != Open::Amr) return midi_->play();
    endPending(Notify::Superseded);
    amrPositionMs_ = 0;
    if (!pcm_->start(samples_, kAmrSampleRate, [this] {
            notifyPending_ = false;
            amrPositionMs_ = qint64(samples_.size()) * 1000 / kAmrSampleRate;
            emit playbackEnded(Notify::Successful);
        }))
        return Result::NoSound;
    notifyPending_ = true;
    return Result::Ok;
}

void SoundDevice::pause() {
    if (open_ == Open::Amr)
        pcm_->pause();
    else
        midi_->pause();
}

void SoundDevice::resume() {
    if (open_ == Open::Amr)
        pcm_->resume();
    else
        midi_->resume();
}

void SoundDevice::stop() {
    if (open_ != Open::Amr) {
        midi_->stop();
        return;
    }
    amrPositionMs_ = position();
    pcm_->stop();
    endPending(Notify::Aborted);
}

void SoundDevice::close() {
    if (open_ == Open::Amr) {
        pcm_->stop();
        endPending(Notify::Aborted);
        samples_.clear();
    } else {
        midi_->close();
    }
    open_ = Open::None;
    amrPositionMs_ = 0;
}

qint64 SoundDevice::position() const {
    switch (open_) {
    case Open::None:
        return 0;
    case Open::Midi:
        return midi_->position();
    case Open::Amr:
        return notifyPending_ ? pcm_->positionMs() : amrPositionMs_;
    }
    return 0;
}

void SoundDevice::endPending(Notify how) {
    if (!notifyPending_) return;
    notifyPending_ = false;
    emit playbackEnded(how);
}

} // namespace mms
