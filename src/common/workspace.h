#pragma once

#include <QString>
#include <QStringList>

// The fixed folder layout below the application folder A (no trailing separator).
namespace mms::workspace {

inline QString userData(const QString& a) {
    return a + QStringLiteral("/UserData");
}
inline QString messages(const QString& a) {
    return a + QStringLiteral("/UserData/MMS");
}
inline QString soundLibrary(const QString& a) {
    return a + QStringLiteral("/UserData/Sound");
}
inline QString pictureLibrary(const QString& a) {
    return a + QStringLiteral("/UserData/Picture");
}
inline QString temp(const QString& a) {
    return a + QStringLiteral("/Temp");
}
inline QString tmpJpg(const QString& a) {
    return a + QStringLiteral("/Temp/tmpJPG");
}
inline QString tmpMid(const QString& a) {
    return a + QStringLiteral("/Temp/tmpMID");
}

// A stored message: its package folder and its index file beside it.
inline QString messageFolder(const QString& a, const QString& name) {
    return messages(a) + QLatin1Char('/') + name;
}
inline QString messageIndex(const QString& a, const QString& name) {
    return messageFolder(a, name) + QStringLiteral(".mmt");
}

// The working copy of the message last opened.
inline const QString kWorkingCopyName = QStringLiteral("temp");
inline QString workingCopy(const QString& a) {
    return messageFolder(a, kWorkingCopyName);
}
inline QString workingCopyIndex(const QString& a) {
    return messageIndex(a, kWorkingCopyName);
}

// The seven workspace folders, parents before children.
inline QStringList folders(const QString& a) {
    return {userData(a), messages(a), soundLibrary(a), pictureLibrary(a), temp(a), tmpJpg(a), tmpMid(a)};
}

} // namespace mms::workspace
