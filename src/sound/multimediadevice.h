#pragma once

#include <QObject>
#include <QString>

namespace mms {

// The preview's multimedia device: it holds one sound at a time, opened by its path (any path:
// quotes, spaces and non-ASCII names alike), and reports through playbackEnded() how a play ended.
// The report is delivered on the GUI thread.
class MultimediaDevice : public QObject {
    Q_OBJECT
public:
    // How a play ended. Successful: it was heard to its end. Superseded: another play replaced it.
    // Aborted: stop() or close() ended it. Failure: the device could not go on.
    enum class Notify { Successful, Superseded, Aborted, Failure };
    Q_ENUM(Notify)
    // Answers of open() and play(). NoSound: nothing can be heard at all (no audio output, no
    // soundfont); CannotOpen: this file cannot be played; NotOpen: play() with nothing open;
    // AlreadyOpen: open() while a sound is still open (close it first).
    enum class Result { Ok, NoSound, NotOpen, AlreadyOpen, CannotOpen };
    Q_ENUM(Result)

    using QObject::QObject;

    // Opens the sound at `path`; nothing is heard until play().
    virtual Result open(const QString& path) = 0;
    // Plays the open sound from its start; its end is reported by playbackEnded(). A play still
    // running is reported Superseded first.
    virtual Result play() = 0;
    // Holds the sound where it is; resume() goes on from there. A paused play is still pending.
    virtual void pause() = 0;
    virtual void resume() = 0;
    // Stops the sound (a pending play is reported Aborted); it stays open.
    virtual void stop() = 0;
    // Stops and closes the sound (a pending play is reported Aborted). Nothing open: nothing happens.
    virtual void close() = 0;
    // Milliseconds into the open sound; 0 when nothing is open.
    virtual qint64 position() const = 0;
    virtual bool isOpen() const = 0;

signals:
    // How the last play() ended; sent once per play.
    void playbackEnded(mms::MultimediaDevice::Notify how);
};

} // namespace mms
