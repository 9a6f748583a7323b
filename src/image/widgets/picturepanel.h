#pragma once

#include <QSize>
#include <QWidget>

class QComboBox;
class QImage;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QToolButton;

namespace mms {

class ComposerHost;
class ThumbnailLoader;

// The picture tab of the composer: the pictures of one library folder as 40 by 40 thumbnails,
// filtered by type, and the command that puts the chosen picture on the current slide.
// Everything it changes in the message goes through the ComposerHost.
class PicturePanel final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PicturePanel)

public:
    static constexpr QSize kThumbnailSize{40, 40};

    explicit PicturePanel(ComposerHost& host, QWidget* parent = nullptr);

    // Captions and tooltips from the language.
    void applyLanguage();

    // Start-up, in the composer's order: the thumbnails emptied, the library folder shown, then
    // the type list filled with entry 0 chosen, which lists the folder.
    void clearThumbnails();
    void setLibraryFolder(const QString& folder);
    void fillTypeCombo();

    // Refills lstPicView from the folder in imgDirPath and the type in imgTypeCombo. The thumbnails
    // are decoded off the window's thread and fill the view in listing order as they arrive; a new
    // refill drops the one under way.
    void refreshImgList();
    // A refill is still delivering thumbnails.
    bool isListing() const;
    // The folder the list shows (the text of imgDirPath at the last refill, "/" separators).
    QString listedFolder() const { return listedFolder_; }

    void imgTypeCombo_Click();
    void refreshcmd_Click();
    void imgChgDirBrowse_Click();
    void lstPicView_ItemClick();
    void chgImgCmd_Click();

    QLineEdit* imgDirPath = nullptr;
    QToolButton* imgChgDirBrowse = nullptr;
    QPushButton* refreshcmd = nullptr;
    QComboBox* imgTypeCombo = nullptr;
    QListWidget* lstPicView = nullptr;
    QPushButton* chgImgCmd = nullptr;

private:
    void addThumbnail(int row, const QString& fileName, const QImage& thumbnail);
    QListWidgetItem* selectedPicture() const;

    ComposerHost& host_;
    ThumbnailLoader* loader_ = nullptr;
    QString listedFolder_;
};

} // namespace mms
