#include "common/fileio.h"

#include "common/faultpoint.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <filesystem>
#include <system_error>

namespace mms::fileio {

namespace {

QString native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

std::filesystem::path fsPath(const QString& path) {
    return std::filesystem::path(QFile::encodeName(path).toStdString());
}

Status cannotWrite(const QString& path, const QString& reason) {
    return Status::failure(QStringLiteral("Cannot write \"%1\": %2").arg(native(path), reason));
}

Status cannotCreate(const QString& path, const QString& reason) {
    return Status::failure(QStringLiteral("Cannot create \"%1\": %2").arg(native(path), reason));
}

Status cannotCreate(const QString& path, const std::error_code& error) {
    return cannotCreate(path, QString::fromLocal8Bit(error.message()));
}

QFileInfoList entriesOf(const QString& folder) {
    return QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                      QDir::Name);
}

} // namespace

bool writeWhole(QIODevice& device, QByteArrayView bytes) {
    qint64 done = 0;
    while (done < bytes.size()) {
        const qint64 written = device.write(bytes.data() + done, bytes.size() - done);
        if (written <= 0) return false;
        done += written;
    }
    return true;
}

bool flushWhole(QFileDevice& file) {
    return file.flush() || file.flush();
}

Status createFolder(const QString& path) {
    if (Status s = faultPoint("mkdir", path); !s) return cannotCreate(path, s.message());
    std::error_code error;
    if (std::filesystem::create_directory(fsPath(path), error)) return Status::ok();
    if (!error) error = std::make_error_code(std::errc::file_exists);
    return cannotCreate(path, error);
}

Status createPath(const QString& path) {
    std::error_code error;
    if (std::filesystem::is_directory(fsPath(path), error)) return Status::ok();
    if (Status s = faultPoint("mkdir", path); !s) return cannotCreate(path, s.message());
    std::filesystem::create_directories(fsPath(path), error);
    if (!error && !std::filesystem::is_directory(fsPath(path), error))
        error = std::make_error_code(std::errc::not_a_directory);
    return error ? cannotCreate(path, error) : Status::ok();
}

Status copyFile(const QString& from, const QString& to) {
    QFile source(from);
    if (!source.open(QIODevice::ReadOnly))
        return Status::failure(
            QStringLiteral("Cannot read \"%1\": %2").arg(native(from), source.errorString()));
    const QByteArray bytes = source.readAll();
    if (source.error() != QFileDevice::NoError)
        return Status::failure(
            QStringLiteral("Cannot read \"%1\": %2").arg(native(from), source.errorString()));
    if (Status s = faultPoint("create", to); !s) return cannotWrite(to, s.message());
    QFile target(to);
    if (!target.open(QIODevice::WriteOnly | QIODevice::NewOnly)) return cannotWrite(to, target.errorString());
    const Status room = faultPoint("write", to);
    if (!room || !writeWhole(target, bytes) || !flushWhole(target)) {
        const QString why = room ? target.errorString() : room.message();
        target.close();
        target.remove();
        return cannotWrite(to, why);
    }
    target.close();
    target.setPermissions(source.permissions());
    return Status::ok();
}

Status writeFileSafely(const QString& path, QByteArrayView bytes) {
    return writeFileSafely(path, [bytes](QIODevice& device) {
        return writeWhole(device, bytes) ? Status::ok() : Status::failure(device.errorString());
    });
}

// Every file the program replaces is written here, so this is the one place to watch its writes.
Status writeFileSafely(const QString& path, const DeviceWriter& write, QIODevice::OpenMode mode) {
    if (Status s = faultPoint("create", path); !s) return cannotWrite(path, s.message());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | mode)) return cannotWrite(path, file.errorString());
    if (const Status written = write(file); !written) {
        file.cancelWriting();
        return cannotWrite(path, written.message());
    }
    // Past this point a crash leaves the old file and, at most, the unfinished new one beside it.
    if (Status s = faultPoint("write", path); !s) {
        file.cancelWriting();
        return cannotWrite(path, s.message());
    }
    // A failed flush inside commit() would only say "Unknown error"; flushing first keeps the reason.
    if (!flushWhole(file)) {
        const QString why = file.errorString();
        file.cancelWriting();
        return cannotWrite(path, why);
    }
    if (!file.commit()) return cannotWrite(path, file.errorString());
    return Status::ok();
}

Status renamePath(const QString& from, const QString& to) {
    std::error_code error;
    if (Status s = faultPoint("rename", to); !s) {
        return Status::failure(
            QStringLiteral("Cannot rename \"%1\" to \"%2\": %3").arg(native(from), native(to), s.message()));
    }
    std::filesystem::rename(fsPath(from), fsPath(to), error);
    if (!error) return Status::ok();
    return Status::failure(QStringLiteral("Cannot rename \"%1\" to \"%2\": %3")
                               .arg(native(from), native(to), QString::fromLocal8Bit(error.message())));
}

Status removeEmptyFolder(const QString& path) {
    const Status gate = faultPoint("remove", path);
    if (!gate)
        return Status::failure(QStringLiteral("Cannot remove \"%1\": %2").arg(native(path), gate.message()));
    if (!QDir().rmdir(path)) return Status::failure(QStringLiteral("Cannot remove \"%1\"").arg(native(path)));
    return Status::ok();
}

bool pathExists(const QString& path) {
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

Status removeTree(const QString& path) {
    const QFileInfo info(path);
    if (!pathExists(path)) return Status::ok();
    const bool folder = info.isDir() && !info.isSymLink();
    if (folder) {
        for (const QFileInfo& entry : entriesOf(path))
            if (Status s = removeTree(entry.filePath()); !s) return s;
    }
    const Status gate = faultPoint("remove", path);
    if (!gate)
        return Status::failure(QStringLiteral("Cannot remove \"%1\": %2").arg(native(path), gate.message()));
    if (folder) {
        if (!QDir().rmdir(path))
            return Status::failure(QStringLiteral("Cannot remove \"%1\"").arg(native(path)));
        return Status::ok();
    }
    QFile file(path);
    if (!file.remove())
        return Status::failure(
            QStringLiteral("Cannot remove \"%1\": %2").arg(native(path), file.errorString()));
    return Status::ok();
}

} // namespace mms::fileio
