#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QTemporaryDir>

namespace mms::test {

// A scratch folder per test with small helpers for writing input files.
class TempDir {
public:
    QString path() const { return dir_.path(); }
    QString file(const QString& name) const { return dir_.filePath(name); }
    QString write(const QString& name, const QByteArray& bytes) const {
        const QString p = file(name);
        QDir().mkpath(QFileInfo(p).absolutePath());
        QFile f(p);
        f.open(QIODevice::WriteOnly);
        f.write(bytes);
        return p;
    }
    static QByteArray read(const QString& path) {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

private:
    QTemporaryDir dir_;
};

} // namespace mms::test
