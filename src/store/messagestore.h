#pragma once

#include "model/messagestate.h"

#include "model/cslide.h"
#include "model/status.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <vector>

namespace mms {

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
// A name a message may be saved under: a valid name that does not start with "." (names starting with
// "." are hidden, and were once the store's own scratch names).
bool isStorableMessageName(const QString& name);

// The message store below the application folder A.
class MessageStore {
public:
    explicit MessageStore(QString appFolder) : appFolder_(std::move(appFolder)) {}
    const QString& appFolder() const { return appFolder_; }

    // Stored messages by name (never the working copy), sorted by name.
    std::vector<StoredMessageInfo> list() const;
    // A file or folder of that name, or its index, exists in UserData/MMS (always false for an invalid
    // name). An index whose folder went missing still counts, so that it can be opened or deleted.
    bool exists(const QString& name) const;
    // The index file name + ".mmt" exists (always false for an invalid name).
    bool hasIndex(const QString& name) const;

    // Finishes or undoes whatever a crash interrupted in an earlier save, open or delete, and removes
    // its scratch from Temp. Save, delete and the working copy copy run it first; so does start-up.
    Status recover() const;

    // Stores `slides` under `name`, replacing any stored message of that name whole. The new package
    // is written in Temp and swapped in only when complete: on failure, or after a crash at any point
    // once recover() has run, the stored copy is the old one or the new one, whole.
    Status save(const CSlide& slides, const QString& name, const QString& subject) const;
    // Removes the stored message's folder and index: both are moved out of the store (the index
    // first) and then removed. A folder whose entries cannot be removed is reported before anything
    // is deleted.
    Status remove(const QString& name) const;

    // Copies the stored message into the working copy UserData/MMS/temp (+ temp.mmt), replacing any
    // earlier working copy. The copy is made in Temp first and swapped in as a save is: on failure the
    // earlier working copy is left as it was.
    Status copyToWorkingCopy(const QString& name) const;
    // Copies the files of the stored message's folder into `folder`, which must not exist yet (a
    // private working copy, for tools that must leave the composer's one alone).
    Status copyPackage(const QString& name, const QString& folder) const;
    // Removes the working copy (folder UserData/MMS/temp and temp.mmt, whichever exists).
    Status removeWorkingCopy() const;
    // Reads the index of `name` and resolves every part against `folder` (normally the working copy).
    // A flagged part whose file is missing is left empty and listed in missingFiles; a 3GP clip
    // ("vdo" + N + ".3gp") comes back as the picture. An index that cannot be read or is malformed
    // fails with a message naming the file and line, and `out` is left as it was.
    Status load(const QString& name, const QString& folder, LoadedMessage& out) const;

private:
    QString appFolder_;
};

} // namespace mms
