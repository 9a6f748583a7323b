#pragma once

#include <QSize>
#include <QWidget>

class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QToolButton;

namespace mms {

class ComposerHost;

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

    // Refills lstPicView from the folder in imgDirPath and the type in imgTypeCombo.
    void refreshImgList();

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
    ComposerHost& host_;
};

} // namespace mms
