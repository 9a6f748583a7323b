#pragma once

#include "common/mediakind.h"

#include <QString>
#include <QWidget>
#include <memory>
#include <optional>

class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QToolButton;

namespace mms {

class Localisation;
class MidiDecoder;
class PlayerControl;
struct Platform;

// The sound tab of the composer: the sound files of one library folder, filtered by type, the
// command that attaches the chosen sound to the current slide and the one that opens a MIDI file
// in the crop window. A sound chosen for the slide (a library file or a cropped tune) is handed to
// the composer through soundChosen.
class SoundPanel final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SoundPanel)

public:
    // appFolder: where the workspace lies (cropped tunes go below its Temp folder).
    SoundPanel(const Localisation& texts, Platform& platform, QString appFolder, QWidget* parent = nullptr);
    ~SoundPanel() override;

    // Captions and tooltips from the language.
    void applyLanguage();

    // Start-up, in the composer's order: the library folder shown, then the type list filled; the
    // file list gets a pattern and the folder, and entry 0 is chosen, which applies its pattern.
    void setLibraryFolder(const QString& folder);
    QString libraryFolder() const;
    void fillTypeCombo();

    // The file list fileBoxSound: a folder, the sound kind the type box picks and the matching names,
    // sorted without regard to case. Setting a folder that is not a readable folder fails and
    // leaves the list empty.
    bool setFileListFolder(const QString& folder);
    QString fileListFolder() const { return fileFolder_; }
    // The selected file name (no folder), empty when nothing is selected.
    QString selectedFileName() const;

    // The player the crop window plays tunes with; null (the default) gives the window its own
    // FluidSynth player. The panel does not own it.
    void setCropPlayer(PlayerControl* player) { cropPlayer_ = player; }

    void soundDirPath_Change();
    void refresh2Cmd_Click();
    void SoundChgDirBrowse_Click();
    void soundTypeCombo_Click();
    void fileBoxSound_Click();
    void chgSoundCmd_Click();
    // The attach command's rules for any sound file (a file dropped on the composer, say): one that
    // cannot be read or is too large is refused with its message; any other is handed on.
    void attachSoundFile(const QString& path);
    void cropCmd_Click();
    // Attach and crop rest until a file is clicked again (the composer's slide panel reset).
    void disableFileCommands();

signals:
    // A sound ready to go on the current slide.
    void soundChosen(const QString& path);

private:
    QLineEdit* soundDirPath = nullptr;
    QToolButton* SoundChgDirBrowse = nullptr;
    QPushButton* refresh2Cmd = nullptr;
    QComboBox* soundTypeCombo = nullptr;
    QListWidget* fileBoxSound = nullptr;
    QPushButton* chgSoundCmd = nullptr;
    QPushButton* cropCmd = nullptr;

    // Lists the folder again; keeps the selected name when asked to and it is still listed.
    bool refreshFileList(bool keepSelection = false);
    // The file list's folder, or the empty folder when the text names no readable folder.
    void showFolderOrNothing(const QString& folder, bool keepSelection);
    // The selected file with the folder the list shows; empty when nothing is selected.
    QString selectedFilePath() const;
    const Localisation& loc_;
    Platform& platform_;
    QString appFolder_;
    PlayerControl* cropPlayer_ = nullptr;
    // The crop window's decoder, kept for the whole run as the decoding rules want it.
    std::unique_ptr<MidiDecoder> cropDecoder_;
    QString fileFolder_;
    std::optional<MediaKind> listedKind_; // none: every sound
};

} // namespace mms
