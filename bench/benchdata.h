#pragma once

#include <QCoreApplication>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace bench {

// Where the benchmarks keep the inputs they make once: bench_data beside the build's bin folder, or
// $MMS_BENCH_DATA; `sub` names a folder in it.
inline QString dataFolder(const QString& sub = {}) {
    const QString env = qEnvironmentVariable("MMS_BENCH_DATA");
    const QString base =
        env.isEmpty() ? QCoreApplication::applicationDirPath() + QStringLiteral("/../bench_data") : env;
    return sub.isEmpty() ? base : base + QLatin1Char('/') + sub;
}

// Runs a peer tool to its end; true when it exited normally with status 0.
inline bool runTool(const QString& program, const QStringList& args) {
    QProcess process;
    process.start(program, args);
    return process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

} // namespace bench
