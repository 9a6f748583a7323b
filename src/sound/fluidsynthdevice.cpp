#include "sound/fluidsynthdevice.h"

#include "sound/fluidsynthengine.h"
#include "sound/midiplayer.h"

#include <functional>

namespace mms {

struct FluidSynthDevice::Impl {
    // The engine is made on first use, so a composer that never previews never opens the audio output.
    std::function<std::unique_ptr<SynthEngine>()> makeEngine;
    std::unique_ptr<ElapsedClock> clock;
    std::unique_ptr<MidiPlayer> player;
    bool isOpen = false;
    bool notifyPending = false; // a play whose outcome is still to be reported
};

FluidSynthDevice::FluidSynthDevice(const QString& soundfont) : impl_(std::make_unique<Impl>()) {
    impl_->makeEngine = [soundfont] { return std::make_unique<FluidSynthEngine>(soundfont); };
    impl_->clock = std::make_unique<SteadyClock>();
}

FluidSynthDevice::FluidSynthDevice(std::unique_ptr<SynthEngine> engine, std::unique_ptr<ElapsedClock> clock)
    : impl_(std::make_unique<Impl>()) {
    auto shared = std::make_shared<std::unique_ptr<SynthEngine>>(std::move(engine));
    impl_->makeEngine = [shared] { return std::move(*shared); };
    impl_->clock = std::move(clock);
}

FluidSynthDevice::~FluidSynthDevice() = default; // the player stops its tune; no notification is sent

void FluidSynthDevice::makePlayer() {
    Impl& d = *impl_;
    if (d.player) return;
    d.player = std::make_unique<MidiPlayer>(d.makeEngine(), std::move(d.clock));
    // The player's timer runs on this thread, so the notification reaches the GUI thread.
    QObject::connect(d.player.get(), &PlayerControl::finished, d.player.get(), [this] {
        if (!impl_->notifyPending) return;
        impl_->notifyPending = false;
        emit playbackEnded(Notify::Successful);
    });
}

MultimediaDevice::Result FluidSynthDevice::open(const QString& path) {
    makePlayer();
    Impl& d = *impl_;
    if (const QString reason = d.player->unavailableReason(); !reason.isEmpty()) {
        reportSilenceOnce(reason);
        return Result::NoSound;
    }
    if (d.isOpen) return Result::AlreadyOpen;
    if (!d.player->open(path)) return Result::CannotOpen;
    if (!d.player->isAudible()) {
        d.player->close(); // a tune that cannot be heard is not played on the clock here
        return Result::NoSound;
    }
    d.isOpen = true;
    return Result::Ok;
}

MultimediaDevice::Result FluidSynthDevice::play() {
    Impl& d = *impl_;
    if (!d.isOpen) return Result::NotOpen;
    endPending(Notify::Superseded);
    d.player->setFrom(0);
    if (!d.player->play() || !d.player->isAudible()) {
        d.player->stop();
        return Result::NoSound;
    }
    d.notifyPending = true;
    return Result::Ok;
}

// A paused tune keeps its place and its pending notification.
void FluidSynthDevice::pause() {
    if (impl_->isOpen) impl_->player->stop();
}

void FluidSynthDevice::resume() {
    Impl& d = *impl_;
    if (!d.isOpen || !d.notifyPending || d.player->isPlaying()) return;
    (void)d.player->play(); // it goes on from where it was paused, which lies within the tune
}

void FluidSynthDevice::stop() {
    if (!impl_->isOpen) return;
    impl_->player->stop();
    endPending(Notify::Aborted);
}

void FluidSynthDevice::close() {
    Impl& d = *impl_;
    if (!d.isOpen) return;
    d.player->close();
    d.isOpen = false;
    endPending(Notify::Aborted);
}

qint64 FluidSynthDevice::position() const {
    return impl_->isOpen ? impl_->player->position() : 0;
}

bool FluidSynthDevice::isOpen() const {
    return impl_->isOpen;
}

// A pending notification is answered before a call takes effect, as the old play ends there.
void FluidSynthDevice::endPending(Notify how) {
    if (!impl_->notifyPending) return;
    impl_->notifyPending = false;
    emit playbackEnded(how);
}

} // namespace mms
