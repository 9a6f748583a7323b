#include "store/appfolder.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Runs a built program (the composer on the offscreen platform); returns its exit status and
// standard output followed by standard error.
std::pair<int, QString> run(const QString& program, const QStringList& args) {
    QProcess p;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    p.setProcessEnvironment(environment);
    p.start(QStringLiteral(MMS_BIN_DIR "/") + program, args);
    EXPECT_TRUE(p.waitForFinished(60000)) << qPrintable(program) << " did not finish";
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
            QString::fromUtf8(p.readAllStandardOutput() + p.readAllStandardError())};
}

TEST(CommandLineTest, OptionsAndExitStatuses) {
    const QString version = mms::programVersion();
    const struct {
        QString program;
        QStringList args;
        int status;
        QString output; // a line the output holds
    } cases[] = {
        {u"mmsc"_s, {u"--version"_s}, 0, u"mmsc "_s + version + u"\n"_s},
        {u"mmsc"_s, {u"--bogus"_s, u"list"_s}, 2, u"mmsc: Unknown option 'bogus' (see mmsc --help)"_s},
        // Options after the command are the command's own.
        {u"mmsc"_s, {u"list"_s, u"--version"_s}, 2, u"mmsc: list takes no arguments"_s},
        {u"mms-composer"_s, {u"--version"_s}, 0, u"mms-composer "_s + version + u"\n"_s},
        {u"mms-composer"_s, {u"--language"_s, u"xx"_s}, 2, u"mms-composer: unknown language \"xx\""_s},
        {u"mms-composer"_s, {u"--quit-after"_s, u"-1"_s}, 2, u"mms-composer: --quit-after needs"_s},
        {u"mms-composer"_s, {u"extra"_s}, 2, u"mms-composer: unknown argument \"extra\""_s},
    };
    for (const auto& c : cases) {
        const auto [status, output] = run(c.program, c.args);
        EXPECT_EQ(status, c.status) << qPrintable(c.args.join(u' '));
        EXPECT_TRUE(output.contains(c.output)) << qPrintable(output);
    }
}

TEST(CommandLineTest, ComposerStartsAndQuitsOnItsOwn) {
    const mms::test::TempDir dir;
    const QString home = dir.file(u"new/home"_s);
    const auto [status, output] = run(u"mms-composer"_s, {u"--home"_s, home, u"--quit-after"_s, u"0"_s});
    EXPECT_EQ(status, 0) << qPrintable(output);
    EXPECT_TRUE(QFileInfo(home + u"/UserData/MMS"_s).isDir());
}

} // namespace
