#include "sound/fluidsynthengine.h"

#include <QFileInfo>
#include <QStringList>
#include <algorithm>
#include <cstdio>
#include <fluidsynth.h>
#include <limits>
#include <mutex>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace mms {

QString soundfontPath(const QString& explicitPath) {
    if (!explicitPath.isEmpty()) return explicitPath;
    const QString fromEnv = qEnvironmentVariable("MMS_SOUNDFONT");
    if (!fromEnv.isEmpty()) return fromEnv;
    return QStringLiteral("/usr/share/sounds/sf2/FluidR3_GM.sf2");
}

void reportSilenceOnce(const QString& reason) {
    static std::mutex mutex;
    static QStringList said;
    std::lock_guard lock(mutex);
    if (said.contains(reason)) return;
    said << reason;
    std::fprintf(stderr, "No sound can be played: %s.\n", qPrintable(reason));
}

namespace {

// FluidSynth's log goes through one process-wide function. Errors are printed, lesser levels are
// dropped, and while a LogCapture is alive errors are collected instead so that they can become
// part of one clear reason.
std::mutex logMutex;
QString* logTarget = nullptr;

void fluidLog(int level, const char* message, void*) {
    if (level > FLUID_ERR) return;
    std::lock_guard lock(logMutex);
    if (logTarget) {
        if (!logTarget->isEmpty()) logTarget->append(QStringLiteral("; "));
        logTarget->append(QString::fromUtf8(message));
    } else {
        std::fprintf(stderr, "fluidsynth: %s\n", message);
    }
}

void installLog() {
    static std::once_flag once;
    std::call_once(once, [] {
        for (int level : {FLUID_PANIC, FLUID_ERR, FLUID_WARN, FLUID_INFO, FLUID_DBG})
            fluid_set_log_function(level, fluidLog, nullptr);
    });
}

class LogCapture {
public:
    LogCapture() {
        std::lock_guard lock(logMutex);
        logTarget = &text;
    }
    ~LogCapture() {
        std::lock_guard lock(logMutex);
        logTarget = nullptr;
    }
    Q_DISABLE_COPY_MOVE(LogCapture)
    QString text;
};

// Audio back ends print their own diagnostics while probing for a device (a machine without a
// sound card gets a dozen lines from ALSA). They are hidden while a driver is being opened; our
// own one-line reason replaces them.
class QuietStderr {
public:
    QuietStderr() {
#ifdef Q_OS_UNIX
        std::fflush(stderr);
        saved_ = ::dup(2);
        const int null = ::open("/dev/null", O_WRONLY);
        if (saved_ >= 0 && null >= 0) ::dup2(null, 2);
        if (null >= 0) ::close(null);
#endif
    }
    ~QuietStderr() {
#ifdef Q_OS_UNIX
        std::fflush(stderr);
        if (saved_ >= 0) {
            ::dup2(saved_, 2);
            ::close(saved_);
        }
#endif
    }
    Q_DISABLE_COPY_MOVE(QuietStderr)

private:
    int saved_ = -1;
};

} // namespace

LibraryInfo synthLibrary() {
    return {QStringLiteral("FluidSynth"), QString::fromLatin1(fluid_version_str()),
            QStringLiteral("GNU LGPL 2.1 or later")};
}

struct FluidSynthEngine::Impl {
    Output output;
    QString reason;
    fluid_settings_t* settings = nullptr;
    fluid_synth_t* synth = nullptr;
    fluid_player_t* player = nullptr;
    fluid_audio_driver_t* driver = nullptr;
    QByteArray tune;

    // A seek takes effect at the player's next audio callback; until then FluidSynth still reports
    // the tick it stood at before, which must not be mistaken for the new position.
    bool awaitingSeek = false;
    int staleTick = 0;
    qint64 seekTarget = 0;

    fluid_audio_driver_t* openDriver(QString* why) {
        LogCapture capture;
        fluid_audio_driver_t* d = nullptr;
        {
            QuietStderr quiet;
            d = new_fluid_audio_driver(settings, synth);
        }
        if (!d && why)
            *why = capture.text.isEmpty() ? QStringLiteral("no audio driver could be started") : capture.text;
        return d;
    }

    bool startTune() {
        player = new_fluid_player(synth);
        if (!player) return false;
        if (fluid_player_add_mem(player, tune.constData(), size_t(tune.size())) != FLUID_OK) {
            delete_fluid_player(player);
            player = nullptr;
            return false;
        }
        if (output == Output::AudioDevice) {
            driver = openDriver(nullptr);
            if (!driver) {
                delete_fluid_player(player);
                player = nullptr;
                return false;
            }
        }
        return true;
    }

    void releaseTune() {
        if (driver) delete_fluid_audio_driver(driver); // first: it renders through the player
        driver = nullptr;
        if (player) delete_fluid_player(player);
        player = nullptr;
        awaitingSeek = false;
    }
};

FluidSynthEngine::FluidSynthEngine(const QString& soundfont, Output output) : d_(std::make_unique<Impl>()) {
    installLog();
    d_->output = output;
    LogCapture capture;
    d_->settings = new_fluid_settings();
    if (d_->settings) {
        // Samples are read when a preset is first used, so opening the 140 MB soundfont is quick.
        fluid_settings_setint(d_->settings, "synth.dynamic-sample-loading", 1);
        fluid_settings_setnum(d_->settings, "synth.gain", 0.5);
        d_->synth = new_fluid_synth(d_->settings);
    }
    if (!d_->synth) {
        d_->reason = QStringLiteral("the FluidSynth synthesizer could not be created (%1)").arg(capture.text);
        return;
    }
    const QString path = soundfontPath(soundfont);
    if (!QFileInfo(path).isFile()) {
        d_->reason =
            QStringLiteral("no soundfont was found at %1 (install fluid-soundfont-gm or set MMS_SOUNDFONT)")
                .arg(path);
        return;
    }
    if (fluid_synth_sfload(d_->synth, QFile::encodeName(path).constData(), 1) == FLUID_FAILED) {
        d_->reason = QStringLiteral("the soundfont %1 could not be loaded (%2)").arg(path, capture.text);
        return;
    }
    if (output == Output::AudioDevice) {
        // Probe once, so a machine without sound says so before the first tune.
        QString why;
        fluid_audio_driver_t* probe = d_->openDriver(&why);
        if (!probe)
            d_->reason = QStringLiteral("no audio output could be opened (%1)").arg(why);
        else
            delete_fluid_audio_driver(probe);
    }
}

FluidSynthEngine::~FluidSynthEngine() {
    d_->releaseTune();
    if (d_->synth) delete_fluid_synth(d_->synth);
    if (d_->settings) delete_fluid_settings(d_->settings);
}

QString FluidSynthEngine::unavailableReason() const {
    return d_->reason;
}

bool FluidSynthEngine::load(const QByteArray& midi) {
    d_->releaseTune();
    d_->tune.clear();
    if (!d_->reason.isEmpty() || midi.isEmpty()) return false;
    d_->tune = midi;
    return d_->startTune();
}

bool FluidSynthEngine::play(qint64 fromTick) {
    if (!d_->player) return false;
    const int tick = int(std::clamp<qint64>(fromTick, 0, std::numeric_limits<int>::max()));
    if (fluid_player_seek(d_->player, tick) != FLUID_OK) {
        // A seek is still pending from a play a moment ago: start over with a fresh player.
        d_->releaseTune();
        if (!d_->startTune() || fluid_player_seek(d_->player, tick) != FLUID_OK) return false;
    }
    d_->staleTick = fluid_player_get_current_tick(d_->player);
    d_->seekTarget = tick;
    d_->awaitingSeek = true;
    return fluid_player_play(d_->player) == FLUID_OK;
}

void FluidSynthEngine::stop() {
    if (!d_->player) return;
    fluid_player_stop(d_->player);
    fluid_synth_all_notes_off(d_->synth, -1);
}

std::optional<qint64> FluidSynthEngine::currentTick() {
    if (!d_->player) return std::nullopt;
    // A tune FluidSynth could not read ends at once; the caller then keeps time by itself.
    if (fluid_player_get_status(d_->player) == FLUID_PLAYER_DONE && d_->awaitingSeek) return std::nullopt;
    const int tick = fluid_player_get_current_tick(d_->player);
    if (d_->awaitingSeek) {
        if (tick == d_->staleTick) return d_->seekTarget;
        d_->awaitingSeek = false;
    }
    return tick;
}

void FluidSynthEngine::unload() {
    d_->releaseTune();
    d_->tune.clear();
}

bool FluidSynthEngine::render(float* left, float* right, int frames) {
    if (d_->output != Output::Offline || !d_->synth || frames <= 0) return false;
    return fluid_synth_write_float(d_->synth, frames, left, 0, 1, right, 0, 1) == FLUID_OK;
}

} // namespace mms
