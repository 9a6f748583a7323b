#include "common/localisation.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QLibraryInfo>
#include <QSettings>
#include <QStandardPaths>
#include <gtest/gtest.h>

#include <stdexcept>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

// Bytes of a literal, embedded NULs included.
template <std::size_t N> QByteArray b(const char (&s)[N]) {
    return QByteArray(s, N - 1);
}

const QByteArray kSection = b("..\\\0");
const QByteArray kGroup = b("\\\\\0");

// Five ignored sections (here holding a whole other table, which must never be read) and then body.
QByteArray languageFile(const QByteArray& body) {
    const QByteArray decoy = b("x\0y") + kGroup + b("z\0w") + kGroup + "v";
    return "head" + kSection + decoy + kSection + decoy + kSection + kSection + kSection + body;
}

// The example sixth section: "a" NUL "b" \\ NUL "c" \\ NUL "d" NUL "e".
const QByteArray kExample = b("a\0b") + kGroup + "c" + kGroup + b("d\0e");

LanguageTexts parsed(const QByteArray& bytes) {
    LanguageTexts t;
    EXPECT_TRUE(parseLanguageFile(bytes, t).isOk());
    return t;
}

} // namespace

TEST(LanguageFile, ReadsOnlyTheSixthSectionInThreeGroupsAsTheyStandAndRefusesFilesCutShort) {
    for (const QByteArray& bytes :
         {languageFile(kExample), QByteArray("\xEF\xBB\xBF") + languageFile(kExample),
          languageFile(kExample + kGroup), languageFile(kExample + kSection + "junk"),
          languageFile(kExample + kGroup + "more" + kGroup)}) {
        const LanguageTexts t = parsed(bytes);
        EXPECT_EQ(t.prompts, (QStringList{u"a"_s, u"b"_s}));
        EXPECT_EQ(t.errors, QStringList{u"c"_s});
        EXPECT_EQ(t.interface, (QStringList{u"d"_s, u"e"_s}));
    }
    const LanguageTexts t = parsed(languageFile(b("\0 two \r\nlines\0") + kGroup + b("..\\ \\\\ ok\0\0") +
                                                kGroup + "d\xC3\xA9j\xC3\xA0" + b("\0") + kGroup));
    EXPECT_EQ(t.prompts, (QStringList{u""_s, u" two \r\nlines"_s, u""_s}));
    EXPECT_EQ(t.errors, (QStringList{u"..\\ \\\\ ok"_s, u""_s, u""_s}));
    EXPECT_EQ(t.interface, (QStringList{u"déjà"_s, u""_s}));

    // Files cut short are refused and leave the result alone.
    LanguageTexts kept;
    kept.prompts = QStringList{u"kept"_s};
    const QByteArray fourSections = "a" + kSection + kSection + kSection + kSection + kExample;
    const QByteArray twoGroups = languageFile(b("a\0b") + kGroup + "c");
    const std::pair<QByteArray, const char*> cases[] = {{QByteArray(), "empty"},
                                                        {fourSections, "4 of the 5 section markers"},
                                                        {twoGroups, "2 of the 3 groups"}};
    for (const auto& [bytes, why] : cases) {
        const Status s = parseLanguageFile(bytes, kept);
        EXPECT_TRUE(!s.isOk() && s.message().contains(QLatin1String(why))) << s.message().toStdString();
        EXPECT_EQ(kept.prompts, QStringList{u"kept"_s});
    }
}

TEST(LanguageChoice, FollowsTheTableExactlyAndTheSettingOfTheUserOverTheSystem) {
    const QStringList codes{u""_s, u"sch"_s, u"tch"_s, u"fra"_s, u"ger"_s, u"it"_s, u"spa"_s, u"ru"_s};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(langIndexForCode(codes.at(i)), i);
    for (const char* other : {"IT", "en", " it", "Sch"})
        EXPECT_EQ(langIndexForCode(QString::fromUtf8(other)), 0);
    // Out of the table: English.
    EXPECT_EQ(languageFileName(-1) + languageFileName(9) + helpFileName(9),
              u"English.lngEnglish.lngMorvane.chm"_s);

    // The setting: the user's over the system's, and nothing but a plain string counts.
    test::TempDir user, system;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, user.path());
    QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, system.path());
    const QString conf = QStringLiteral("Morvane.conf");
    EXPECT_EQ(readLanguageSetting(), QString());
    const std::tuple<const test::TempDir*, const char*, const char*> steps[] = {
        {&system, "ru", "ru"}, {&user, "fra", "fra"}, {&user, "it, sch", ""}, {&user, "@ByteArray(it)", ""}};
    for (const auto& [dir, value, expected] : steps) {
        dir->write(conf, QByteArray("[General]\nLanguage=") + value + '\n');
        EXPECT_EQ(readLanguageSetting(), QLatin1String(expected)) << value;
    }
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
    QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope,
                       QLibraryInfo::path(QLibraryInfo::SettingsPath));
}

TEST(Localisation, LoadFailuresNameTheFileKeepTheTextsAndLookupsBeyondTheEndThrow) {
    test::TempDir dir;
    Localisation loc;
    loc.setTexts(parsed(languageFile(kExample)));
    EXPECT_TRUE(loc.readLangFile(5, dir.path()).message().endsWith(QLatin1String("Italian.lng is missing.")));
    EXPECT_EQ(loc.helpFile(), dir.file(QStringLiteral("MorvaneIta.chm")));
    dir.write(QStringLiteral("English.lng"), QByteArray());
    EXPECT_TRUE(loc.readLangFile(9, dir.path())
                    .message()
                    .endsWith(QLatin1String("English.lng is not usable: the file is empty.")));
    dir.write(QStringLiteral("English.lng"), languageFile(b("0\0a\0b") + kGroup + "c" + kGroup + "d"));
    const QString lacks = loc.readLangFile(0, dir.path()).message();
    EXPECT_TRUE(lacks.contains(QLatin1String("lacks prompt string 3 (it holds 3"))) << lacks.toStdString();

    EXPECT_EQ(loc.getMCrPromptStr(1) + loc.getMCrErrStr(0) + loc.getMCrInterfaceStr(1),
              QStringLiteral("bce"));
    try { // the start-up shows this text when a lookup fails
        (void)loc.getMCrInterfaceStr(2);
        FAIL();
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ(e.what(), "The language file has no interface string 2 (it holds 2).");
    }
    EXPECT_THROW((void)loc.getMCrPromptStr(-1), std::out_of_range);
    EXPECT_THROW((void)loc.getMCrErrStr(1), std::out_of_range);
}

// The language files the build generates each load and are real translations. (The build itself
// refuses a translation whose entries or placeholders differ from English.)
TEST(LanguageFiles, EveryLanguageLoadsWithARealTextForEveryUsedEntry) {
    const struct {
        const char* group;
        QStringList LanguageTexts::*list;
        QList<int> numbers;
    } used[] = {{"prompt", &LanguageTexts::prompts, usedPromptNumbers()},
                {"error", &LanguageTexts::errors, usedErrorNumbers()},
                {"interface", &LanguageTexts::interface, usedInterfaceNumbers()}};
    const QString dir = qEnvironmentVariable("MMS_LANG_DIR", QStringLiteral(MMS_BIN_DIR));
    LanguageTexts english;
    for (int lang = 0; lang < 8; ++lang) {
        Localisation loc;
        const Status s = loc.readLangFile(lang, dir);
        ASSERT_TRUE(s.isOk()) << s.message().toStdString();
        if (lang == 0) english = loc.texts();
        int sameAsEnglish = 0;
        for (const auto& [group, list, numbers] : used) {
            for (int n : numbers) {
                const QString text = (loc.texts().*list).at(n);
                const QString where = languageFileName(lang) + u" %1.%2"_s.arg(QLatin1String(group)).arg(n);
                EXPECT_FALSE(text.isEmpty() || text == u"-"_s || text != text.trimmed())
                    << where.toStdString();
                sameAsEnglish += lang != 0 && text == (english.*list).at(n);
            }
        }
        EXPECT_LE(sameAsEnglish, 5) << languageFileName(lang).toStdString();
    }
}
