#pragma once

#include "model/status.h"

#include <QObject>
#include <QString>

namespace mms {

// A media player control in the manner of a multimedia control: a tune is opened, played from and
// to points in milliseconds, stopped and rewound, and while it is open the control sends a status
// update at a fixed interval on the GUI thread. The crop window works only through this interface,
// so tests can script the player.
class PlayerControl : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // "Open": opens the tune at `path`. A file that cannot be read as MIDI fails with a message.
    virtual Status open(const QString& path) = 0;
    // "Close": closes the tune; position and length become 0.
    virtual void close() = 0;
    // "Play": plays from `From` (or the current position) to `To` (or the end). From and To apply
    // to this one command and are cleared by it.
    virtual Status play() = 0;
    // "Stop": stops where the tune is; the position stays.
    virtual void stop() = 0;
    // "Prev": stops and goes back to the beginning.
    virtual void prev() = 0;
    // "Seek": stops and moves to `ms` (kept within the tune).
    virtual void seek(qint64 ms) = 0;

    virtual void setFrom(qint64 ms) = 0;
    virtual void setTo(qint64 ms) = 0;

    virtual bool isOpen() const = 0;
    virtual bool isPlaying() const = 0;
    // Milliseconds.
    virtual qint64 position() const = 0;
    virtual qint64 length() const = 0;

signals:
    // Sent every update interval while a tune is open.
    void statusUpdate();
    // Sent when a play reaches its end point (the To position or the end of the tune).
    void finished();
};

} // namespace mms
