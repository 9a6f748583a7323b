#include "sound/midiplayer.h"

#include "sound/fluidsynthengine.h"

#include <QDir>
#include <QFile>
#include <algorithm>

namespace mms {

namespace {

constexpr int kDefaultUpdateInterval = 50;
constexpr qint64 kMaxTuneBytes = 16 * 1024 * 1024; // far beyond any tune; guards against reading a huge file

Status readTune(const QString& path, QByteArray& bytes) {
    const QString shown = QDir::toNativeSeparators(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Status::failure(QStringLiteral("%1: %2").arg(shown, file.errorString()));
    if (file.size() > kMaxTuneBytes)
        return Status::failure(QStringLiteral("%1: the file is too large to be a MIDI tune.").arg(shown));
    bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return Status::failure(QStringLiteral("%1: %2").arg(shown, file.errorString()));
    return Status::ok();
}

} // namespace

MidiPlayer::MidiPlayer(QObject* parent)
    : MidiPlayer(std::make_unique<FluidSynthEngine>(), std::make_unique<SteadyClock>(), parent) {}

MidiPlayer::MidiPlayer(std::unique_ptr<SynthEngine> engine, std::unique_ptr<ElapsedClock> clock,
                       QObject* parent)
    : PlayerControl(parent), engine_(std::move(engine)), clock_(std::move(clock)) {
    statusTimer_.setInterval(kDefaultUpdateInterval);
    connect(&statusTimer_, &QTimer::timeout, this, &MidiPlayer::poll);
    endTimer_.setSingleShot(true);
    endTimer_.setTimerType(Qt::PreciseTimer);
    connect(&endTimer_, &QTimer::timeout, this, &MidiPlayer::checkEnd);
}

MidiPlayer::~MidiPlayer() {
    close();
}

Status MidiPlayer::open(const QString& path) {
    close();
    QByteArray bytes;
    if (Status s = readTune(path, bytes); !s) return s;
    TempoMap map;
    if (Status s = TempoMap::parse(bytes, map); !s)
        return Status::failure(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), s.message()));

    tempo_ = std::move(map);
    length_ = qRound64(tempo_.lengthMs());
    posMs_ = 0;
    open_ = true;
    const QString reason = engine_->unavailableReason();
    audible_ = reason.isEmpty() && engine_->load(bytes);
    if (!audible_) {
        reportSilenceOnce(
            reason.isEmpty()
                ? QStringLiteral("the synthesizer could not read %1").arg(QDir::toNativeSeparators(path))
                : reason);
    }
    statusTimer_.start();
    return Status::ok();
}

void MidiPlayer::close() {
    if (!open_) return;
    stop();
    engine_->unload();
    statusTimer_.stop();
    endTimer_.stop();
    open_ = audible_ = false;
    length_ = posMs_ = 0;
    from_.reset();
    to_.reset();
}

Status MidiPlayer::play() {
    if (!open_) return Status::failure(QStringLiteral("No tune is open."));
    const qint64 start = std::clamp<qint64>(from_.value_or(position()), 0, length_);
    const qint64 end = std::clamp<qint64>(to_.value_or(length_), 0, length_);
    from_.reset();
    to_.reset();
    if (end < start) return Status::failure(QStringLiteral("The end of the stretch lies before its start."));

    if (playing_) engine_->stop();
    startMs_ = posMs_ = start;
    stopMs_ = end;
    clockStart_ = clock_->msecs();
    playing_ = true;
    if (audible_ && !engine_->play(tempo_.tickAt(double(start)))) {
        audible_ = false; // the clock takes over; the stretch still runs its course
        reportSilenceOnce(QStringLiteral("the synthesizer could not start the tune"));
    }
    scheduleEndCheck();
    return Status::ok();
}

void MidiPlayer::stop() {
    if (!playing_) return;
    posMs_ = position();
    playing_ = false;
    engine_->stop();
    endTimer_.stop();
}

void MidiPlayer::prev() {
    seek(0);
}

void MidiPlayer::seek(qint64 ms) {
    stop();
    posMs_ = std::clamp<qint64>(ms, 0, length_);
}

double MidiPlayer::playedMs() const {
    if (audible_) {
        // Never before the start: right after a start the engine may still report an earlier tick.
        if (const auto tick = engine_->currentTick()) return std::max(double(startMs_), tempo_.msAt(*tick));
    }
    return double(startMs_ + (clock_->msecs() - clockStart_));
}

qint64 MidiPlayer::position() const {
    if (!playing_) return posMs_;
    return std::clamp<qint64>(qRound64(playedMs()), startMs_, stopMs_);
}

void MidiPlayer::poll() {
    if (!open_) return;
    checkEnd();
    if (!open_) return; // a listener of finished() closed the tune
    emit statusUpdate();
}

void MidiPlayer::checkEnd() {
    if (!playing_) return;
    if (qRound64(playedMs()) < stopMs_) {
        scheduleEndCheck();
        return;
    }
    // The end point is reported exactly, so a listener comparing Position with it sees the match.
    engine_->stop();
    endTimer_.stop();
    playing_ = false;
    posMs_ = stopMs_;
    emit finished();
}

void MidiPlayer::scheduleEndCheck() {
    const qint64 left = stopMs_ - position();
    if (left < statusTimer_.interval() && !endTimer_.isActive())
        endTimer_.start(int(std::max<qint64>(left, 0)));
}

} // namespace mms
