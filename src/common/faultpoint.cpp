#include "common/faultpoint.h"

#include <QFile>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <unistd.h>

namespace mms::fileio {

namespace {

struct Gate {
    std::mutex lock;
    bool planned = false;
    FaultPlan plan;
    int steps = 0;
    QByteArray log; // MMS_FAULT_LOG, encoded
};

Gate& gate() {
    static Gate g;
    return g;
}

FaultPlan planFromEnvironment() {
    const QByteArray text = qgetenv("MMS_FAULT");
    const qsizetype colon = text.indexOf(':');
    if (colon < 0) return {};
    bool ok = false;
    const int at = text.mid(colon + 1).toInt(&ok);
    if (!ok || at < 1) return {};
    const QByteArray kind = text.left(colon);
    if (kind == "kill") return {FaultKind::Kill, at};
    if (kind == "enospc") return {FaultKind::NoSpace, at};
    return {};
}

// Written with plain system calls: the log must not pass the gate it records, and must be on disk
// before a planned kill.
void appendToLog(const QByteArray& file, int step, const char* kind, const QString& path) {
    const int fd = ::open(file.constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0) return;
    const QByteArray line = QByteArray::number(step) + ' ' + kind + ' ' + QFile::encodeName(path) + '\n';
    (void)!::write(fd, line.constData(), static_cast<size_t>(line.size()));
    ::close(fd);
}

} // namespace

void planFault(FaultPlan plan) {
    Gate& g = gate();
    const std::lock_guard<std::mutex> hold(g.lock);
    g.planned = true;
    g.plan = plan;
    g.steps = 0;
}

int stepsTaken() {
    Gate& g = gate();
    const std::lock_guard<std::mutex> hold(g.lock);
    return g.steps;
}

Status faultPoint(const char* kind, const QString& path) {
    Gate& g = gate();
    const std::lock_guard<std::mutex> hold(g.lock);
    if (!g.planned) {
        g.planned = true;
        g.plan = planFromEnvironment();
        g.log = qgetenv("MMS_FAULT_LOG");
    }
    const int step = ++g.steps;
    if (!g.log.isEmpty()) appendToLog(g.log, step, kind, path);
    if (step != g.plan.at) return Status::ok();
    if (g.plan.kind == FaultKind::Kill) ::kill(::getpid(), SIGKILL);
    if (g.plan.kind == FaultKind::NoSpace)
        return Status::failure(QString::fromLocal8Bit(std::strerror(ENOSPC)));
    return Status::ok();
}

} // namespace mms::fileio
