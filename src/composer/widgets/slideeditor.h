#pragma once

#include "common/widgets/platform.h"
#include "model/messagemodel.h"
#include "sound/multimediadevice.h"

#include <QCache>
#include <QDateTime>
#include <QIcon>
#include <QPixmap>
#include <QWidget>

class QAction;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QStackedWidget;
class QToolButton;

namespace mms {

class ComposerDocument;
class SlideFrame;
class Localisation;

// The slide panel: the selected slide's duration, picture on the phone screen, text and sound with
// its preview, on a page that gives way to a large add button while the message has no slide. Every
// edit is written into the slide at once through the document (updateCurrentSlide); there is no
// apply step. Showing a slide fills the boxes, whose change handlers commit what they show.
class SlideEditor final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SlideEditor)

public:
    SlideEditor(ComposerDocument& document, const Localisation& loc, Platform& platform, QWidget* parent);
    ~SlideEditor() override;

    // The buttons carry the window's commands: the large add button and the export button.
    void setCommands(QAction* add, QAction* exportPackage, QAction* removePicture, QAction* removeSound);
    void applyLanguage();

    // Fills the panel from slide `position`; false when the slide could not be shown (error 6),
    // `pictureFailed` when only its picture could not be loaded.
    bool showSlide(qint16 position, bool* pictureFailed);
    void refreshSlidePanel();
    void enableSlideCmds();
    // The page that fits the message: the panel, or the add button when it has no slide.
    void followMessage();

    void updateCurrentSlide(const QString& field, const QString& value);
    void txtSlideDur_GotFocus();
    // Whether a key typed into the duration box is kept: digits only, Backspace discarded.
    bool txtSlideDur_KeyPress(int key, const QString& text);
    void txtSlideDur_Change();
    void txtText_Change();
    void txtText_Click();
    // After undo or redo: typing goes on where the step left the text box, not in front of its hint.
    void afterReplay();

    // The sound preview.
    void soundPlayCmd_Click();
    void switchMCICtrl();
    void stopSoundPreview();
    // Ends the preview of a sound for good (a new sound was attached).
    void closeSoundPreview();
    bool isPlaying() const { return isPlaying_; }
    void installPreviewHook();
    void removePreviewHook();

    // Widgets that take dropped files and the keys of the history.
    QWidget* dropArea() const;
    QList<QWidget*> textBoxes() const;

signals:
    // Files were dropped on the panel.
    void filesDropped(const QStringList& paths);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* buildEmptyPage();
    QWidget* buildSlidePanel();
    QWidget* buildPhoneScreen(QWidget* frame);
    QLayout* buildSoundRow(QWidget* frame);
    void showPicture(const QString& path, bool* failed);
    void clearPicture();
    void setTextBox(const QString& text);
    void styleTextHint();
    QString textHint() const;
    void onPreviewNotify(MultimediaDevice::Notify result);

    QStackedWidget* slideStack = nullptr;
    QPushButton* addBigCmd = nullptr;
    SlideFrame* frameSlide = nullptr;
    QLineEdit* txtSlideDur = nullptr;
    QLabel* picPanel = nullptr;
    QWidget* phoneScreen = nullptr;
    QPlainTextEdit* txtText = nullptr;
    QLabel* lblSoundName = nullptr;
    QToolButton* soundPlayCmd = nullptr;
    QPushButton* createCmd = nullptr;

    ComposerDocument& document_;
    const Localisation& loc_;
    Platform& platform_;
    QIcon playIcon_;
    QIcon stopIcon_;
    QString durTextAtFocus_;
    // The file the picture panel shows, as it was when read, and the last pictures shown: every
    // command shows its slide again, and going back and forth between slides shows the same few
    // files; one that is unchanged on disk is not decoded again.
    struct ShownFile {
        QString path;
        QDateTime modified;
        qint64 bytes = -1;
        bool operator==(const ShownFile&) const = default;
    };
    struct ShownPicture {
        ShownFile file;
        QPixmap pixmap;
    };
    ShownFile shownPicture_;
    QCache<QString, ShownPicture> recentPictures_{16};
    bool isPlaying_ = false;
    bool textHintStyled_ = false;
};

} // namespace mms
