#pragma once

#include "model/status.h"

#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

class QLockFile;

namespace mms {

// The scratch folder of one operation below the workspace's Temp: Temp/<prefix>N ("saving-3"), held
// through the lock file beside it (Temp/saving-3.lock) while the program that made it runs. A folder
// whose program ended without removing it (a crash, a kill) is found by abandonedScratch() at the
// next start, so that nothing a crash leaves lasts.
class ScratchFolder {
public:
    ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ScratchFolder(ScratchFolder&&) noexcept;
    ScratchFolder& operator=(ScratchFolder&&) noexcept;
    // Removes the folder, then lets go of it; a Temp made for it goes too when nothing else is in it.
    ~ScratchFolder();

    // `prefix` is one of kScratchPrefixes.
    Status create(const QString& temp, const QString& prefix);
    bool isValid() const { return lock_ != nullptr; }
    const QString& path() const { return path_; }

private:
    friend std::vector<ScratchFolder> abandonedScratch(const QString& temp);
    QString path_;
    QString madeParent_;
    std::unique_ptr<QLockFile> lock_;
};

// The prefixes scratch folders are made with; only folders of these names are ever cleaned up.
inline const QStringList kScratchPrefixes{QStringLiteral("saving-"),   QStringLiteral("opening-"),
                                          QStringLiteral("deleting-"), QStringLiteral("mms-"),
                                          QStringLiteral("message-"),  QStringLiteral("build-")};

// The scratch folders below `temp` left by programs that have ended, each now held by the caller
// (and removed with the object unless the caller removes it first).
std::vector<ScratchFolder> abandonedScratch(const QString& temp);

} // namespace mms
