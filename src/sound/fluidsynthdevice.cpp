#include "sound/fluidsynthdevice.h"

#include "sound/fluidsynthengine.h"
#include "sound/midiplayer.h"

#include <QRegularExpression>
#include <QStringList>
#include <functional>

namespace mms {

namespace {

const QString kPlay = QStringLiteral("play music from 0 notify");
const QString kStop = QStringLiteral("stop music");
const QString kClose = QStringLiteral("close music");
const QString kPause = QStringLiteral("pause music");
const QString kResume = QStringLiteral("resume music");

} // namespace

struct FluidSynthDevice::Impl {
    // The engine is made on first use, so a composer that never previews never opens the audio output.
    std::function<std::unique_ptr<SynthEngine>()> makeEngine;
    std::unique_ptr<ElapsedClock> clock;
    std::unique_ptr<MidiPlayer> player;
    bool isOpen = false;
    bool notifyPending = false; // a "play ... notify" whose outcome is still to be reported
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

int FluidSynthDevice::sendString(const QString& command) {
    static const QRegularExpression openCommand(QStringLiteral("\\Aopen \"([^\"]+)\" Alias music\\z"));
    const QRegularExpressionMatch open = openCommand.match(command);
    static const QStringList kCommands{kPlay, kStop, kClose, kPause, kResume};
    if (!open.hasMatch() && !kCommands.contains(command)) return kUnknownCommand;

    Impl& d = *impl_;
    if (!d.player) {
        d.player = std::make_unique<MidiPlayer>(d.makeEngine(), std::move(d.clock));
        // The player's timer runs on this thread, so the notification reaches the GUI thread.
        QObject::connect(d.player.get(), &PlayerControl::finished, d.player.get(), [this] {
            if (!impl_->notifyPending) return;
            impl_->notifyPending = false;
            notify(Notify::Successful);
        });
    }
    if (const QString reason = d.player->unavailableReason(); !reason.isEmpty()) {
        reportSilenceOnce(reason);
        return kNoSound;
    }

    if (open.hasMatch()) {
        if (d.isOpen) return kAlreadyOpen;
        if (!d.player->open(open.captured(1))) return kCannotOpen;
        if (!d.player->isAudible()) {
            d.player->close(); // a tune that cannot be heard is not played on the clock here
            return kNoSound;
        }
        d.isOpen = true;
        return kOk;
    }
    if (!d.isOpen) return kNotOpen;
    return controlOpenTune(command);
}

int FluidSynthDevice::controlOpenTune(const QString& command) {
    Impl& d = *impl_;
    if (command == kPlay) {
        endPending(Notify::Superseded);
        d.player->setFrom(0);
        if (!d.player->play() || !d.player->isAudible()) {
            d.player->stop();
            return kNoSound;
        }
        d.notifyPending = true;
        return kOk;
    }
    // A paused tune keeps its place and its pending notification.
    if (command == kPause) {
        d.player->stop();
        return kOk;
    }
    if (command == kResume) {
        if (!d.notifyPending || d.player->isPlaying()) return kOk;
        return d.player->play() ? kOk : kNoSound;
    }
    if (command == kStop) {
        d.player->stop();
        endPending(Notify::Aborted);
        return kOk;
    }
    d.player->close();
    d.isOpen = false;
    endPending(Notify::Aborted);
    return kOk;
}

// A pending notification is answered before a command takes effect, as the old play ends there.
void FluidSynthDevice::endPending(Notify how) {
    if (!impl_->notifyPending) return;
    impl_->notifyPending = false;
    notify(how);
}

} // namespace mms
