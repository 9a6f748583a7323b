#include "common/fileio.h"

#include <QDir>
#include <QFile>
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

Status cannotCreate(const QString& path, const std::error_code& error) {
    return Status::failure(QStringLiteral("Cannot create \"%1\": %2")
                               .arg(native(path), QString::fromLocal8Bit(error.message())));
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
    std::error_code error;
    if (std::filesystem::create_directory(fsPath(path), error)) return Status::ok();
    if (!error) error = std::make_error_code(std::errc::file_exists);
    return cannotCreate(path, error);
}

Status createPath(const QString& path) {
    std::error_code error;
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
    QFile target(to);
    if (!target.open(QIODevice::WriteOnly | QIODevice::NewOnly)) return cannotWrite(to, target.errorString());
    if (!writeWhole(target, bytes) || !flushWhole(target)) {
        const QString why = target.errorString();
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
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | mode)) return cannotWrite(path, file.errorString());
    if (const Status written = write(file); !written) {
        file.cancelWriting();
        return cannotWrite(path, written.message());
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

} // namespace mms::fileio
