// The sound preview of MIDI and AMR sounds: the play/stop toggle, its state switch and the
// end-of-playback notification. Playing means the device alias "music" is open and playing and the button
// shows "stop".

#include "common/localisation.h"
#include "common/mediakind.h"
#include "common/playbacktexts.h"
#include "composer/widgets/frmmmsmain.h"
#include "sound/amrdecoder.h"

#include <QLabel>
#include <QToolButton>

namespace mms {

namespace {
const QString kStop = QStringLiteral("stop music");
const QString kClose = QStringLiteral("close music");
} // namespace

int frmMMSMain::sendPreviewCommand(const QString& command) {
    return platform_.device.sendString(command);
}

void frmMMSMain::soundPlayCmd_Click() {
    // Besides MIDI tunes, AMR sounds that decode are played; anything else is refused before the
    // device hears of it.
    if (!isPlaying_ && mediaKindOf(lblSoundName->text()) != MediaKind::Midi) {
        const NodePtr shown = slides_.nodeAt(selectedSlide());
        std::vector<qint16> samples;
        if (!shown || !decodeAmrFile(shown->DataSoundPath, samples)) {
            platform_.dialogs.inform(loc_.getMCrErrStr(playbacktext::kSoundNotPlayable));
            return;
        }
    }
    if (isPlaying_) {
        switchMCICtrl();
        return;
    }
    currentSlide_ = selectedSlide();
    const NodePtr node = slides_.nodeAt(currentSlide_);
    if (!node) return;
    // The device's answers are not examined: a tune that cannot be opened still shows "stop", and
    // the next click returns to "play".
    sendPreviewCommand(QStringLiteral("open \"%1\" Alias music").arg(node->DataSoundPath));
    sendPreviewCommand(QStringLiteral("play music from 0 notify"));
    switchMCICtrl();
}

void frmMMSMain::switchMCICtrl() {
    if (!isPlaying_) {
        soundPlayCmd->setIcon(stopIcon_);
        soundPlayCmd->setToolTip(loc_.getMCrInterfaceStr(27));
        isPlaying_ = true;
    } else {
        soundPlayCmd->setIcon(playIcon_);
        sendPreviewCommand(kStop);
        sendPreviewCommand(kClose);
        soundPlayCmd->setToolTip(loc_.getMCrInterfaceStr(28));
        isPlaying_ = false;
    }
}

void frmMMSMain::stopSoundPreview() {
    if (!isPlaying_) return;
    sendPreviewCommand(kStop);
    sendPreviewCommand(kClose);
    switchMCICtrl();
}

void frmMMSMain::onPreviewNotify(MultimediaDevice::Notify result) {
    // Only a tune that played to its end flips the button. Aborted and failed playbacks (a stop
    // sends one) change nothing, and neither does a late end report once the preview was stopped.
    if (result == MultimediaDevice::Notify::Successful && isPlaying_) switchMCICtrl();
}

} // namespace mms
