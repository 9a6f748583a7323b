#pragma once

#include "model/messagesink.h"

#include <QSize>
#include <QWidget>

class QComboBox;
class QImage;
class QLabel;
class QLayout;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QProgressBar;
class QPushButton;
class QToolButton;

namespace mms {

class FitTask;
struct FitResult;
class Localisation;
struct Platform;
class ThumbnailLoader;

// The picture tab of the composer: the pictures of one library folder as 40 by 40 thumbnails with
// their file sizes, filtered by type, and the command that prepares the chosen picture for a slide
// (converted when too large) and hands it to the composer through pictureChosen. A picture whose
// conversion is still too large is, if the user agrees, shrunk until it fits: off the window's
// thread, with a busy indicator and a cancel button, the rest of the window usable meanwhile.
class PicturePanel final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PicturePanel)

public:
    static constexpr QSize kThumbnailSize{40, 40};

    // appFolder: where the workspace lies (conversions go below its Temp folder).
    PicturePanel(const Localisation& texts, Platform& platform, QString appFolder, QWidget* parent = nullptr);

    // Captions and tooltips from the language.
    void applyLanguage();

    // Start-up, in the composer's order: the thumbnails emptied, the library folder shown, then
    // the type list filled with entry 0 chosen, which lists the folder.
    void clearThumbnails();
    // Widens the type list's drop-down so that its longest entry fits.
    void sizeTypeCombo();
    void setLibraryFolder(const QString& folder);
    QString libraryFolder() const;
    void fillTypeCombo();

    // Refills lstPicView from the folder in imgDirPath and the type in imgTypeCombo. The thumbnails
    // are decoded off the window's thread and fill the view in listing order as they arrive; a new
    // refill drops the one under way.
    void refreshImgList();
    // A refill is still delivering thumbnails.
    bool isListing() const;

    void imgTypeCombo_Click();
    void refreshcmd_Click();
    void imgChgDirBrowse_Click();
    void lstPicView_ItemClick();
    void chgImgCmd_Click();
    // The picture command's rules for any picture file (a file dropped on the composer, say): used
    // as it is when small enough, converted or refused when not, the refusal shown. The size is
    // only checked when `checkSize` is set, as the command checks it only while its list has items.
    void attachPictureFile(const QString& source, bool checkSize = true);
    // Stops the shrinking under way; nothing is attached.
    void fitCancelCmd_Click();
    bool isFitting() const;
    // The JPEG quality of the next conversion; choosing one keeps it as the setting.
    int pictureQuality() const { return quality_; }

signals:
    // A picture ready to go on the current slide (the file itself, or its conversion below Temp).
    void pictureChosen(const QString& path);

private:
    QLineEdit* imgDirPath = nullptr;
    QToolButton* imgChgDirBrowse = nullptr;
    QPushButton* refreshcmd = nullptr;
    QComboBox* imgTypeCombo = nullptr;
    QListWidget* lstPicView = nullptr;
    QPushButton* chgImgCmd = nullptr;
    QProgressBar* fitProgress = nullptr;
    QLabel* lblShrinking = nullptr;
    QPushButton* fitCancelCmd = nullptr;
    QLabel* lblQuality = nullptr;
    QComboBox* qualityCombo = nullptr;

    QLayout* buildFitRow();
    void fillQualityCombo();
    void addThumbnail(int row, const QString& fileName, const QImage& thumbnail);
    QListWidgetItem* selectedPicture() const;
    bool ask(const QString& question, Answer defaultAnswer = Answer::Yes);
    bool askToShrink(qint64 convertedBytes);
    void startFit(const QString& source, bool gif);
    void fitFinished(const FitResult& result, const QString& target);
    void showFitting(bool fitting);
    // Error text `error` with its "%1" replaced by detail, in a message box.
    void warn(int error, const QString& detail);

    const Localisation& loc_;
    Platform& platform_;
    QString appFolder_;
    ThumbnailLoader* loader_ = nullptr;
    FitTask* fit_ = nullptr;
    QString listedFolder_;
    int quality_;
};

} // namespace mms
