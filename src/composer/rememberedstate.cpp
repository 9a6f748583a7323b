#include "composer/rememberedstate.h"

#include <QSettings>

namespace mms {

namespace {
const QString kGeometry = QStringLiteral("window/geometry");
const QString kSplitter = QStringLiteral("window/columns");
const QString kTab = QStringLiteral("window/libraryTab");
const QString kPictureFolder = QStringLiteral("libraries/pictures");
const QString kSoundFolder = QStringLiteral("libraries/sounds");
const QString kRecent = QStringLiteral("messages/recent");
} // namespace

QStringList withRecent(QStringList recent, const QString& name) {
    recent.removeAll(name);
    recent.prepend(name);
    while (recent.size() > kRecentLimit)
        recent.removeLast();
    return recent;
}

RememberedState loadRememberedState(const QSettings& s) {
    RememberedState state;
    state.geometry = s.value(kGeometry).toByteArray();
    state.splitter = s.value(kSplitter).toByteArray();
    state.pictureFolder = s.value(kPictureFolder).toString();
    state.soundFolder = s.value(kSoundFolder).toString();
    state.tab = s.value(kTab, 0).toInt();
    // A list edited by hand may hold blanks or repeats; it is read as if it had been built here.
    const QStringList recent = s.value(kRecent).toStringList();
    for (auto it = recent.crbegin(); it != recent.crend(); ++it) {
        if (!it->trimmed().isEmpty()) state.recent = withRecent(state.recent, *it);
    }
    return state;
}

void saveRememberedState(QSettings& s, const RememberedState& state) {
    s.setValue(kGeometry, state.geometry);
    s.setValue(kSplitter, state.splitter);
    s.setValue(kPictureFolder, state.pictureFolder);
    s.setValue(kSoundFolder, state.soundFolder);
    s.setValue(kTab, state.tab);
    saveRecent(s, state.recent);
}

void saveRecent(QSettings& s, const QStringList& recent) {
    s.setValue(kRecent, recent);
    s.sync();
}

} // namespace mms
