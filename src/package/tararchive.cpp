#include "package/tararchive.h"

#include "common/fileio.h"
#include "model/cslide.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <archive.h>
#include <archive_entry.h>
#include <memory>

namespace mms {

namespace {

struct ArchiveDeleter {
    void operator()(archive* a) const { archive_write_free(a); }
};
struct EntryDeleter {
    void operator()(archive_entry* e) const { archive_entry_free(e); }
};

// libarchive hands its finished blocks to the device; a short write keeps the device's own reason.
struct Sink {
    QIODevice* device;
    QString error;
};

la_ssize_t writeToDevice(archive*, void* clientData, const void* buffer, size_t length) {
    auto* sink = static_cast<Sink*>(clientData);
    if (fileio::writeWhole(*sink->device,
                           QByteArrayView(static_cast<const char*>(buffer), qsizetype(length))))
        return static_cast<la_ssize_t>(length);
    sink->error = sink->device->errorString();
    return -1;
}

QString native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

QString archiveError(archive* a, const Sink& sink) {
    if (!sink.error.isEmpty()) return sink.error;
    const char* text = archive_error_string(a);
    return text ? QString::fromLocal8Bit(text) : QStringLiteral("write error");
}

} // namespace

LibraryInfo tarLibrary() {
    // "libarchive 3.6.2"
    return {QStringLiteral("libarchive"),
            QString::fromLatin1(archive_version_string()).section(QLatin1Char(' '), 1),
            QStringLiteral("BSD 2-Clause")};
}

Status writeTarArchive(QIODevice& device, const std::vector<TarMember>& members) {
    std::unique_ptr<archive, ArchiveDeleter> a(archive_write_new());
    if (!a || archive_write_set_format_ustar(a.get()) != ARCHIVE_OK ||
        archive_write_add_filter_none(a.get()) != ARCHIVE_OK)
        return Status::failure(QStringLiteral("The tar writer could not be set up."));
    Sink sink{&device, {}};
    if (archive_write_open(a.get(), &sink, nullptr, writeToDevice, nullptr) != ARCHIVE_OK)
        return Status::failure(
            QStringLiteral("Cannot write the archive: %1").arg(archiveError(a.get(), sink)));

    for (const TarMember& member : members) {
        std::unique_ptr<archive_entry, EntryDeleter> entry(archive_entry_new());
        const QByteArray name = QFile::encodeName(member.name);
        archive_entry_set_pathname(entry.get(), name.constData());
        archive_entry_set_filetype(entry.get(), AE_IFREG);
        archive_entry_set_perm(entry.get(), 0644);
        archive_entry_set_size(entry.get(), member.bytes.size());
        archive_entry_set_mtime(entry.get(), member.mtime, 0);
        const auto cannotAdd = [&] {
            return Status::failure(QStringLiteral("Cannot add \"%1\" to the archive: %2")
                                       .arg(member.name, archiveError(a.get(), sink)));
        };
        if (archive_write_header(a.get(), entry.get()) != ARCHIVE_OK) return cannotAdd();
        const auto size = static_cast<size_t>(member.bytes.size());
        if (size > 0 && archive_write_data(a.get(), member.bytes.constData(), size) != la_ssize_t(size))
            return cannotAdd();
    }
    if (archive_write_close(a.get()) != ARCHIVE_OK)
        return Status::failure(
            QStringLiteral("Cannot write the archive: %1").arg(archiveError(a.get(), sink)));
    return Status::ok();
}

Status writeTarArchive(const QString& archivePath, const std::vector<TarMember>& members) {
    // libarchive hands over whole blocks already; unbuffered, a failed write keeps the system's
    // reason (a full disk) instead of losing it in a later flush.
    return fileio::writeFileSafely(
        archivePath, [&](QIODevice& device) { return writeTarArchive(device, members); },
        QIODevice::Unbuffered);
}

namespace {

// Members read from files keep their file's name and modification time.
Status readMembers(const QStringList& memberPaths, std::vector<TarMember>& members) {
    for (const QString& path : memberPaths) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return Status::failure(
                QStringLiteral("Cannot read \"%1\": %2").arg(native(path), file.errorString()));
        members.push_back({CSlide::extractFileName(path), file.readAll(),
                           QFileInfo(path).lastModified().toSecsSinceEpoch()});
    }
    return Status::ok();
}

} // namespace

Status writeTarArchive(QIODevice& device, const QStringList& memberPaths) {
    std::vector<TarMember> members;
    if (Status s = readMembers(memberPaths, members); !s) return s;
    return writeTarArchive(device, members);
}

Status writeTarArchive(const QString& archivePath, const QStringList& memberPaths) {
    std::vector<TarMember> members;
    if (Status s = readMembers(memberPaths, members); !s) return s;
    return writeTarArchive(archivePath, members);
}

} // namespace mms
