#include "store/appfolder.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

// Two layouts side by side: a build folder (programs beside their language files) and an
// installation (bin/ empty of them, share/mms-composer/ holding them).
struct Layouts {
    Layouts() {
        dir.write(u"build/bin/English.lng"_s, "x");
        dir.write(u"usr/share/mms-composer/English.lng"_s, "x");
        QDir().mkpath(installedBin);
    }
    test::TempDir dir;
    QString build = dir.file(u"build/bin"_s);
    QString installedBin = dir.file(u"usr/bin"_s);
    QString installedShare = dir.file(u"usr/share/mms-composer"_s);
    QString data = dir.file(u"data"_s);
};

TEST(AppFolderTest, ChoosesWorkspaceAndLanguageFolders) {
    const Layouts l;
    const QString home = l.dir.file(u"home"_s);
    const QString variable = l.dir.file(u"variable"_s);
    const QString relative = QDir::current().absoluteFilePath(u"rel"_s);
    struct Case {
        const char* what;
        QString program, homeOption, homeVariable, dataFolder;
        QString appFolder, languageFolder;
        bool installed;
    };
    const Case cases[] = {
        {"build folder", l.build, {}, {}, l.data, l.build, l.build, false},
        {"installed", l.installedBin, {}, {}, l.data, l.data, l.installedShare, true},
        {"--home, installed", l.installedBin, home, {}, l.data, home, l.installedShare, true},
        {"variable, installed", l.installedBin, {}, variable, l.data, variable, l.installedShare, true},
        {"--home beats the variable", l.installedBin, home, variable, l.data, home, l.installedShare, true},
        {"installed without a data folder", l.installedBin, {}, {}, {}, {}, l.installedShare, true},
        {"trailing separators and dots", l.build + u"/."_s, home + u"/"_s, {}, l.data, home, l.build, false},
        {"relative --home", l.build, u"rel"_s, {}, l.data, relative, l.build, false},
    };
    for (const Case& c : cases) {
        const ProgramFolders folders =
            chooseProgramFolders({c.program, c.homeOption, c.homeVariable, c.dataFolder});
        EXPECT_EQ(folders.appFolder, c.appFolder) << c.what;
        EXPECT_EQ(folders.languageFolder, c.languageFolder) << c.what;
        EXPECT_EQ(folders.installed, c.installed) << c.what;
    }
}

} // namespace
