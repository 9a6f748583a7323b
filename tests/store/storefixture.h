#pragma once

#include "common/workspace.h"
#include "model/cslide.h"
#include "store/messagestore.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <sys/wait.h>
#include <unistd.h>

namespace mms::test {

class StoreFixture : public ::testing::Test {
protected:
    StoreFixture() : store(tmp.path()) {
        QDir().mkpath(workspace::messages(tmp.path()));
        QFile::setPermissions(tmp.path(),
                              QFile::permissions(tmp.path()) | QFile::ReadOther | QFile::ExeOther);
    }
    QString media(const QString& name, const QByteArray& bytes) {
        return tmp.write(QStringLiteral("media/") + name, bytes);
    }
    QString messages() const { return workspace::messages(tmp.path()); }
    QString folder(const QString& name) const { return workspace::messageFolder(tmp.path(), name); }

    // Every file below UserData/MMS with its bytes: "a.mmt", "a/pic1.gif", ...
    QMap<QString, QByteArray> snapshot() const {
        QMap<QString, QByteArray> files;
        QDirIterator it(messages(), QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            files.insert(QDir(messages()).relativeFilePath(path), TempDir::read(path));
        }
        return files;
    }

    TempDir tmp;
    MessageStore store;
};

// Runs `body` without the power to override file permissions and returns what it returns: directly
// for an ordinary user; as root in a child process switched to "nobody". Empty when that fails.
inline std::optional<QString> runUnprivileged(const std::function<QString()>& body) {
    if (::geteuid() != 0) return body();
    int pipeEnds[2];
    if (::pipe(pipeEnds) != 0) return std::nullopt;
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipeEnds[0]);
        if (::setgid(65534) != 0 || ::setuid(65534) != 0) ::_exit(3);
        const QByteArray result = body().toUtf8();
        const bool written = ::write(pipeEnds[1], result.constData(), result.size()) == result.size();
        ::_exit(written ? 0 : 4);
    }
    ::close(pipeEnds[1]);
    QByteArray result;
    char buffer[512];
    for (ssize_t n; (n = ::read(pipeEnds[0], buffer, sizeof buffer)) > 0;)
        result.append(buffer, n);
    ::close(pipeEnds[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (child < 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0) return std::nullopt;
    return QString::fromUtf8(result);
}

} // namespace mms::test
