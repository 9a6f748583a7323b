#include "store/staging.h"

#include "common/fileio.h"
#include "common/workspace.h"

#include <QDir>
#include <QRegularExpression>
#include <vector>

namespace mms {

namespace {

using fileio::pathExists;

const QString kReplaced = QStringLiteral("/replaced/");

QString indexName(const QString& name) {
    return name + QStringLiteral(".mmt");
}

// The message names that have an index in `folder`.
QStringList indexedNames(const QString& folder) {
    QStringList names = QDir(folder).entryList({QStringLiteral("*.mmt")}, QDir::Files | QDir::Hidden);
    for (QString& name : names)
        name.chop(4);
    return names;
}

// Puts a staging folder left by a crash in order; see recoverStore().
Status settle(const QString& a, const QString& root) {
    const QString staged = workspace::messages(root);
    const QString aside = root + kReplaced;
    const auto backIfFree = [](const QString& from, const QString& to) {
        return pathExists(from) && !pathExists(to) ? fileio::renamePath(from, to) : Status::ok();
    };
    // A staged index means the swap never reached its last step: undo every step in reverse.
    for (const QString& name : indexedNames(staged)) {
        const QString folder = workspace::messageFolder(a, name);
        if (!pathExists(staged + QLatin1Char('/') + name) && pathExists(folder))
            if (Status s = fileio::renamePath(folder, staged + QLatin1Char('/') + name); !s) return s;
        if (Status s = backIfFree(aside + name, folder); !s) return s;
        if (Status s = backIfFree(aside + indexName(name), workspace::messageIndex(a, name)); !s) return s;
        return fileio::removeTree(root);
    }
    // Otherwise an index aside is either replaced (its successor is in place) or being deleted.
    for (const QString& name : indexedNames(aside)) {
        const QString folder = workspace::messageFolder(a, name);
        if (!pathExists(workspace::messageIndex(a, name)) && pathExists(folder) && !pathExists(aside + name))
            if (Status s = fileio::renamePath(folder, aside + name); !s) return s;
    }
    return fileio::removeTree(root);
}

} // namespace

Staging::~Staging() {
    // The same rules as after a crash, so that an undo that failed is still put right.
    if (folder_.isValid()) (void)settle(appFolder_, root());
}

Status Staging::begin(const QString& appFolder, const QString& prefix) {
    appFolder_ = appFolder;
    return folder_.create(workspace::temp(appFolder), prefix);
}

QString Staging::newFolder(const QString& name) const {
    return workspace::messageFolder(root(), name);
}
QString Staging::newIndex(const QString& name) const {
    return workspace::messageIndex(root(), name);
}
QString Staging::asideFolder(const QString& name) const {
    return root() + kReplaced + name;
}
QString Staging::asideIndex(const QString& name) const {
    return root() + kReplaced + indexName(name);
}

Status swapIn(const QString& a, const Staging& staging, const QString& name) {
    const QString oldFolder = workspace::messageFolder(a, name), oldIndex = workspace::messageIndex(a, name);
    if (Status s = fileio::createFolder(staging.root() + kReplaced); !s) return s;
    // Each done step with its undo, run backwards on failure.
    std::vector<std::pair<QString, QString>> moved;
    const auto move = [&](const QString& from, const QString& to) {
        Status s = fileio::renamePath(from, to);
        if (s) moved.emplace_back(from, to);
        return s;
    };
    Status result = Status::ok();
    if (pathExists(oldIndex)) result = move(oldIndex, staging.asideIndex(name));
    if (result && pathExists(oldFolder)) result = move(oldFolder, staging.asideFolder(name));
    if (result) result = move(staging.newFolder(name), oldFolder);
    if (result) result = move(staging.newIndex(name), oldIndex);
    if (!result) {
        for (auto it = moved.rbegin(); it != moved.rend(); ++it)
            (void)fileio::renamePath(it->second, it->first);
    }
    return result;
}

Status moveAside(const QString& a, const Staging& staging, const QString& name) {
    if (Status s = fileio::createFolder(staging.root() + kReplaced); !s) return s;
    const QString index = workspace::messageIndex(a, name), folder = workspace::messageFolder(a, name);
    if (pathExists(index))
        if (Status s = fileio::renamePath(index, staging.asideIndex(name)); !s) return s;
    if (!pathExists(folder)) return Status::ok();
    if (Status s = fileio::renamePath(folder, staging.asideFolder(name)); !s) {
        // The message stays whole when its folder cannot follow its index.
        (void)fileio::renamePath(staging.asideIndex(name), index);
        return s;
    }
    return Status::ok();
}

Status recoverStore(const QString& a) {
    static const QRegularExpression store(QStringLiteral("/(saving|opening|deleting)-[0-9]+$"));
    Status result = Status::ok();
    for (ScratchFolder& folder : abandonedScratch(workspace::temp(a))) {
        const Status s = store.match(folder.path()).hasMatch() ? settle(a, folder.path())
                                                               : fileio::removeTree(folder.path());
        if (!s && result) result = s;
    }
    // Staging names of earlier versions, inside the store itself: never complete messages.
    static const QRegularExpression hidden(QStringLiteral("^\\.(saving|opening)-[0-9]+(\\.mmt)?$"));
    const QString messages = workspace::messages(a);
    for (const QString& entry :
         QDir(messages).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
        if (hidden.match(entry).hasMatch())
            if (Status s = fileio::removeTree(messages + QLatin1Char('/') + entry); !s && result) result = s;
    return result;
}

} // namespace mms
