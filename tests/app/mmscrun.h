#pragma once

#include <QProcess>
#include <QString>
#include <functional>
#include <gtest/gtest.h>

namespace mms::test {

struct MmscRun {
    int exitCode = -1;
    QString out, err;
};

// Runs a built program (the composer on the offscreen platform); -1 when it crashed. `inChild` runs in
// the child before the program starts (to set limits or drop privileges).
inline MmscRun runProgram(const QString& program, const QStringList& args,
                          std::function<void()> inChild = {}) {
    QProcess p;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    p.setProcessEnvironment(environment);
    if (inChild) p.setChildProcessModifier(inChild);
    p.start(QStringLiteral(MMS_BIN_DIR "/") + program, args);
    EXPECT_TRUE(p.waitForFinished(60000)) << qPrintable(program) << " did not run; is it built?";
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
            QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
}

// Runs mmsc as scripts run it: `line` split at spaces, after the words of `prefix`.
inline MmscRun runMmsc(const QStringList& prefix, const QString& line, std::function<void()> inChild = {}) {
    return runProgram(QStringLiteral("mmsc"), prefix + line.split(QLatin1Char(' ')), std::move(inChild));
}

// A run exits with `status` printing exactly `out`; a failure is told in one "mmsc: " line that holds
// `errHas`, a success says nothing on standard error.
inline void expectRun(const MmscRun& r, int status, const QString& out = {}, const QString& errHas = {}) {
    EXPECT_EQ(r.exitCode, status);
    EXPECT_EQ(r.out, out);
    if (status == 0)
        EXPECT_EQ(r.err, QString());
    else
        EXPECT_TRUE(r.err.startsWith(QStringLiteral("mmsc: ")) && r.err.count(u'\n') == 1 &&
                    r.err.contains(errHas))
            << r.err.toStdString();
}

} // namespace mms::test
