#include "store/messagestore.h"

#include "common/fileio.h"
#include "common/mediakind.h"
#include "common/workspace.h"
#include "package/packagewriter.h"
#include "store/messageindex.h"
#include "store/staging.h"
#include "store/storefiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <algorithm>

namespace mms {

namespace fs = storefiles;

namespace {

QString native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

Status notAName(const QString& name) {
    return Status::failure(QStringLiteral("\"%1\" is not a message name").arg(name));
}

// Every check that must pass before the replacement of a stored message starts.
Status checkReplaceable(const QString& folder) {
    const QString blocked = fs::firstUndeletable(folder);
    if (!blocked.isEmpty())
        return Status::failure(QStringLiteral("\"%1\" is read-only, so the stored message cannot be replaced")
                                   .arg(native(blocked)));
    return Status::ok();
}

// The first file per "stem" (the part before the first dot: "pic10" for "pic10.jpg"), in name order,
// so that "pic" + N + ".*" is one look-up and slide 10 can never pick up slide 1's "pic1.gif".
QHash<QString, QString> firstFilePerStem(const QString& folder) {
    QHash<QString, QString> first;
    const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    for (const QString& name : names) {
        const qsizetype dot = name.indexOf(QLatin1Char('.'));
        if (dot <= 0) continue;
        const QString stem = name.left(dot);
        if (!first.contains(stem)) first.insert(stem, name);
    }
    return first;
}

} // namespace

bool isStorableMessageName(const QString& name) {
    return isValidMessageName(name) && !name.startsWith(QLatin1Char('.'));
}

std::vector<StoredMessageInfo> MessageStore::list() const {
    std::vector<StoredMessageInfo> rows;
    const QFileInfoList indexes =
        QDir(workspace::messages(appFolder_))
            .entryInfoList({QStringLiteral("*.mmt")}, QDir::Files | QDir::CaseSensitive, QDir::NoSort);
    for (const QFileInfo& index : indexes) {
        const QString fileName = index.fileName();
        const QString name = fileName.left(fileName.lastIndexOf(QLatin1Char('.')));
        if (!isStorableMessageName(name)) continue;
        rows.push_back({name, index.lastModified()});
    }
    std::sort(rows.begin(), rows.end(), [](const StoredMessageInfo& x, const StoredMessageInfo& y) {
        const int blind = x.name.compare(y.name, Qt::CaseInsensitive);
        return blind != 0 ? blind < 0 : x.name < y.name;
    });
    return rows;
}

bool MessageStore::exists(const QString& name) const {
    return isValidMessageName(name) && (fs::pathExists(workspace::messageFolder(appFolder_, name)) ||
                                        fs::pathExists(workspace::messageIndex(appFolder_, name)));
}

bool MessageStore::hasIndex(const QString& name) const {
    return isValidMessageName(name) && QFileInfo(workspace::messageIndex(appFolder_, name)).isFile();
}

Status MessageStore::recover() const {
    return recoverStore(appFolder_);
}

Status MessageStore::save(const CSlide& slides, const QString& name, const QString& subject) const {
    if (!isStorableMessageName(name)) return notAName(name);
    (void)recover();
    const QString messages = workspace::messages(appFolder_);
    if (Status s = fileio::createPath(messages); !s) return s;
    if (Status s = checkReplaceable(workspace::messageFolder(appFolder_, name)); !s) return s;

    // The package is written in Temp, below a folder laid out as a workspace of its own; the slides
    // may point into the old folder itself, which is still whole while they are copied.
    Staging staging;
    if (Status s = staging.begin(appFolder_, QStringLiteral("saving-")); !s) return s;
    CSlide copy;
    for (const CSlideNode* node = slides.firstItem().get(); node; node = node->NextNode.get())
        copy.InsertAtBack(node->DataSlideDur, node->DataImgPath, node->DataText, node->DataSoundPath);
    copy.setfolderpath(name);
    copy.setfilename(name);
    if (Status s = generateSMIL(copy, staging.root(), subject); !s) return s;
    if (!QFileInfo(staging.newIndex(name)).isFile())
        return Status::failure(
            QStringLiteral("The index \"%1\" was not written").arg(native(staging.newIndex(name))));
    return swapIn(appFolder_, staging, name);
}

Status MessageStore::remove(const QString& name) const {
    if (!isValidMessageName(name)) return notAName(name);
    (void)recover();
    const QString folder = workspace::messageFolder(appFolder_, name);
    const QString index = workspace::messageIndex(appFolder_, name);
    if (!fs::pathExists(folder) && !fs::pathExists(index))
        return Status::failure(QStringLiteral("There is no stored message \"%1\"").arg(name));
    const QString messages = workspace::messages(appFolder_);
    QString blocked = fs::entriesRemovable(messages) ? fs::firstUndeletable(folder) : messages;
    if (!blocked.isEmpty())
        return Status::failure(
            QStringLiteral("\"%1\" is read-only; nothing of the message was deleted").arg(native(blocked)));
    // Moved out of the store whole first, so that a crash never leaves half a message listed.
    Staging staging;
    if (Status s = staging.begin(appFolder_, QStringLiteral("deleting-")); !s) return s;
    return moveAside(appFolder_, staging, name);
}

Status MessageStore::copyPackage(const QString& name, const QString& folder) const {
    if (!isValidMessageName(name)) return notAName(name);
    const QString source = workspace::messageFolder(appFolder_, name);
    // A message saved without any file still has its folder; one that lost it opens with every part
    // reported missing.
    if (!fs::pathExists(source)) {
        return fileio::createFolder(folder);
    }
    return fs::copyTree(source, folder);
}

Status MessageStore::copyToWorkingCopy(const QString& name) const {
    if (!isValidMessageName(name)) return notAName(name);
    (void)recover();
    const QString index = workspace::messageIndex(appFolder_, name);
    if (!QFileInfo(index).isFile())
        return Status::failure(QStringLiteral("The message index \"%1\" does not exist").arg(native(index)));
    const QString blocked = fs::firstUndeletable(workspace::workingCopy(appFolder_));
    if (!blocked.isEmpty())
        return Status::failure(
            QStringLiteral("\"%1\" is read-only; the working copy was kept").arg(native(blocked)));
    Staging staging;
    if (Status s = staging.begin(appFolder_, QStringLiteral("opening-")); !s) return s;
    const QString copy = workspace::kWorkingCopyName;
    if (Status s = fileio::createPath(workspace::messages(staging.root())); !s) return s;
    if (Status s = copyPackage(name, staging.newFolder(copy)); !s) return s;
    if (Status s = fs::copyFile(index, staging.newIndex(copy)); !s) return s;
    return swapIn(appFolder_, staging, copy);
}

Status MessageStore::removeWorkingCopy() const {
    const QString folder = workspace::workingCopy(appFolder_);
    const QString blocked = fs::firstUndeletable(folder);
    if (!blocked.isEmpty())
        return Status::failure(
            QStringLiteral("\"%1\" is read-only; the working copy was kept").arg(native(blocked)));
    if (!fs::pathExists(folder) && !fs::pathExists(workspace::workingCopyIndex(appFolder_)))
        return Status::ok();
    // Out of the store whole first, as a deleted message is.
    Staging staging;
    if (Status s = staging.begin(appFolder_, QStringLiteral("deleting-")); !s) return s;
    return moveAside(appFolder_, staging, workspace::kWorkingCopyName);
}

Status MessageStore::load(const QString& name, const QString& folder, LoadedMessage& out) const {
    if (!isValidMessageName(name)) return notAName(name);
    const QString indexPath = workspace::messageIndex(appFolder_, name);
    QFile file(indexPath);
    if (!file.open(QIODevice::ReadOnly))
        return Status::failure(QStringLiteral("Cannot read the message index \"%1\": %2")
                                   .arg(native(indexPath), file.errorString()));
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return Status::failure(QStringLiteral("Cannot read the message index \"%1\": %2")
                                   .arg(native(indexPath), file.errorString()));
    MessageIndex index;
    if (Status s = parseMessageIndex(bytes, index); !s)
        return Status::failure(
            QStringLiteral("The message index \"%1\" is malformed: %2").arg(native(indexPath), s.message()));

    const QHash<QString, QString> files = firstFilePerStem(folder);
    const auto pathOf = [&](const QString& fileName) { return folder + QLatin1Char('/') + fileName; };
    LoadedMessage result;
    result.subject = index.subject;
    int n = 0;
    for (const IndexLine& line : index.slides) {
        const QString number = QString::number(++n);
        LoadedSlide slide;
        slide.duration = line.duration;
        if (line.hasPicture) {
            const QString picture = files.value(QStringLiteral("pic") + number);
            const QString clip = files.value(QStringLiteral("vdo") + number);
            if (!picture.isEmpty())
                slide.picturePath = pathOf(picture);
            else if (isVideoClip(clip))
                slide.picturePath = pathOf(clip);
            else
                result.missingFiles << QStringLiteral("pic") + number + QStringLiteral(".*");
        }
        if (line.hasText) {
            const QString textName = QStringLiteral("text") + number + QStringLiteral(".txt");
            QFile text(pathOf(textName));
            if (text.open(QIODevice::ReadOnly)) slide.text = QString::fromUtf8(text.readAll());
            if (!text.isOpen() || text.error() != QFileDevice::NoError) {
                slide.text.clear();
                result.missingFiles << textName;
            }
        }
        if (line.hasSound) {
            const QString sound = files.value(QStringLiteral("sound") + number);
            if (!sound.isEmpty())
                slide.soundPath = pathOf(sound);
            else
                result.missingFiles << QStringLiteral("sound") + number + QStringLiteral(".*");
        }
        result.slides.push_back(std::move(slide));
    }
    out = std::move(result);
    return Status::ok();
}

} // namespace mms
