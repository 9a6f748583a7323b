// The composer's handlers around the selected slide: showing it, committing edits, attaching media
// from the library panels and from dropped files, the sound preview and Play Message.

#include "common/localisation.h"
#include "composer/composertexts.h"
#include "composer/droprules.h"
#include "composer/slideshow.h"
#include "composer/widgets/frmmmsmain.h"
#include "composer/widgets/frmmmsplayer.h"
#include "composer/widgets/slideeditor.h"
#include "composer/widgets/slidestrip.h"
#include "image/widgets/picturepanel.h"
#include "sound/widgets/soundpanel.h"

#include <QDir>

namespace mms {

qint16 frmMMSMain::selectedSlide() const {
    return strip_->selected();
}

void frmMMSMain::selectSlide(qint16 position) {
    if (position < 1 || position > document_->message().count()) return;
    document_->setCurrent(position);
    strip_->select(position);
}

const SlideStripModel& frmMMSMain::stripModel() const {
    return strip_->model();
}

// A command or a step of the history leaves slide `position` selected (0: none is left).
void frmMMSMain::showSlide(qint16 position) {
    selectSlide(position);
    lstSlide_ItemClick();
}

void frmMMSMain::lstSlide_ItemClick() {
    if (document_->message().isEmpty()) {
        strip_->resetIconSize();
        refreshSlidePanel();
        return;
    }
    const qint16 cur = selectedSlide();
    if (cur < 1) return;
    // Showing a slide is no edit: filling the boxes commits what they show, and the flag goes back
    // to what it was so that earlier changes are still asked about when closing.
    const ComposerDocument::Showing showing(*document_);
    const bool wasModified = document_->isModified();
    document_->setCurrent(cur);
    updateCommands();
    bool pictureFailed = false;
    const bool shown = editor_->showSlide(cur, &pictureFailed);
    if (shown) document_->setModified(wasModified);
    // The rest of the slide is shown; the missing picture is reported once it is.
    if (!shown || pictureFailed) platform_.dialogs.inform(loc_.getMCrErrStr(composertext::kErrSlideNotShown));
}

void frmMMSMain::refreshSlidePanel() {
    editor_->refreshSlidePanel();
    soundPanel->disableFileCommands();
    updateCommands();
    strip_->recount();
}

void frmMMSMain::updateCurrentSlide(const QString& field, const QString& value) {
    editor_->updateCurrentSlide(field, value);
}

void frmMMSMain::txtText_Click() {
    editor_->txtText_Click();
}

void frmMMSMain::attachToCurrentSlide(const QString& field, const QString& path) {
    // A slide made for the attachment goes with it in one step.
    const std::optional<SlideField> f = slideFieldNamed(field);
    const bool step = f && document_->beginFirstSlideStep(document_->stepName(*f, path));
    if (IsEmpty()) addCmd_Click();
    const qint16 current = selectedSlide();
    updateCurrentSlide(field, path);
    if (step) document_->endStep();
    selectSlide(current);
    lstSlide_ItemClick();
    setModified(true);
    // A new sound ends the preview of the old one for good.
    if (f == SlideField::Sound) editor_->closeSoundPreview();
}

void frmMMSMain::mnu_removePicture_Click() {
    const CSlideNode* node = document_->message().at(selectedSlide());
    if (node && !node->DataImgPath.isEmpty()) attachToCurrentSlide(QStringLiteral("imgPath"), QString());
}

void frmMMSMain::mnu_removeSound_Click() {
    const CSlideNode* node = document_->message().at(selectedSlide());
    if (node && !node->DataSoundPath.isEmpty()) attachToCurrentSlide(QStringLiteral("soundPath"), QString());
}

void frmMMSMain::dropFiles(const QStringList& paths, qint16 position) {
    for (const QString& path : paths)
        dropFile(path, position);
}

// A dropped file goes through the attach rules of the picture or sound panel, exactly as if it had
// been chosen there.
void frmMMSMain::dropFile(const QString& path, qint16 position) {
    const DropKind kind = dropKindOf(path);
    if (kind == DropKind::Refused) {
        const QString text = loc_.getMCrErrStr(composertext::kErrDropRefused)
                                 .replace(QStringLiteral("%1"), QDir::toNativeSeparators(path));
        platform_.dialogs.show(Message{text, applicationTitle(), Buttons::Ok, Icon::Warning});
        return;
    }
    // Dropped on a slide of the strip: that slide is shown and takes the file.
    if (position >= 1 && position <= document_->message().count() && position != selectedSlide()) {
        selectSlide(position);
        lstSlide_ItemClick();
    }
    if (kind == DropKind::Picture) {
        picturePanel->attachPictureFile(path);
    } else {
        soundPanel->attachSoundFile(path);
    }
}

void frmMMSMain::soundPlayCmd_Click() {
    editor_->soundPlayCmd_Click();
}

bool frmMMSMain::isPlaying() const {
    return editor_->isPlaying();
}

// Play Message: the player on the message from the selected slide.
void frmMMSMain::mnu_play_Click() {
    if (IsEmpty()) {
        platform_.dialogs.inform(loc_.getMCrErrStr(composertext::kNoSlides));
        return;
    }
    // One sound at a time: the player takes over the preview's device.
    editor_->stopSoundPreview();
    frmMMSPlayer player(platform_, loc_, showSlides(message()), std::max(selectedSlide() - 1, 0), this);
    platform_.dialogs.runModal(player);
}

} // namespace mms
