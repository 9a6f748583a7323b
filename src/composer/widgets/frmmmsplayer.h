#pragma once

#include "composer/slideshow.h"

#include <QDialog>
#include <QTimer>
#include <vector>

class QComboBox;
class QLabel;
class QLayout;
class QToolButton;

namespace mms {

class Localisation;
struct Platform;

// The message player: the phone screen at an integer zoom (2x by default) with the slide's
// position, the time it has left and a status line. It plays as soon as it is made, from slide
// `start` (0-based). Keys: Space pauses and resumes, Left and Right step, Home starts again, Esc
// closes; closing stops the sound at once. Sounds that could not be played are listed in one
// message when the show ends or the window closes. Controls: picScreen, lblPosition, lblTimeLeft,
// lblStatus, prevCmd, pauseCmd, nextCmd, restartCmd, cboZoom.
class frmMMSPlayer final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmMMSPlayer)

public:
    frmMMSPlayer(Platform& platform, const Localisation& texts, std::vector<ShowSlide> slides, int start,
                 QWidget* parent = nullptr);
    ~frmMMSPlayer() override;

    // One step of the clock: ends the slides whose time is up and brings the view in step. The
    // window's timer calls it; tests call it after moving their clock.
    void tick();
    const SlideShow& slideShow() const { return show_; }

public slots:
    void done(int result) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildUi();
    QLayout* buildControls();
    void applyLanguage();
    // Runs one command of the show, then brings the view in step.
    void command(void (SlideShow::*action)());
    void refresh();
    void renderScreen();
    void reportFailedSounds();

    Platform& platform_;
    const Localisation& texts_;
    SlideShow show_;
    QTimer timer_;
    int zoom_ = 2;
    int rendered_ = -1; // the slide on the screen, -1 for none
    int reported_ = 0;  // failed sounds already listed in a message

    QLabel* picScreen = nullptr;
    QLabel* lblPosition = nullptr;
    QLabel* lblTimeLeft = nullptr;
    QLabel* lblStatus = nullptr;
    QToolButton* prevCmd = nullptr;
    QToolButton* pauseCmd = nullptr;
    QToolButton* nextCmd = nullptr;
    QToolButton* restartCmd = nullptr;
    QComboBox* cboZoom = nullptr;
};

} // namespace mms
