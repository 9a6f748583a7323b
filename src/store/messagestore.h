#pragma once

#include "model/cslide.h"
#include "model/status.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <vector>

namespace mms {

// The composer's notion of the current message, shared with the name dialogs: they hand their result
// back by writing currentFile, isOverwrite and isCancel before they close.
struct MessageState {
    QString txtsubject;
    QString currentFile; // empty while the message has never been saved or opened
    bool isModified = false;
    bool isOverwrite = false;
    bool isCancel = false;
};

// One row of a name dialog's list, and one line of `mmsc list`.
struct StoredMessageInfo {
    QString name;
    QDateTime indexModified;
};

// A slide as read back from a stored message. Paths name files of the folder it was read from.
struct LoadedSlide {
    SlideDur duration;
    QString picturePath;
    QString text;
    QString soundPath;
};

struct LoadedMessage {
    QString subject;
    std::vector<LoadedSlide> slides;
    QStringList missingFiles; // parts flagged in the index whose file was not found; left empty
};

// A message name is one plain file name: not empty, not "." or "..", without '/', '\' or control
// characters, and not "temp" (the working copy).
bool isValidMessageName(const QString& name);

// The message store below the application folder A.
class MessageStore {
public:
    explicit MessageStore(QString appFolder) : appFolder_(std::move(appFolder)) {}
    const QString& appFolder() const { return appFolder_; }

    // Stored messages by name (never the working copy), sorted by name.
    std::vector<StoredMessageInfo> list() const;
    // A file or folder of that name exists in UserData/MMS.
    bool exists(const QString& name) const;

    // Stores `slides` under `name`, replacing any stored message of that name whole. The new package
    // is written beside the old one and swapped in only when complete: on failure the stored copy is
    // untouched and the message names what failed.
    Status save(const CSlide& slides, const QString& name, const QString& subject) const;
    // Removes the stored message's folder and index.
    Status remove(const QString& name) const;

    // Copies the stored message into the working copy UserData/MMS/temp (+ temp.mmt), replacing any
    // earlier working copy.
    Status copyToWorkingCopy(const QString& name) const;
    // Removes the working copy when temp.mmt exists.
    Status removeWorkingCopy() const;
    // Reads the index of `name` and resolves every part against `folder` (normally the working copy).
    Status load(const QString& name, const QString& folder, LoadedMessage& out) const;

private:
    QString appFolder_;
};

} // namespace mms
