#pragma once

#include "model/cslide.h"
#include "model/status.h"
#include "package/mmsaddress.h"

#include <QString>

namespace mms {

// The file steps of the composer's two export commands.

// A + "/upload": the base name the package archive is built under before it is moved (A/upload.tpl).
QString uploadArchiveBase(const QString& appFolder);

// Moves `archive` to `destination`, replacing a file there. The destination is replaced in one step
// where the file system allows it, else through a save file that keeps an earlier file whole until the
// copy is complete; `archive` is removed only once its copy is in place. On failure nothing at the
// destination has changed and `archive` is still there.
Status moveArchive(const QString& archive, const QString& destination);

// The export without questions, for scripts: builds A/upload.tpl from `slides` and moves it to
// `destination`. Unlike the composer, which keeps the archive for another try, a failure removes it.
Status exportArchive(CSlide& slides, const QString& appFolder, const QString& subject,
                     const QString& destination);

// Writes `slides` as one MMS send request to `outPath`, which is replaced only by a complete request.
// The package the request is made from is written into a scratch folder below A/Temp and removed
// again, so nothing in the message store changes; its presentation names exactly the parts sent.
// A media file that cannot be read fails the whole request, naming the file.
Status writeMmsFile(const CSlide& slides, const QString& appFolder, const QString& subject,
                    const QString& outPath, const MmsRecipients& recipients = {});

} // namespace mms
