#include "common/fileio.h"

#include <QDir>
#include <QFile>
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
    if (!target.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return Status::failure(
            QStringLiteral("Cannot write \"%1\": %2").arg(native(to), target.errorString()));
    if (!writeWhole(target, bytes) || !flushWhole(target)) {
        const QString why = target.errorString();
        target.close();
        target.remove();
        return Status::failure(QStringLiteral("Cannot write \"%1\": %2").arg(native(to), why));
    }
    target.close();
    target.setPermissions(source.permissions());
    return Status::ok();
}

} // namespace mms::fileio
