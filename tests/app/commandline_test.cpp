#include "store/appfolder.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct ProgramRun {
    int status = -1;
    QString out, err;
};

// Runs a built program; the composer on the offscreen platform.
ProgramRun run(const QString& program, const QStringList& args) {
    QProcess p;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    p.setProcessEnvironment(environment);
    p.start(QStringLiteral(MMS_BIN_DIR "/") + program, args);
    EXPECT_TRUE(p.waitForFinished(60000)) << qPrintable(program) << " did not finish";
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
            QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
}

TEST(CommandLineTest, GlobalOptionsAndExitStatuses) {
    const QString version = mms::programVersion();
    struct Case {
        QString program;
        QStringList args;
        int status;
        QString outStart; // what standard output begins with; for errors, a part of stderr
    };
    const Case cases[] = {
        {u"mmsc"_s, {u"--version"_s}, 0, u"mmsc "_s + version + u"\n"_s},
        {u"mmsc"_s, {u"-h"_s}, 0, u"Usage: mmsc"_s},
        {u"mmsc"_s, {}, 2, u"Usage: mmsc"_s},
        {u"mmsc"_s, {u"--bogus"_s, u"list"_s}, 2, u"mmsc: Unknown option 'bogus' (see mmsc --help)"_s},
        {u"mmsc"_s, {u"--home"_s}, 2, u"Missing value after '--home'"_s},
        // Options after the command are the command's own.
        {u"mmsc"_s, {u"list"_s, u"--version"_s}, 2, u"list takes no arguments"_s},
        {u"mms-composer"_s, {u"--version"_s}, 0, u"mms-composer "_s + version + u"\n"_s},
        {u"mms-composer"_s, {u"--help"_s}, 0, u"Usage: "_s},
        {u"mms-composer"_s, {u"--language"_s, u"xx"_s}, 2, u"unknown language \"xx\""_s},
        {u"mms-composer"_s, {u"--quit-after"_s, u"-1"_s}, 2, u"--quit-after needs"_s},
        {u"mms-composer"_s, {u"extra"_s}, 2, u"unknown argument \"extra\""_s},
    };
    for (const Case& c : cases) {
        const ProgramRun r = run(c.program, c.args);
        EXPECT_EQ(r.status, c.status) << qPrintable(c.args.join(u' '));
        if (c.status == 0)
            EXPECT_TRUE(r.out.startsWith(c.outStart)) << qPrintable(r.out);
        else
            EXPECT_TRUE(r.err.contains(c.outStart)) << qPrintable(r.err);
    }
}

TEST(CommandLineTest, ComposerStartsAndQuitsOnItsOwn) {
    const mms::test::TempDir dir;
    const QString home = dir.file(u"new/home"_s);
    const ProgramRun r = run(u"mms-composer"_s, {u"--home"_s, home, u"--quit-after"_s, u"0"_s});
    EXPECT_EQ(r.status, 0) << qPrintable(r.err);
    EXPECT_TRUE(QFileInfo(home + u"/UserData/MMS"_s).isDir());
}

} // namespace
