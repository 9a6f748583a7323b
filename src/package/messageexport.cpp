#include "package/messageexport.h"

#include "common/fileio.h"
#include "common/scratchfolder.h"
#include "common/workspace.h"
#include "package/mmsencoder.h"
#include "package/packagewriter.h"

#include <QDir>
#include <QFile>

namespace mms {

namespace {

QString native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

} // namespace

QString uploadArchiveBase(const QString& appFolder) {
    return appFolder + QStringLiteral("/upload");
}

Status moveArchive(const QString& archive, const QString& destination) {
    if (destination.isEmpty()) return Status::failure(QStringLiteral("No file name was given to export to"));
    if (fileio::renamePath(archive, destination)) return Status::ok();

    // Another file system, most likely: copy instead.
    QFile in(archive);
    if (!in.open(QIODevice::ReadOnly))
        return Status::failure(
            QStringLiteral("Cannot read \"%1\": %2").arg(native(archive), in.errorString()));
    const QByteArray bytes = in.readAll();
    if (in.error() != QFileDevice::NoError)
        return Status::failure(
            QStringLiteral("Cannot read \"%1\": %2").arg(native(archive), in.errorString()));
    in.close();
    if (Status s = fileio::writeFileSafely(destination, bytes); !s) return s;
    // The copy is complete; an archive left behind is replaced by the next export.
    (void)fileio::removeTree(archive);
    return Status::ok();
}

Status exportArchive(CSlide& slides, const QString& appFolder, const QString& subject,
                     const QString& destination) {
    if (Status s = fileio::createPath(appFolder); !s) return s;
    const QString base = uploadArchiveBase(appFolder);
    slides.setfolderpath(QString());
    slides.setfilename(base);
    if (Status s = generateSMIL(slides, appFolder, subject); !s) return s;
    const QString archive = base + QStringLiteral(".tpl");
    Status moved = moveArchive(archive, destination);
    if (!moved) (void)fileio::removeTree(archive);
    return moved;
}

Status writeMmsFile(const CSlide& slides, const QString& appFolder, const QString& subject,
                    const QString& outPath, const MmsRecipients& recipients) {
    ScratchFolder scratch;
    if (Status s = scratch.create(workspace::temp(appFolder), QStringLiteral("mms-")); !s) return s;

    // The package is written in store mode, below the scratch folder as if it were the application
    // folder; the slides still point at their own files, which are only read.
    const QString name = QStringLiteral("message");
    CSlide copy;
    for (const CSlideNode* node = slides.firstItem().get(); node; node = node->NextNode.get())
        copy.InsertAtBack(node->DataSlideDur, node->DataImgPath, node->DataText, node->DataSoundPath);
    copy.setfolderpath(name);
    copy.setfilename(name);
    if (Status s = generateSMIL(copy, scratch.path(), subject); !s) return s;
    return writeSendRequest(copy, workspace::messageFolder(scratch.path(), name), subject, outPath, nullptr,
                            recipients);
}

} // namespace mms
