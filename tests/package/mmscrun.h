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

// Runs the built mmsc as scripts run it: `line` split at spaces, after the words of `prefix`.
// `inChild` runs in the child before mmsc starts (to set limits or drop privileges).
inline MmscRun runMmsc(const QStringList& prefix, const QString& line, std::function<void()> inChild = {}) {
    QProcess p;
    if (inChild) p.setChildProcessModifier(inChild);
    p.start(QStringLiteral(MMS_BIN_DIR "/mmsc"), prefix + line.split(QLatin1Char(' ')));
    EXPECT_TRUE(p.waitForFinished(60000)) << "mmsc did not run; is it built?";
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

} // namespace mms::test
