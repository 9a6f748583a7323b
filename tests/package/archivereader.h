#pragma once

#include <QByteArray>
#include <QStringList>
#include <archive.h>
#include <archive_entry.h>
#include <utility>
#include <vector>

namespace mms::test {

struct ArchivedMember {
    QString name;
    QByteArray bytes;
    friend bool operator==(const ArchivedMember&, const ArchivedMember&) = default;
};

// Reads a tar file back with libarchive.
inline std::vector<ArchivedMember> readTar(const QString& path) {
    std::vector<ArchivedMember> members;
    archive* a = archive_read_new();
    archive_read_support_format_tar(a);
    if (archive_read_open_filename(a, path.toLocal8Bit().constData(), 10240) == ARCHIVE_OK) {
        archive_entry* entry = nullptr;
        while (archive_read_next_header(a, &entry) == ARCHIVE_OK) {
            ArchivedMember m{QString::fromUtf8(archive_entry_pathname(entry)), {}};
            m.bytes.resize(archive_entry_size(entry));
            if (!m.bytes.isEmpty()) archive_read_data(a, m.bytes.data(), static_cast<size_t>(m.bytes.size()));
            members.push_back(std::move(m));
        }
    }
    archive_read_free(a);
    return members;
}

// The member names of a tar file, space-separated.
inline QString tarNames(const QString& path) {
    QStringList names;
    for (const ArchivedMember& m : readTar(path))
        names << m.name;
    return names.join(u' ');
}

} // namespace mms::test
