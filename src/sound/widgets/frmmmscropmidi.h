#pragma once

#include <QDialog>
#include <QString>
#include <memory>

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;
class QToolButton;

namespace mms {

class Dialogs;
class Localisation;
class PlayerControl;
struct Platform;

// The MIDI crop window: plays a tune, takes a start and an end mark from the playing position,
// plays the marked stretch and writes it as a new MIDI file at `outfilename`. The composer fills
// `txtName` and `outfilename`, calls MnuOpen_Click, shows the window modally and reads `validflag`
// when it has closed.
class frmMMSCropMIDI final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmMMSCropMIDI)

public:
    // The window on a player it does not own (tests script the player through it).
    frmMMSCropMIDI(const Localisation& texts, Dialogs& dialogs, PlayerControl& player,
                   QWidget* parent = nullptr);
    // The window on its own FluidSynth player.
    frmMMSCropMIDI(const Localisation& texts, Dialogs& dialogs, QWidget* parent = nullptr);
    ~frmMMSCropMIDI() override;

    // "mm:ss" of the milliseconds rounded to whole seconds (minutes wrap at 60).
    static QString formatTime(qint64 ms);

    void MnuOpen_Click();
    void MnuClose_Click();
    void Command1_Click(); // play the marked stretch
    void Command2_Click(); // mark in
    void Command3_Click(); // mark out
    void Command4_Click(); // crop
    void MMControl1_StatusUpdate();

    bool validflag = false; // true when the crop wrote outfilename
    QString outfilename;

    QLineEdit* txtName = nullptr;

public slots:
    // Form_Unload: the tune is stopped and closed whichever way the window closes.
    void done(int result) override;

private:
    QWidget* MMControl1 = nullptr; // the player's own buttons: back to the start, play, stop
    QToolButton* MMControl1Prev = nullptr;
    QToolButton* MMControl1Play = nullptr;
    QToolButton* MMControl1Stop = nullptr;
    QSlider* Slider1 = nullptr;
    QLabel* lblStatus = nullptr;
    QLabel* Label1 = nullptr;
    QLabel* Label2 = nullptr;
    QLabel* Label3 = nullptr;
    QLabel* Label4 = nullptr;
    QLabel* Label5 = nullptr;
    QLabel* Label6 = nullptr;
    QLabel* Label7 = nullptr;
    QGroupBox* Frame1 = nullptr;
    QGroupBox* Frame2 = nullptr;
    QPushButton* Command1 = nullptr;
    QPushButton* Command2 = nullptr;
    QPushButton* Command3 = nullptr;
    QPushButton* Command4 = nullptr;
    QLineEdit* txtCropStart = nullptr;
    QLineEdit* txtCropEnd = nullptr;
    QAction* MnuOpen = nullptr;
    QAction* MnuClose = nullptr;

    void Form_Load();
    void buildControls();
    void buildPlayerFrame();
    void buildCropFrame();
    void connectControls();
    void showStatusLine();
    void updatePlayerButtons();
    void Slider1_Released();

    const Localisation& texts_;
    Dialogs& dialogs_;
    std::unique_ptr<PlayerControl> ownPlayer_;
    PlayerControl& player_;
    bool isPreviewing = false;
};

// The window part of the composer's crop command: runs the crop window modally on `inputPath`
// with a fresh output name below appFolder's "Temp/tmpMID" and returns the path of the cropped
// tune to attach, or an empty string when there is nothing to attach (the user closed the window,
// the crop failed, or the result is too large, which is reported with error string 1). `player`
// defaults to a FluidSynth player.
QString runCropWindow(Platform& platform, const Localisation& texts, const QString& appFolder,
                      const QString& inputPath, QWidget* parent = nullptr, PlayerControl* player = nullptr);

// appFolder + "/Temp/tmpMID/" + a random number from 10000 to 99999 + ".mid".
QString cropOutputPath(const QString& appFolder, double uniform);

} // namespace mms
