#include "composer/slideshow.h"

#include "composer/composertext.h"
#include "model/cslide.h"
#include "sound/multimediadevice.h"
#include "store/messagestore.h"

#include <algorithm>

namespace mms {

namespace {

int seconds(const SlideDur& duration) {
    if (duration.isNumber()) return std::max<int>(duration.number(), 0);
    return durationSeconds(duration.toString()).value_or(0);
}

} // namespace

std::vector<ShowSlide> showSlides(const CSlide& message) {
    std::vector<ShowSlide> out;
    for (NodePtr n = message.firstItem(); n; n = n->NextNode)
        out.push_back({{n->DataImgPath, n->DataText}, n->DataSoundPath, seconds(n->DataSlideDur)});
    return out;
}

std::vector<ShowSlide> showSlides(const std::vector<LoadedSlide>& message) {
    std::vector<ShowSlide> out;
    for (const LoadedSlide& s : message)
        out.push_back({{s.picturePath, s.text}, s.soundPath, seconds(s.duration)});
    return out;
}

SlideShow::SlideShow(std::vector<ShowSlide> slides, const Clock& clock, MultimediaDevice& device)
    : slides_(std::move(slides)), clock_(clock), device_(device) {
    finished_ = slides_.empty();
}

SlideShow::~SlideShow() {
    stopSound();
}

qint64 SlideShow::elapsed() const {
    return playedMs_ + (paused_ ? 0 : runningSince_.msecsTo(clock_.now()));
}

qint64 SlideShow::msLeft() const {
    if (finished_) return 0;
    return std::max<qint64>(qint64(slide().seconds) * 1000 - elapsed(), 0);
}

void SlideShow::show(int index) {
    if (slides_.empty()) return;
    stopSound();
    current_ = std::clamp(index, 0, count() - 1);
    paused_ = finished_ = false;
    playedMs_ = 0;
    startSound();
    // The slide's time runs from its sound's start: the first tune may take a while to load.
    runningSince_ = clock_.now();
}

void SlideShow::next() {
    if (!finished_) advance();
}

void SlideShow::previous() {
    show(current_ - 1);
}

void SlideShow::togglePause() {
    if (finished_) {
        restart();
    } else if (paused_) {
        paused_ = false;
        runningSince_ = clock_.now();
        if (soundOpen_) device_.resume();
    } else {
        playedMs_ = elapsed();
        paused_ = true;
        if (soundOpen_) device_.pause();
    }
}

void SlideShow::stop() {
    stopSound();
    finished_ = true;
}

bool SlideShow::tick() {
    bool changed = false;
    while (!finished_ && !paused_ && elapsed() >= qint64(slide().seconds) * 1000) {
        advance();
        changed = true;
    }
    return changed;
}

void SlideShow::advance() {
    if (current_ + 1 < count()) {
        show(current_ + 1);
    } else {
        stopSound();
        finished_ = true;
    }
}

void SlideShow::startSound() {
    const ShowSlide& s = slide();
    if (s.soundPath.isEmpty() || s.seconds == 0) return;
    const auto failed = [this](MultimediaDevice::Result result) {
        if (result == MultimediaDevice::Result::NoSound) {
            silent_ = true;
        } else {
            const QString name = CSlide::extractFileName(slide().soundPath);
            if (!failed_.contains(name)) failed_ << name;
        }
    };
    if (const auto opened = device_.open(s.soundPath); opened != MultimediaDevice::Result::Ok) {
        failed(opened);
        return;
    }
    soundOpen_ = true;
    // The notification is not needed here: the slide's end stops the sound anyway.
    if (const auto played = device_.play(); played != MultimediaDevice::Result::Ok) {
        failed(played);
        stopSound();
    }
}

void SlideShow::stopSound() {
    if (!soundOpen_) return;
    soundOpen_ = false;
    device_.stop();
    device_.close();
}

} // namespace mms
