#include "sound/widgets/soundpanel.h"

#include "composer/localisation.h"
#include "composer/widgets/composerhost.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QIcon>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace mms {

SoundPanel::SoundPanel(ComposerHost& host, QWidget* parent) : QWidget(parent), host_(host) {
    setObjectName(QStringLiteral("soundPanel"));

    soundDirPath = new QLineEdit(this);
    soundDirPath->setObjectName(QStringLiteral("soundDirPath"));
    SoundChgDirBrowse = new QToolButton(this);
    SoundChgDirBrowse->setObjectName(QStringLiteral("SoundChgDirBrowse"));
    SoundChgDirBrowse->setIcon(QIcon(QStringLiteral(":/composer/icons/folder.svg")));
    SoundChgDirBrowse->setAutoRaise(true);
    refresh2Cmd = new QPushButton(this);
    refresh2Cmd->setObjectName(QStringLiteral("refresh2Cmd"));
    refresh2Cmd->setIcon(QIcon(QStringLiteral(":/composer/icons/refresh.svg")));
    soundTypeCombo = new QComboBox(this);
    soundTypeCombo->setObjectName(QStringLiteral("soundTypeCombo"));
    soundTypeCombo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);

    fileBoxSound = new QListWidget(this);
    fileBoxSound->setObjectName(QStringLiteral("fileBoxSound"));
    fileBoxSound->setSelectionMode(QAbstractItemView::SingleSelection);
    fileBoxSound->setUniformItemSizes(true);

    cropCmd = new QPushButton(this);
    cropCmd->setObjectName(QStringLiteral("cropCmd"));
    cropCmd->setIcon(QIcon(QStringLiteral(":/composer/icons/crop.svg")));
    cropCmd->setEnabled(false);
    chgSoundCmd = new QPushButton(this);
    chgSoundCmd->setObjectName(QStringLiteral("chgSoundCmd"));
    chgSoundCmd->setIcon(QIcon(QStringLiteral(":/composer/icons/attach.svg")));
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
    connect(chgSoundCmd, &QPushButton::clicked, this, [this] { chgSoundCmd_Click(); });
    connect(cropCmd, &QPushButton::clicked, this, [this] { cropCmd_Click(); });
}

void SoundPanel::applyLanguage() {
    const Localisation& loc = host_.localisation();
    SoundChgDirBrowse->setToolTip(loc.getMCrInterfaceStr(19));
    cropCmd->setText(loc.getMCrInterfaceStr(23));
    refresh2Cmd->setText(loc.getMCrInterfaceStr(20));
    chgSoundCmd->setText(loc.getMCrInterfaceStr(22));
}

void SoundPanel::setLibraryFolder(const QString& folder) {
    soundDirPath->setText(folder);
}

void SoundPanel::fillTypeCombo() {
    const Localisation& loc = host_.localisation();
    {
        const QSignalBlocker quiet(soundTypeCombo);
        soundTypeCombo->clear();
        soundTypeCombo->addItem(loc.getMCrInterfaceStr(33));
        soundTypeCombo->addItem(loc.getMCrInterfaceStr(34) + QStringLiteral(" (*.amr)"));
        soundTypeCombo->addItem(loc.getMCrInterfaceStr(35) + QStringLiteral(" (*.mid)"));
    }
    setFileListPattern(QStringLiteral("*.mid;*.gif"));
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

void SoundPanel::setFileListPattern(const QString& pattern) {
    filePattern_ = pattern;
    refreshFileList();
}

bool SoundPanel::refreshFileList() {
    const QSignalBlocker quiet(fileBoxSound);
    fileBoxSound->clear();
    if (fileFolder_.isEmpty()) return true;
    const QFileInfo info(fileFolder_);
    if (!info.isDir() || !info.isReadable()) return false;
    const QStringList patterns = filePattern_.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    const QStringList names =
        QDir(fileFolder_).entryList(patterns, QDir::Files | QDir::Readable, QDir::Name | QDir::IgnoreCase);
    fileBoxSound->addItems(names);
    return true;
}

QString SoundPanel::selectedFileName() const {
    const QList<QListWidgetItem*> selected = fileBoxSound->selectedItems();
    return selected.isEmpty() ? QString() : selected.front()->text();
}

void SoundPanel::soundDirPath_Change() {
    cropCmd->setEnabled(false);
    chgSoundCmd->setEnabled(false);
    if (!setFileListFolder(soundDirPath->text())) setFileListFolder(QString());
}

void SoundPanel::refresh2Cmd_Click() {
    if (!setFileListFolder(soundDirPath->text())) setFileListFolder(QString());
}

// Not wired yet: the folder chooser of the library.
void SoundPanel::SoundChgDirBrowse_Click() {}

void SoundPanel::soundTypeCombo_Click() {
    switch (soundTypeCombo->currentIndex()) {
    case 0:
        setFileListPattern(QStringLiteral("*.amr;*.mid"));
        break;
    case 1:
        setFileListPattern(QStringLiteral("*.amr"));
        break;
    default:
        setFileListPattern(QStringLiteral("*.mid"));
        break;
    }
    if (!setFileListFolder(soundDirPath->text())) setFileListFolder(QString());
    fileBoxSound_Click();
}

void SoundPanel::fileBoxSound_Click() {
    const QString name = selectedFileName();
    chgSoundCmd->setEnabled(!name.isEmpty());
    cropCmd->setEnabled(name.toLower().endsWith(QLatin1String(".mid")));
}

// Not wired yet: attaching the chosen sound to the slide.
void SoundPanel::chgSoundCmd_Click() {}

// Not wired yet: the crop window.
void SoundPanel::cropCmd_Click() {}

} // namespace mms
