#include "app/mmscrun.h"
#include "store/appfolder.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QFileInfo>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(CommandLineTest, OptionsAndExitStatuses) {
    const QString version = mms::programVersion();
    const mms::test::TempDir dir;
    const QString home = dir.file(u"new/home"_s);
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
        // The composer starts on a new home folder and quits on its own.
        {u"mms-composer"_s, {u"--home"_s, home, u"--quit-after"_s, u"0"_s}, 0, {}},
    };
    for (const auto& c : cases) {
        const auto r = mms::test::runProgram(c.program, c.args);
        EXPECT_EQ(r.exitCode, c.status) << qPrintable(c.args.join(u' '));
        EXPECT_TRUE((r.out + r.err).contains(c.output)) << qPrintable(r.out + r.err);
    }
    EXPECT_TRUE(QFileInfo(home + u"/UserData/MMS"_s).isDir());
}

} // namespace
