#pragma once

#include "sound/playercontrol.h"
#include "support/controls.h"

#include <QFileInfo>
#include <QPushButton>
#include <QStringList>

namespace mms::test {

// A player whose position the test sets; it records every command it is given.
class ScriptedPlayer final : public PlayerControl {
public:
    Status open(const QString& path) override {
        log << QStringLiteral("Open ") + QFileInfo(path).fileName();
        opened = openError.isEmpty();
        return opened ? Status::ok() : Status::failure(openError);
    }
    void close() override {
        record(QStringLiteral("Close"));
        opened = false;
    }
    Status play() override {
        log << QStringLiteral("Play %1-%2").arg(from).arg(to);
        from = to = -1;
        playing = true;
        return Status::ok();
    }
    void stop() override { record(QStringLiteral("Stop")); }
    void prev() override { seek(0); }
    void seek(qint64 ms) override {
        record(ms ? QStringLiteral("Seek %1").arg(ms) : QStringLiteral("Prev"));
        pos = ms;
    }
    void setFrom(qint64 ms) override { from = ms; }
    void setTo(qint64 ms) override { to = ms; }
    bool isOpen() const override { return opened; }
    bool isPlaying() const override { return playing; }
    qint64 position() const override { return pos; }
    qint64 length() const override { return opened ? 90000 : 0; }

    void reportAt(qint64 ms) {
        pos = ms;
        emit statusUpdate();
    }

    QStringList log;
    QString openError;
    bool opened = false, playing = false;
    qint64 pos = 0, from = -1, to = -1;

private:
    void record(const QString& command) { // every command but Play leaves the player stopped
        log << command;
        playing = false;
    }
};

// In a crop window: Mark in at one position, Mark out at another, as a user does.
inline void mark(QWidget& crop, ScriptedPlayer& player, qint64 inMs, qint64 outMs) {
    player.pos = inMs;
    ctl<QPushButton>(crop, "Command2")->click();
    player.pos = outMs;
    ctl<QPushButton>(crop, "Command3")->click();
}

} // namespace mms::test
