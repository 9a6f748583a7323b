#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class QSettings;

namespace mms {

// What the composer keeps from one run to the next.
struct RememberedState {
    QByteArray geometry; // the window's
    QByteArray splitter; // the sizes of the strip, slide and library columns
    QString pictureFolder;
    QString soundFolder;
    int tab = 0;        // the library tab shown
    QStringList recent; // stored messages, the last used first
};

inline constexpr int kRecentLimit = 8;

// `recent` with `name` moved or added to the front, at most kRecentLimit names.
QStringList withRecent(QStringList recent, const QString& name);

RememberedState loadRememberedState(const QSettings& settings);
void saveRememberedState(QSettings& settings, const RememberedState& state);
// Only the recent list, which changes at every save and open.
void saveRecent(QSettings& settings, const QStringList& recent);

} // namespace mms
