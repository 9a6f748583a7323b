#include "common/filesize.h"
#include "common/localisation.h"
#include "common/workspace.h"
#include "composer/composertext.h"
#include "composer/sizelimit.h"
#include "composer/workspacefolders.h"
#include "support/qtprint.h"
#include "support/scratchsettings.h"
#include "support/tempdir.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace mms;

namespace {

TEST(ComposerText, RemoveTxtOccurrenceResumesBeyondEachCut) {
    // After each cut the search resumes beyond it: in "abcabc" the second "bc" starts inside the
    // skipped stretch, and cutting "aaaa" leaves "aa".
    const struct {
        const char* text;
        const char* find;
        const char* expected;
    } cases[] = {{"3s", "s", "3"},    {"ss", "s", "s"},         {"sss", "s", "s"},
                 {"5s5s", "s", "55"}, {"abcabc", "bc", "aabc"}, {"", "s", ""},
                 {"3s", "", "3s"},    {"sSs", "s", "S"},        {"aaaa", "aa", "aa"}};
    for (const auto& c : cases)
        EXPECT_EQ(removeTxtOccurrence(QLatin1String(c.text), QLatin1String(c.find)),
                  QLatin1String(c.expected))
            << c.text << " - " << c.find;
}

TEST(ComposerText, DurationsAreWholeSecondsThatFitSixteenBits) {
    EXPECT_EQ(stripLabel(12, QStringLiteral("3")), QStringLiteral("12.             3s"));
    for (const char* numeric : {"0", "5", " 42 ", "32767", "40000", "000012"})
        EXPECT_TRUE(isDurationNumeric(QLatin1String(numeric))) << numeric;
    for (const char* other : {"", " ", "3s", "1.5", "-3", "+3", "1e3", "3 4", "x"})
        EXPECT_FALSE(isDurationNumeric(QLatin1String(other))) << other;
    EXPECT_EQ(durationSeconds(QStringLiteral("32767")), std::optional<qint16>(32767));
    EXPECT_EQ(durationSeconds(QStringLiteral(" 7")), std::optional<qint16>(7));
    EXPECT_EQ(durationSeconds(QStringLiteral("32768")), std::nullopt);
    EXPECT_EQ(durationSeconds(QStringLiteral("99999999999999999999999")), std::nullopt);
}

TEST(WorkspaceFolders, MadeParentsFirstOnceAndCleanedUpWithoutFollowingLinksStoppingAtAFailure) {
    test::TempDir home;
    QStringList created;
    ASSERT_TRUE(createWorkspaceFolders(home.path(), &created).isOk());
    EXPECT_EQ(created, workspace::folders(home.path()));

    home.write(QStringLiteral("UserData/Picture/cat.gif"), "GIF89a");
    created.clear();
    ASSERT_TRUE(createWorkspaceFolders(home.path(), &created).isOk());
    EXPECT_TRUE(created.isEmpty());
    EXPECT_EQ(test::TempDir::read(home.file(QStringLiteral("UserData/Picture/cat.gif"))),
              QByteArray("GIF89a"));

    // Clean-up removes the scratch folders and the working copy, never following a link out.
    test::TempDir outside;
    const QString precious = outside.write(QStringLiteral("precious.txt"), "keep");
    ASSERT_TRUE(QFile::link(outside.path(), home.file(QStringLiteral("Temp/tmpJPG/link"))));
    home.write(QStringLiteral("UserData/MMS/temp/pic1.jpg"), "x");
    home.write(QStringLiteral("UserData/MMS/temp.mmt"), "\"\"\n");
    ASSERT_TRUE(cleanUpWorkspace(home.path()).isOk());
    for (const char* gone : {"Temp", "UserData/MMS/temp", "UserData/MMS/temp.mmt"})
        EXPECT_FALSE(QFileInfo::exists(home.file(QLatin1String(gone)))) << gone;
    EXPECT_TRUE(QFileInfo(home.file(QStringLiteral("UserData/MMS"))).isDir());
    EXPECT_EQ(test::TempDir::read(precious), QByteArray("keep"));

    // Without temp.mmt a folder called temp is not the working copy, and it stays.
    ASSERT_TRUE(createWorkspaceFolders(home.path()).isOk());
    home.write(QStringLiteral("UserData/MMS/temp/keep.txt"), "x");
    home.write(QStringLiteral("Temp/tmpJPG/a.jpg"), "x");
    ASSERT_TRUE(QDir(home.file(QStringLiteral("Temp/tmpMID"))).removeRecursively());
    home.write(QStringLiteral("Temp/tmpMID"), "a file, not the folder");
    const Status s = cleanUpWorkspace(home.path());
    ASSERT_FALSE(s.isOk());
    EXPECT_TRUE(s.message().contains(QStringLiteral("tmpMID"))) << s.message().toStdString();
    EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("Temp/tmpJPG"))));
    EXPECT_TRUE(QFileInfo::exists(home.file(QStringLiteral("Temp/tmpMID"))));
    EXPECT_TRUE(QFileInfo::exists(home.file(QStringLiteral("UserData/MMS/temp/keep.txt"))));
}

TEST(SizeLimit, GaugeTurnsAmberAbove90PercentAndRedAboveTheSettingsLimit) {
    constexpr qint64 limit = 300 * 1024;
    const std::pair<qint64, GaugeLevel> levels[] = {
        {0, GaugeLevel::Normal},
        {limit * 9 / 10, GaugeLevel::Normal},
        {limit * 9 / 10 + 1, GaugeLevel::Near},
        {limit, GaugeLevel::Near},
        {limit + 1, GaugeLevel::Over},
    };
    for (const auto& [size, level] : levels)
        EXPECT_EQ(gaugeLevel(size, limit), level) << size;

    LanguageTexts texts;
    texts.interface = QStringList(sizetext::kLastInterface + 1, QString());
    texts.interface[sizetext::kKilobytes] = QStringLiteral("%1 KB");
    texts.interface[sizetext::kMegabytes] = QStringLiteral("%1 MB");
    Localisation loc;
    loc.setTexts(texts);
    const std::pair<qint64, const char*> sizes[] = {{0, "0 KB"},       {1, "1 KB"},
                                                    {102399, "99 KB"}, {102400, "100 KB"},
                                                    {1048576, "1 MB"}, {1048577, "1024 KB"}};
    for (const auto& [bytes, text] : sizes)
        EXPECT_EQ(sizeText(loc, bytes), QLatin1String(text)) << bytes;

    // The setting keeps a limit in range and otherwise gives the default.
    const test::ScratchSettings scratch;
    EXPECT_EQ(readSizeLimitSetting(), kDefaultSizeLimit);
    writeSizeLimitSetting(600 * 1024);
    EXPECT_EQ(readSizeLimitSetting(), 600 * 1024);
    writeSizeLimitSetting(5);
    EXPECT_EQ(readSizeLimitSetting(), kDefaultSizeLimit);
}

} // namespace
