#include "common/scratchfolder.h"

#include "common/fileio.h"

#include <QDir>
#include <QLockFile>
#include <QRegularExpression>

namespace mms {

namespace {

const QString kLock = QStringLiteral(".lock");

// Only whether its owner still runs decides: a long save must not look abandoned.
std::unique_ptr<QLockFile> lockFor(const QString& folder) {
    auto lock = std::make_unique<QLockFile>(folder + kLock);
    lock->setStaleLockTime(0);
    return lock;
}

} // namespace

ScratchFolder::ScratchFolder() = default;
ScratchFolder::ScratchFolder(ScratchFolder&&) noexcept = default;
ScratchFolder& ScratchFolder::operator=(ScratchFolder&&) noexcept = default;

ScratchFolder::~ScratchFolder() {
    if (!lock_) return;
    (void)fileio::removeTree(path_);
    lock_->unlock();
    if (!madeParent_.isEmpty() &&
        QDir(madeParent_).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
        (void)fileio::removeEmptyFolder(madeParent_);
}

Status ScratchFolder::create(const QString& temp, const QString& prefix) {
    const bool madeParent = !fileio::pathExists(temp);
    if (Status s = fileio::createPath(temp); !s) return s;
    for (int n = 1;; ++n) {
        const QString path = temp + QLatin1Char('/') + prefix + QString::number(n);
        if (fileio::pathExists(path) || fileio::pathExists(path + kLock)) continue;
        std::unique_ptr<QLockFile> lock = lockFor(path);
        if (!lock->tryLock(0)) {
            if (lock->error() == QLockFile::LockFailedError) continue; // taken a moment ago
            return Status::failure(
                QStringLiteral("Cannot create a lock file in \"%1\"").arg(QDir::toNativeSeparators(temp)));
        }
        // The lock is made before the folder and removed after it, so a folder is never unowned.
        if (fileio::pathExists(path)) continue;
        if (Status s = fileio::createFolder(path); !s) return s;
        path_ = path;
        if (madeParent) madeParent_ = temp;
        lock_ = std::move(lock);
        return Status::ok();
    }
}

std::vector<ScratchFolder> abandonedScratch(const QString& temp) {
    static const QRegularExpression ours(QStringLiteral("^(%1)[0-9]+$").arg(kScratchPrefixes.join(u'|')));
    QStringList names;
    for (const QString& entry :
         QDir(temp).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
        const QString bare = entry.endsWith(kLock) ? entry.chopped(kLock.size()) : entry;
        if (ours.match(bare).hasMatch() && !names.contains(bare)) names << bare;
    }
    std::vector<ScratchFolder> found;
    for (const QString& name : names) {
        ScratchFolder folder;
        folder.path_ = temp + QLatin1Char('/') + name;
        folder.lock_ = lockFor(folder.path_);
        if (!folder.lock_->tryLock(0)) {
            folder.lock_.reset(); // its program still runs
            continue;
        }
        found.push_back(std::move(folder));
    }
    return found;
}

} // namespace mms
