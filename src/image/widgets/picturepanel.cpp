#include "image/widgets/picturepanel.h"

#include "common/commontexts.h"
#include "common/filesize.h"
#include "common/folderpaths.h"
#include "common/imagetexts.h"
#include "common/localisation.h"
#include "common/mediakind.h"
#include "common/widgets/browsefolder.h"
#include "common/widgets/filesizedelegate.h"
#include "common/widgets/platform.h"
#include "common/widgets/sizecombo.h"
#include "image/fittask.h"
#include "image/pictureimport.h"
#include "image/picturequality.h"
#include "image/picturetexts.h"
#include "image/thumbnailloader.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace mms {

namespace {

// One cell of the thumbnail grid: the icon with its name and its size below.
constexpr QSize kGridSize{96, 88};

// The wait cursor for as long as a conversion runs.
class BusyCursor {
public:
    BusyCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyCursor() { QGuiApplication::restoreOverrideCursor(); }
    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;
};

} // namespace

PicturePanel::PicturePanel(const Localisation& texts, Platform& platform, QString appFolder, QWidget* parent)
    : QWidget(parent), loc_(texts), platform_(platform), appFolder_(std::move(appFolder)),
      loader_(new ThumbnailLoader(this)), fit_(new FitTask(this)), quality_(readPictureQualitySetting()) {
    setObjectName(QStringLiteral("picturePanel"));

    imgDirPath = new QLineEdit(this);
    imgDirPath->setObjectName(QStringLiteral("imgDirPath"));
    imgChgDirBrowse = new QToolButton(this);
    imgChgDirBrowse->setObjectName(QStringLiteral("imgChgDirBrowse"));
    imgChgDirBrowse->setIcon(QIcon(QStringLiteral(":/icons/folder.svg")));
    imgChgDirBrowse->setAutoRaise(true);
    refreshcmd = new QPushButton(this);
    refreshcmd->setObjectName(QStringLiteral("refreshcmd"));
    refreshcmd->setIcon(QIcon(QStringLiteral(":/icons/refresh.svg")));
    imgTypeCombo = new QComboBox(this);
    imgTypeCombo->setObjectName(QStringLiteral("imgTypeCombo"));
    imgTypeCombo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);

    lstPicView = new QListWidget(this);
    lstPicView->setObjectName(QStringLiteral("lstPicView"));
    lstPicView->setViewMode(QListView::IconMode);
    lstPicView->setIconSize(kThumbnailSize);
    lstPicView->setGridSize(kGridSize);
    // Keeps the first row of icons off the frame.
    lstPicView->setStyleSheet(
        QStringLiteral("QListWidget#lstPicView { padding-top: 6px; background: palette(base); }"));
    lstPicView->setResizeMode(QListView::Adjust);
    lstPicView->setMovement(QListView::Static);
    lstPicView->setWordWrap(true);
    lstPicView->setSelectionMode(QAbstractItemView::SingleSelection);
    lstPicView->setItemDelegate(new FileSizeDelegate(lstPicView));

    chgImgCmd = new QPushButton(this);
    chgImgCmd->setObjectName(QStringLiteral("chgImgCmd"));
    chgImgCmd->setIcon(QIcon(QStringLiteral(":/icons/attach.svg")));
    chgImgCmd->setEnabled(false);
    lblQuality = new QLabel(this);
    lblQuality->setObjectName(QStringLiteral("lblQuality"));
    qualityCombo = new QComboBox(this);
    qualityCombo->setObjectName(QStringLiteral("qualityCombo"));
    lblQuality->setBuddy(qualityCombo);

    auto* folderRow = new QHBoxLayout;
    folderRow->setSpacing(4);
    folderRow->addWidget(imgDirPath, 1);
    folderRow->addWidget(imgChgDirBrowse);
    auto* typeRow = new QHBoxLayout;
    typeRow->addWidget(imgTypeCombo, 1);
    typeRow->addWidget(refreshcmd);
    auto* actionRow = new QHBoxLayout;
    actionRow->addWidget(lblQuality);
    actionRow->addWidget(qualityCombo);
    actionRow->addStretch(1);
    actionRow->addWidget(chgImgCmd);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addLayout(folderRow);
    layout->addLayout(typeRow);
    layout->addWidget(lstPicView, 1);
    layout->addLayout(buildFitRow());
    layout->addLayout(actionRow);

    connect(imgTypeCombo, &QComboBox::currentIndexChanged, this, [this] { imgTypeCombo_Click(); });
    connect(refreshcmd, &QPushButton::clicked, this, [this] { refreshcmd_Click(); });
    connect(imgChgDirBrowse, &QToolButton::clicked, this, [this] { imgChgDirBrowse_Click(); });
    connect(lstPicView, &QListWidget::itemClicked, this, [this] { lstPicView_ItemClick(); });
    // Choosing with the keyboard counts as a click; a double click also attaches. (Not "activated",
    // which some desktops send on a single click.)
    connect(lstPicView, &QListWidget::itemSelectionChanged, this, [this] {
        if (selectedPicture())
            lstPicView_ItemClick();
        else
            chgImgCmd->setEnabled(false); // a Ctrl-click took the selection away
    });
    connect(lstPicView, &QListWidget::itemDoubleClicked, this, [this] {
        lstPicView_ItemClick();
        if (chgImgCmd->isEnabled()) chgImgCmd_Click();
    });
    connect(chgImgCmd, &QPushButton::clicked, this, [this] { chgImgCmd_Click(); });
    connect(qualityCombo, &QComboBox::activated, this, [this](int index) {
        quality_ = qualityCombo->itemData(index).toInt();
        writePictureQualitySetting(quality_);
    });
    connect(fitCancelCmd, &QPushButton::clicked, this, [this] { fitCancelCmd_Click(); });
    connect(fit_, &FitTask::finished, this,
            [this](const FitResult& result, const QString& target) { fitFinished(result, target); });
    // Typing a folder changes nothing by itself; Enter in the box is the refresh command.
    connect(imgDirPath, &QLineEdit::returnPressed, this, [this] { refreshcmd_Click(); });
    connect(loader_, &ThumbnailLoader::thumbnailReady, this,
            [this](int row, const QString& name, const QImage& thumbnail) {
                addThumbnail(row, name, thumbnail);
            });
}

// The busy indicator of a shrink and its cancel button, shown only while one runs.
QLayout* PicturePanel::buildFitRow() {
    fitProgress = new QProgressBar(this);
    fitProgress->setObjectName(QStringLiteral("fitProgress"));
    fitProgress->setRange(0, 0); // busy: the search has no known length
    fitProgress->setTextVisible(false);
    fitProgress->setMaximumHeight(10);
    lblShrinking = new QLabel(this);
    lblShrinking->setObjectName(QStringLiteral("lblShrinking"));
    fitCancelCmd = new QPushButton(this);
    fitCancelCmd->setObjectName(QStringLiteral("fitCancelCmd"));
    auto* row = new QHBoxLayout;
    row->addWidget(lblShrinking);
    row->addWidget(fitProgress, 1);
    row->addWidget(fitCancelCmd);
    showFitting(false);
    return row;
}

void PicturePanel::applyLanguage() {
    const Localisation& loc = loc_;
    imgChgDirBrowse->setToolTip(loc.getMCrInterfaceStr(commontext::kChooseFolderTip));
    refreshcmd->setText(loc.getMCrInterfaceStr(commontext::kRefresh));
    chgImgCmd->setText(loc.getMCrInterfaceStr(imagetext::kUsePicture));
    lblShrinking->setText(loc.getMCrInterfaceStr(sizetext::kShrinking));
    fitCancelCmd->setText(loc.getMCrInterfaceStr(commontext::kCancel));
    lblQuality->setText(loc.getMCrInterfaceStr(imagetext::kPictureQuality));
    qualityCombo->setToolTip(loc.getMCrInterfaceStr(imagetext::kPictureQualityTip));
    fillQualityCombo();
}

// The three choices, and the quality in use when the settings file holds another.
void PicturePanel::fillQualityCombo() {
    qualityCombo->clear();
    for (const PictureQualityPreset& preset : kPictureQualityPresets)
        qualityCombo->addItem(loc_.getMCrInterfaceStr(preset.caption), preset.quality);
    int current = qualityCombo->findData(quality_);
    if (current < 0) {
        qualityCombo->addItem(loc_.getMCrInterfaceStr(imagetext::kQualityOther).arg(quality_), quality_);
        current = qualityCombo->count() - 1;
    }
    qualityCombo->setCurrentIndex(current);
}

void PicturePanel::clearThumbnails() {
    loader_->cancel();
    lstPicView->clear();
    lstPicView->setIconSize(kThumbnailSize);
}

void PicturePanel::sizeTypeCombo() {
    SizeCombo(imgTypeCombo);
}

void PicturePanel::setLibraryFolder(const QString& folder) {
    imgDirPath->setText(folder);
}

QString PicturePanel::libraryFolder() const {
    return imgDirPath->text();
}

void PicturePanel::fillTypeCombo() {
    const Localisation& loc = loc_;
    {
        const QSignalBlocker quiet(imgTypeCombo);
        imgTypeCombo->clear();
        imgTypeCombo->addItem(loc.getMCrInterfaceStr(imagetext::kAllPictures));
        imgTypeCombo->addItem(loc.getMCrInterfaceStr(imagetext::kGifPictures) + QStringLiteral(" (*.gif)"));
        imgTypeCombo->addItem(loc.getMCrInterfaceStr(imagetext::kJpegPictures) + QStringLiteral(" (*.jpg)"));
        imgTypeCombo->addItem(loc.getMCrInterfaceStr(imagetext::kBmpPictures) + QStringLiteral(" (*.bmp)"));
        imgTypeCombo->setCurrentIndex(0);
    }
    imgTypeCombo_Click();
}

void PicturePanel::refreshImgList() {
    clearThumbnails();
    listedFolder_ = QDir::fromNativeSeparators(imgDirPath->text());
    const int typeEntry = imgTypeCombo->currentIndex();
    // A missing folder or one without pictures simply gives an empty list.
    if (!listedFolder_.isEmpty() && typeEntry >= 0) loader_->start(listedFolder_, typeEntry);
    // Nothing is selected after a refill.
    chgImgCmd->setEnabled(false);
}

bool PicturePanel::isListing() const {
    return loader_->isRunning();
}

void PicturePanel::addThumbnail(int row, const QString& fileName, const QImage& thumbnail) {
    // Rows come in order, each once; anything else would pair a name with another file's picture.
    if (row != lstPicView->count()) return;
    auto* item = new QListWidgetItem(QIcon(QPixmap::fromImage(thumbnail)), fileName);
    // The tooltip shows the whole name, where the grid elides it, and says what a large file meets.
    const int tip =
        matchesGifPattern(fileName) ? sizetext::kTooLargeToUse : sizetext::kPictureWillBeConverted;
    showFileSize(*item, loc_, QFileInfo(QDir(listedFolder_), fileName).size(), loc_.getMCrInterfaceStr(tip));
    lstPicView->addItem(item);
}

void PicturePanel::imgTypeCombo_Click() {
    refreshImgList();
}

void PicturePanel::refreshcmd_Click() {
    refreshImgList();
}

void PicturePanel::imgChgDirBrowse_Click() {
    const QString chosen = browseFolder(platform_.dialogs, loc_, this,
                                        browseStartPath(QDir::fromNativeSeparators(imgDirPath->text())));
    if (chosen.isEmpty()) return;
    imgDirPath->setText(QDir::toNativeSeparators(chosen));
    refreshImgList();
}

void PicturePanel::lstPicView_ItemClick() {
    if (lstPicView->count() == 0) return;
    QListWidgetItem* item = lstPicView->currentItem() ? lstPicView->currentItem() : selectedPicture();
    if (!item) return;
    if (!item->isSelected()) item->setSelected(true);
    chgImgCmd->setEnabled(!isFitting());
}

QListWidgetItem* PicturePanel::selectedPicture() const {
    const QList<QListWidgetItem*> selected = lstPicView->selectedItems();
    return selected.isEmpty() ? nullptr : selected.first();
}

void PicturePanel::chgImgCmd_Click() {
    const QListWidgetItem* item = selectedPicture();
    if (!item || isFitting()) return;
    // The file is taken from the folder the list shows, not from a folder typed since.
    attachPictureFile(QDir(listedFolder_).filePath(item->text()), lstPicView->count() > 0);
}

void PicturePanel::attachPictureFile(const QString& source, bool checkSize) {
    Platform& platform = platform_;
    const auto import = [&](bool takeDamaged) {
        const BusyCursor busy;
        return importPicture(source, checkSize, appFolder_, platform.clock, platform.random, takeDamaged,
                             quality_);
    };
    PictureImport result = import(false);
    // A JPEG cut short is shown with grey where data is missing: only the user can say that will do.
    if (result.canTakeDamaged() && ask(loc_.getMCrPromptStr(picturetext::kPromptUseDamaged)
                                           .replace(QStringLiteral("%1"), QDir::toNativeSeparators(source)),
                                       Answer::No))
        result = import(true);
    if (!result.attach()) {
        if (result.canShrink() && askToShrink(result.convertedBytes)) {
            startFit(source, false);
            return;
        }
        if (result.canShrinkGif() &&
            ask(loc_.getMCrPromptStr(picturetext::kPromptShrinkGif)
                    .replace(QStringLiteral("%1"), sizeText(loc_, QFileInfo(source).size()))
                    .replace(QStringLiteral("%2"), sizeText(loc_, kAttachmentLimit)))) {
            startFit(source, true);
            return;
        }
        platform_.dialogs.show(Message{result.errorText(loc_.getMCrErrStr(result.errorNumber)),
                                       applicationTitle(), Buttons::Ok, Icon::Warning});
        return;
    }
    emit pictureChosen(result.picturePath);
}

bool PicturePanel::ask(const QString& question, Answer defaultAnswer) {
    return platform_.dialogs.show(Message{question, applicationTitle(), Buttons::YesNo, Icon::Question,
                                          defaultAnswer}) == Answer::Yes;
}

bool PicturePanel::askToShrink(qint64 convertedBytes) {
    const QString text = loc_.getMCrPromptStr(sizetext::kPromptShrinkToFit)
                             .replace(QStringLiteral("%1"), sizeText(loc_, convertedBytes))
                             .replace(QStringLiteral("%2"), sizeText(loc_, kAttachmentLimit));
    return ask(text);
}

// The shrunk picture gets a scratch name of its own; the same-size conversion stays where it is.
void PicturePanel::startFit(const QString& source, bool gif) {
    QString target;
    if (Status named = freshConversionPath(appFolder_, platform_.clock, platform_.random, target,
                                           gif ? u".gif" : u".jpg");
        !named) {
        warn(imagetext::kErrPictureNotConverted, named.message());
        return;
    }
    showFitting(true);
    if (gif)
        fit_->startGif(source, target);
    else
        fit_->start(source, target, kFitMaxBytes, quality_);
}

void PicturePanel::fitCancelCmd_Click() {
    fit_->cancel();
    showFitting(false);
}

bool PicturePanel::isFitting() const {
    return fit_->isRunning();
}

void PicturePanel::showFitting(bool fitting) {
    for (QWidget* w : std::initializer_list<QWidget*>{fitProgress, lblShrinking, fitCancelCmd})
        w->setVisible(fitting);
    chgImgCmd->setEnabled(!fitting && selectedPicture());
}

void PicturePanel::fitFinished(const FitResult& result, const QString& target) {
    showFitting(false);
    if (result.fitted()) {
        emit pictureChosen(target);
        return;
    }
    warn(result.outcome == FitResult::Outcome::NoFit ? sizetext::kErrPictureCannotFit
                                                     : imagetext::kErrPictureNotConverted,
         result.message);
}

void PicturePanel::warn(int error, const QString& detail) {
    QString text = loc_.getMCrErrStr(error);
    if (text.contains(QLatin1String("%1"))) text = text.arg(detail);
    platform_.dialogs.show(Message{text, applicationTitle(), Buttons::Ok, Icon::Warning});
}

} // namespace mms
