#include "sound/widgets/soundpanel.h"

#include "common/commontexts.h"
#include "common/filesize.h"
#include "common/folderpaths.h"
#include "common/localisation.h"
#include "common/mediakind.h"
#include "common/soundtexts.h"
#include "common/widgets/browsefolder.h"
#include "common/widgets/filesizedelegate.h"
#include "common/widgets/platform.h"
#include "common/workspace.h"
#include "sound/mididecoder.h"
#include "sound/widgets/frmmmscropmidi.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QIcon>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace mms {

namespace {
// The note icon, drawn in the selected-text colour for a selected row: the dark note would all but
// vanish on the highlight.
QIcon listIcon(const QWidget& list) {
    QIcon icon(QStringLiteral(":/icons/sound.svg"));
    QPixmap light = icon.pixmap(list.style()->pixelMetric(QStyle::PM_SmallIconSize));
    QPainter painter(&light);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(light.rect(), list.palette().color(QPalette::HighlightedText));
    painter.end();
    icon.addPixmap(light, QIcon::Selected);
    return icon;
}
} // namespace

SoundPanel::SoundPanel(const Localisation& texts, Platform& platform, QString appFolder, QWidget* parent)
    : QWidget(parent), loc_(texts), platform_(platform), appFolder_(std::move(appFolder)),
      cropDecoder_(std::make_unique<MidiDecoder>()) {
    setObjectName(QStringLiteral("soundPanel"));

    soundDirPath = new QLineEdit(this);
    soundDirPath->setObjectName(QStringLiteral("soundDirPath"));
    SoundChgDirBrowse = new QToolButton(this);
    SoundChgDirBrowse->setObjectName(QStringLiteral("SoundChgDirBrowse"));
    SoundChgDirBrowse->setIcon(QIcon(QStringLiteral(":/icons/folder.svg")));
    SoundChgDirBrowse->setAutoRaise(true);
    refresh2Cmd = new QPushButton(this);
    refresh2Cmd->setObjectName(QStringLiteral("refresh2Cmd"));
    refresh2Cmd->setIcon(QIcon(QStringLiteral(":/icons/refresh.svg")));
    soundTypeCombo = new QComboBox(this);
    soundTypeCombo->setObjectName(QStringLiteral("soundTypeCombo"));
    soundTypeCombo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);

    fileBoxSound = new QListWidget(this);
    fileBoxSound->setObjectName(QStringLiteral("fileBoxSound"));
    fileBoxSound->setSelectionMode(QAbstractItemView::SingleSelection);
    fileBoxSound->setUniformItemSizes(true);
    fileBoxSound->setSpacing(1);
    fileBoxSound->setIconSize(QSize(16, 16));
    fileBoxSound->setItemDelegate(new FileSizeDelegate(fileBoxSound));

    cropCmd = new QPushButton(this);
    cropCmd->setObjectName(QStringLiteral("cropCmd"));
    cropCmd->setIcon(QIcon(QStringLiteral(":/icons/crop.svg")));
    cropCmd->setEnabled(false);
    chgSoundCmd = new QPushButton(this);
    chgSoundCmd->setObjectName(QStringLiteral("chgSoundCmd"));
    chgSoundCmd->setIcon(QIcon(QStringLiteral(":/icons/attach.svg")));
    chgSoundCmd->setEnabled(false);

    auto* folderRow = new QHBoxLayout;
    folderRow->setSpacing(4);
    folderRow->addWidget(soundDirPath, 1);
    folderRow->addWidget(SoundChgDirBrowse);
    auto* typeRow = new QHBoxLayout;
    typeRow->addWidget(soundTypeCombo, 1);
    typeRow->addWidget(refresh2Cmd);
    auto* actionRow = new QHBoxLayout;
    actionRow->addStretch(1);
    actionRow->addWidget(cropCmd);
    actionRow->addWidget(chgSoundCmd);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addLayout(folderRow);
    layout->addLayout(typeRow);
    layout->addWidget(fileBoxSound, 1);
    layout->addLayout(actionRow);

    connect(soundDirPath, &QLineEdit::textChanged, this, [this] { soundDirPath_Change(); });
    connect(refresh2Cmd, &QPushButton::clicked, this, [this] { refresh2Cmd_Click(); });
    connect(SoundChgDirBrowse, &QToolButton::clicked, this, [this] { SoundChgDirBrowse_Click(); });
    connect(soundTypeCombo, &QComboBox::currentIndexChanged, this, [this] { soundTypeCombo_Click(); });
    connect(fileBoxSound, &QListWidget::itemSelectionChanged, this, [this] { fileBoxSound_Click(); });
    // A click on the file that is already selected enables the commands again after a slide reset
    // disabled them.
    connect(fileBoxSound, &QListWidget::itemClicked, this, [this] { fileBoxSound_Click(); });
    // Double-click or Enter on a file uses it, as the attach command does.
    connect(fileBoxSound, &QListWidget::itemActivated, this, [this] {
        fileBoxSound_Click();
        if (chgSoundCmd->isEnabled()) chgSoundCmd_Click();
    });
    connect(chgSoundCmd, &QPushButton::clicked, this, [this] { chgSoundCmd_Click(); });
    connect(cropCmd, &QPushButton::clicked, this, [this] { cropCmd_Click(); });
}

SoundPanel::~SoundPanel() = default;

void SoundPanel::applyLanguage() {
    const Localisation& loc = loc_;
    SoundChgDirBrowse->setToolTip(loc.getMCrInterfaceStr(commontext::kChooseFolderTip));
    cropCmd->setText(loc.getMCrInterfaceStr(soundtext::kCropMidi));
    refresh2Cmd->setText(loc.getMCrInterfaceStr(commontext::kRefresh));
    chgSoundCmd->setText(loc.getMCrInterfaceStr(soundtext::kUseSound));
}

void SoundPanel::setLibraryFolder(const QString& folder) {
    soundDirPath->setText(folder);
}

QString SoundPanel::libraryFolder() const {
    return soundDirPath->text();
}

void SoundPanel::fillTypeCombo() {
    const Localisation& loc = loc_;
    {
        const QSignalBlocker quiet(soundTypeCombo);
        soundTypeCombo->clear();
        soundTypeCombo->addItem(loc.getMCrInterfaceStr(soundtext::kAllSounds));
        soundTypeCombo->addItem(loc.getMCrInterfaceStr(soundtext::kAmrSounds) + QStringLiteral(" (*.amr)"));
        soundTypeCombo->addItem(loc.getMCrInterfaceStr(soundtext::kMidiSounds) + QStringLiteral(" (*.mid)"));
    }
    setFileListFolder(soundDirPath->text());
    {
        const QSignalBlocker quiet(soundTypeCombo);
        soundTypeCombo->setCurrentIndex(0);
    }
    soundTypeCombo_Click();
}

bool SoundPanel::setFileListFolder(const QString& folder) {
    fileFolder_ = folder;
    return refreshFileList();
}

bool SoundPanel::refreshFileList(bool keepSelection) {
    const QString kept = keepSelection ? selectedFileName() : QString();
    const QSignalBlocker quiet(fileBoxSound);
    fileBoxSound->clear();
    if (fileFolder_.isEmpty()) return true;
    const QFileInfo info(fileFolder_);
    if (!info.isDir() || !info.isReadable()) return false;
    QStringList names;
    for (const QString& name :
         QDir(fileFolder_).entryList(QDir::Files | QDir::Readable, QDir::Name | QDir::IgnoreCase))
        if (listedKind_ ? mediaKindOf(name) == *listedKind_ : isSound(name)) names << name;
    const QIcon icon = listIcon(*fileBoxSound);
    const QDir dir(fileFolder_);
    const QString tooLarge = loc_.getMCrInterfaceStr(sizetext::kTooLargeToUse);
    for (const QString& name : names)
        showFileSize(*new QListWidgetItem(icon, name, fileBoxSound), loc_, QFileInfo(dir, name).size(),
                     tooLarge);
    if (!kept.isEmpty()) {
        const QList<QListWidgetItem*> same = fileBoxSound->findItems(kept, Qt::MatchExactly);
        if (!same.isEmpty()) fileBoxSound->setCurrentItem(same.front());
    }
    return true;
}

void SoundPanel::showFolderOrNothing(const QString& folder, bool keepSelection) {
    fileFolder_ = folder;
    if (!refreshFileList(keepSelection)) {
        fileFolder_.clear();
        refreshFileList();
    }
}

QString SoundPanel::selectedFileName() const {
    const QList<QListWidgetItem*> selected = fileBoxSound->selectedItems();
    return selected.isEmpty() ? QString() : selected.front()->text();
}

QString SoundPanel::selectedFilePath() const {
    const QString name = selectedFileName();
    if (name.isEmpty() || fileFolder_.isEmpty()) return QString();
    return QFileInfo(QDir(fileFolder_), name).absoluteFilePath();
}

void SoundPanel::soundDirPath_Change() {
    cropCmd->setEnabled(false);
    chgSoundCmd->setEnabled(false);
    showFolderOrNothing(soundDirPath->text(), false);
}

// Lists the folder again; a file that is still there stays selected, so the commands keep their
// state unless the selected file has gone.
void SoundPanel::refresh2Cmd_Click() {
    showFolderOrNothing(soundDirPath->text(), true);
    if (selectedFileName().isEmpty()) fileBoxSound_Click();
}

void SoundPanel::SoundChgDirBrowse_Click() {
    const QString chosen = browseFolder(platform_.dialogs, loc_, this, browseStartPath(soundDirPath->text()));
    if (!chosen.isEmpty()) {
        soundDirPath->setText(QDir::toNativeSeparators(chosen));
        // The same folder again changes no text; the list is read anew all the same.
        showFolderOrNothing(soundDirPath->text(), false);
    }
    // Cancelled or not, the commands rest until a file is clicked; a file left highlighted would
    // look ready to use.
    fileBoxSound->clearSelection();
    cropCmd->setEnabled(false);
    chgSoundCmd->setEnabled(false);
}

void SoundPanel::soundTypeCombo_Click() {
    switch (soundTypeCombo->currentIndex()) {
    case 0:
        listedKind_.reset();
        break;
    case 1:
        listedKind_ = MediaKind::Amr;
        break;
    default:
        listedKind_ = MediaKind::Midi;
        break;
    }
    showFolderOrNothing(soundDirPath->text(), true);
    fileBoxSound_Click();
}

void SoundPanel::fileBoxSound_Click() {
    const QString name = selectedFileName();
    chgSoundCmd->setEnabled(!name.isEmpty());
    cropCmd->setEnabled(mediaKindOf(name) == MediaKind::Midi);
}

void SoundPanel::chgSoundCmd_Click() {
    const QString path = selectedFilePath();
    if (!path.isEmpty()) attachSoundFile(path);
}

void SoundPanel::attachSoundFile(const QString& path) {
    Dialogs& dialogs = platform_.dialogs;
    const Localisation& loc = loc_;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        dialogs.inform(loc.getMCrErrStr(soundtext::kErrSoundNotRead)
                           .replace(QStringLiteral("%1"), QDir::toNativeSeparators(path) +
                                                              QStringLiteral(": ") + file.errorString()));
        return;
    }
    const qint64 length = file.size();
    file.close();
    if (isTooLarge(length)) {
        dialogs.inform(loc.getMCrErrStr(soundtext::kErrSoundTooLarge));
        return;
    }
    emit soundChosen(path);
}

void SoundPanel::cropCmd_Click() {
    const QString path = selectedFilePath();
    if (path.isEmpty()) return;
    // The cropped tune goes below Temp; should the folder have gone since start-up, it is made again.
    QDir().mkpath(workspace::tmpMid(appFolder_));
    const QString cropped =
        runCropWindow(platform_, loc_, appFolder_, path, window(), cropPlayer_, cropDecoder_.get());
    if (!cropped.isEmpty()) emit soundChosen(cropped);
}

void SoundPanel::disableFileCommands() {
    cropCmd->setEnabled(false);
    chgSoundCmd->setEnabled(false);
}

} // namespace mms
