#pragma once

#include "composer/phonescreen.h"
#include "model/clockrandom.h"

#include <QDateTime>
#include <QStringList>
#include <vector>

namespace mms {

class CSlide;
class MultimediaDevice;
struct LoadedSlide;

// One slide as the show plays it.
struct ShowSlide {
    ScreenSlide screen;
    QString soundPath;
    int seconds = 0;
};

// The slides of a message in order. A duration that is not a number of seconds counts 0.
std::vector<ShowSlide> showSlides(const CSlide& message);
std::vector<ShowSlide> showSlides(const std::vector<LoadedSlide>& message);

// The message played slide after slide, as a phone shows it: each slide stays for its duration,
// its sound starts with it and is stopped when it ends (a shorter sound is not repeated). Time
// comes from the clock; nothing happens between calls, so its owner calls tick() often (a timer,
// or a test after moving its clock). Sounds go to the multimedia device, one at a time;
// a sound the device cannot play is skipped and listed, and when the device has no audio output at
// all the show goes on silently and says so through silent().
class SlideShow {
public:
    SlideShow(std::vector<ShowSlide> slides, const Clock& clock, MultimediaDevice& device);
    // Stops the sound of the slide being shown.
    ~SlideShow();
    SlideShow(const SlideShow&) = delete;
    SlideShow& operator=(const SlideShow&) = delete;

    int count() const { return int(slides_.size()); }
    // 0-based; the last slide stays current once the show has ended.
    int current() const { return current_; }
    const ShowSlide& slide() const { return slides_.at(std::size_t(current_)); }
    bool isPaused() const { return paused_; }
    bool isFinished() const { return finished_; }
    // Milliseconds until the current slide ends, as the clock reads now.
    qint64 msLeft() const;

    // Plays slide `index` (kept within the show) from its start; a paused show plays on.
    void show(int index);
    // Ends the current slide now; after the last one the show ends.
    void next();
    // Plays the previous slide (the first from its start again).
    void previous();
    void restart() { show(0); }
    // Holds the slide and its sound, or goes on; an ended show starts again.
    void togglePause();
    // Ends the show at once (the window closes); its sound stops.
    void stop();
    // Ends every slide whose time is up, as many as the clock has passed (a slide of 0 seconds at
    // once, its sound never started). True when the slide shown changed or the show ended.
    bool tick();

    // True once a sound could not be heard because nothing can be heard at all.
    bool isSilent() const { return silent_; }
    // The file names of sounds that could not be played, each once, in the order met.
    const QStringList& failedSounds() const { return failed_; }

private:
    qint64 elapsed() const;
    void startSound();
    void stopSound();
    void advance();

    std::vector<ShowSlide> slides_;
    const Clock& clock_;
    MultimediaDevice& device_;
    int current_ = 0;
    bool paused_ = false;
    bool finished_ = false;
    bool soundOpen_ = false;
    bool silent_ = false;
    QDateTime runningSince_; // when the current slide last started or resumed
    qint64 playedMs_ = 0;    // time of the current slide before that
    QStringList failed_;
};

} // namespace mms
