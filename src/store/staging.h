#pragma once

#include "common/scratchfolder.h"
#include "model/status.h"

#include <QString>

namespace mms {

// The scratch folder of one store operation (a ScratchFolder "saving-", "opening-" or "deleting-").
// A new package is written below it as if
// it were an application folder (UserData/MMS/<name> and <name>.mmt); what it replaces is moved
// aside into replaced/. Whatever a crash leaves here is finished or undone by recoverStore() and
// then removed; the destructor removes it after an operation that ran to its end.
class Staging {
public:
    Staging() = default;
    Staging(const Staging&) = delete;
    Staging& operator=(const Staging&) = delete;
    ~Staging();

    Status begin(const QString& appFolder, const QString& prefix);
    const QString& root() const { return folder_.path(); }
    QString newFolder(const QString& name) const;
    QString newIndex(const QString& name) const;
    QString asideFolder(const QString& name) const;
    QString asideIndex(const QString& name) const;

private:
    QString appFolder_;
    ScratchFolder folder_;
};

// Moves the package staged under `name` into the store (or the working copy, for "temp"), moving
// what was there aside first. The index goes last: until it is in place the old message is whole in
// the store or aside. A step that fails puts everything back.
Status swapIn(const QString& appFolder, const Staging& staging, const QString& name);

// Moves the stored message (index first, so that it is no longer listed) aside into `staging`, where
// it goes with the staging folder.
Status moveAside(const QString& appFolder, const Staging& staging, const QString& name);

// Finishes or undoes every store operation that a crash interrupted, and removes its scratch: a swap
// whose new index was not yet in place is undone, one whose index was is finished, and a deletion
// whose index was moved aside is finished. Any other scratch folder whose program ended (a copy read
// by mmsc, an MMS being encoded) is removed. Folders of programs still running are left alone.
Status recoverStore(const QString& appFolder);

} // namespace mms
