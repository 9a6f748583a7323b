#pragma once

#include <QProcess>
#include <optional>

namespace mms::test {

struct ToolRun {
    int exitCode = -1;
    QByteArray out, err;
};

// Runs an optional outside tool to the end. Nothing when the tool is not installed: the caller skips
// with GTEST_SKIP and names the package, so a missing tool never reads as a fault of ours.
inline std::optional<ToolRun> runTool(const QString& program, const QStringList& args) {
    QProcess p;
    p.start(program, args);
    if (!p.waitForStarted()) return std::nullopt;
    p.waitForFinished(60000);
    return ToolRun{p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput(),
                   p.readAllStandardError()};
}

} // namespace mms::test
