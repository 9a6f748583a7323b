#pragma once

#include <QString>
#include <functional>

namespace mms {

// The preview's multimedia device: it takes command strings ("open \"PATH\" Alias music",
// "play music from 0 notify", "pause music", "resume music", "stop music", "close music") and
// reports how a playback started with "notify" ended. Notifications are delivered on the thread
// that owns the GUI.
class MultimediaDevice {
public:
    enum class Notify { Successful, Superseded, Aborted, Failure };
    using NotifyHandler = std::function<void(Notify)>;
    // Results of sendString. kNoSound: nothing can be heard at all (no audio output, no soundfont);
    // kCannotOpen: this file cannot be played.
    enum Result : int { kOk = 0, kUnknownCommand, kNoSound, kNotOpen, kAlreadyOpen, kCannotOpen };

    virtual ~MultimediaDevice() = default;
    // Runs one command; 0 on success, non-zero otherwise (callers ignore it).
    virtual int sendString(const QString& command) = 0;
    void setNotifyHandler(NotifyHandler handler) { handler_ = std::move(handler); }

protected:
    void notify(Notify result) {
        if (handler_) handler_(result);
    }

private:
    NotifyHandler handler_;
};

} // namespace mms
