#include "image/widgets/picturepanel.h"

#include "composer/localisation.h"
#include "composer/widgets/composerhost.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIcon>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace mms {

PicturePanel::PicturePanel(ComposerHost& host, QWidget* parent) : QWidget(parent), host_(host) {
    setObjectName(QStringLiteral("picturePanel"));

    imgDirPath = new QLineEdit(this);
    imgDirPath->setObjectName(QStringLiteral("imgDirPath"));
    imgChgDirBrowse = new QToolButton(this);
    imgChgDirBrowse->setObjectName(QStringLiteral("imgChgDirBrowse"));
    imgChgDirBrowse->setIcon(QIcon(QStringLiteral(":/composer/icons/folder.svg")));
    imgChgDirBrowse->setAutoRaise(true);
    refreshcmd = new QPushButton(this);
    refreshcmd->setObjectName(QStringLiteral("refreshcmd"));
    refreshcmd->setIcon(QIcon(QStringLiteral(":/composer/icons/refresh.svg")));
    imgTypeCombo = new QComboBox(this);
    imgTypeCombo->setObjectName(QStringLiteral("imgTypeCombo"));
    imgTypeCombo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);

    lstPicView = new QListWidget(this);
    lstPicView->setObjectName(QStringLiteral("lstPicView"));
    lstPicView->setViewMode(QListView::IconMode);
    lstPicView->setIconSize(kThumbnailSize);
    lstPicView->setGridSize(QSize(92, 76));
    lstPicView->setResizeMode(QListView::Adjust);
    lstPicView->setMovement(QListView::Static);
    lstPicView->setUniformItemSizes(true);
    lstPicView->setWordWrap(true);
    lstPicView->setSelectionMode(QAbstractItemView::SingleSelection);

    chgImgCmd = new QPushButton(this);
    chgImgCmd->setObjectName(QStringLiteral("chgImgCmd"));
    chgImgCmd->setIcon(QIcon(QStringLiteral(":/composer/icons/attach.svg")));
    chgImgCmd->setEnabled(false);

    auto* folderRow = new QHBoxLayout;
    folderRow->setSpacing(4);
    folderRow->addWidget(imgDirPath, 1);
    folderRow->addWidget(imgChgDirBrowse);
    auto* typeRow = new QHBoxLayout;
    typeRow->addWidget(imgTypeCombo, 1);
    typeRow->addWidget(refreshcmd);
    auto* actionRow = new QHBoxLayout;
    actionRow->addStretch(1);
    actionRow->addWidget(chgImgCmd);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addLayout(folderRow);
    layout->addLayout(typeRow);
    layout->addWidget(lstPicView, 1);
    layout->addLayout(actionRow);

    connect(imgTypeCombo, &QComboBox::currentIndexChanged, this, [this] { imgTypeCombo_Click(); });
    connect(refreshcmd, &QPushButton::clicked, this, [this] { refreshcmd_Click(); });
    connect(imgChgDirBrowse, &QToolButton::clicked, this, [this] { imgChgDirBrowse_Click(); });
    connect(lstPicView, &QListWidget::itemClicked, this, [this] { lstPicView_ItemClick(); });
    connect(chgImgCmd, &QPushButton::clicked, this, [this] { chgImgCmd_Click(); });
}

void PicturePanel::applyLanguage() {
    const Localisation& loc = host_.localisation();
    imgChgDirBrowse->setToolTip(loc.getMCrInterfaceStr(19));
    refreshcmd->setText(loc.getMCrInterfaceStr(20));
    chgImgCmd->setText(loc.getMCrInterfaceStr(21));
}

void PicturePanel::clearThumbnails() {
    lstPicView->clear();
    lstPicView->setIconSize(kThumbnailSize);
}

void PicturePanel::setLibraryFolder(const QString& folder) {
    imgDirPath->setText(folder);
}

void PicturePanel::fillTypeCombo() {
    const Localisation& loc = host_.localisation();
    {
        const QSignalBlocker quiet(imgTypeCombo);
        imgTypeCombo->clear();
        imgTypeCombo->addItem(loc.getMCrInterfaceStr(29));
        imgTypeCombo->addItem(loc.getMCrInterfaceStr(30) + QStringLiteral(" (*.gif)"));
        imgTypeCombo->addItem(loc.getMCrInterfaceStr(31) + QStringLiteral(" (*.jpg)"));
        imgTypeCombo->addItem(loc.getMCrInterfaceStr(32) + QStringLiteral(" (*.bmp)"));
        imgTypeCombo->setCurrentIndex(0);
    }
    imgTypeCombo_Click();
}

// Not wired yet: listing the folder's pictures between clearing and disabling.
void PicturePanel::refreshImgList() {
    clearThumbnails();
    // Nothing is selected after a refill.
    chgImgCmd->setEnabled(false);
}

void PicturePanel::imgTypeCombo_Click() {
    refreshImgList();
}

void PicturePanel::refreshcmd_Click() {
    refreshImgList();
}

// Not wired yet: the folder chooser of the library.
void PicturePanel::imgChgDirBrowse_Click() {}

void PicturePanel::lstPicView_ItemClick() {
    if (lstPicView->count() > 0 && lstPicView->currentItem()) chgImgCmd->setEnabled(true);
}

// Not wired yet: putting the picture on the slide.
void PicturePanel::chgImgCmd_Click() {}

} // namespace mms
