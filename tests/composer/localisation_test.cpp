#include "common/langsource.h"
#include "common/localisation.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QLibraryInfo>
#include <QSet>
#include <QSettings>
#include <QStandardPaths>
#include <gtest/gtest.h>

#include <algorithm>
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

// Language sources, the text the build reads.
const QString kHeader = u"language = Test\nformat = 1\n"_s;
const QString kMinimal = u"prompt.0 = p\nerror.0 = e\ninterface.0 = i\n"_s;

Status parse(const QString& body, LanguageSource& out) {
    return parseLanguageSource(kHeader + body, u"T.txt"_s, out);
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

// Each language has its own file and, but for English, its own code and Qt catalogue.
TEST(LanguageChoice, FollowsTheTableExactlyAndTheSettingOfTheUserOverTheSystem) {
    const QStringList codes{u""_s, u"sch"_s, u"tch"_s, u"fra"_s, u"ger"_s, u"it"_s, u"spa"_s, u"ru"_s};
    QStringList files;
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(langIndexForCode(codes.at(i)), i);
        EXPECT_EQ(qtLocaleName(i).isEmpty(), i == 0) << i;
        files << languageFileName(i);
    }
    EXPECT_EQ(QSet<QString>(files.begin(), files.end()).size(), 8);
    QList<int> chosen;
    for (const QString& code : languageCodes())
        chosen << langIndexForCode(code);
    std::sort(chosen.begin(), chosen.end());
    EXPECT_EQ(chosen, (QList<int>{1, 2, 3, 4, 5, 6, 7}));
    for (const char* other : {"IT", "en", " it", "Sch"})
        EXPECT_EQ(langIndexForCode(QString::fromUtf8(other)), 0);
    // Out of the table: English.
    EXPECT_EQ(languageFileName(-1) + languageFileName(9) + helpFileName(9) + qtLocaleName(9),
              u"English.lngEnglish.lngMorvane.chm"_s);

    // The setting: the user's over the system's, and nothing but a plain string counts.
    test::TempDir user, system;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, user.path());
    QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, system.path());
    const QString conf = u"Morvane.conf"_s;
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
    EXPECT_TRUE(loc.readLangFile(5, dir.path()).message().endsWith(u"Italian.lng is missing."_s));
    EXPECT_EQ(loc.helpFile(), dir.file(u"MorvaneIta.chm"_s));
    dir.write(u"English.lng"_s, QByteArray());
    EXPECT_TRUE(loc.readLangFile(9, dir.path())
                    .message()
                    .endsWith(u"English.lng is not usable: the file is empty."_s));
    dir.write(u"English.lng"_s, languageFile(b("0\0a\0b") + kGroup + "c" + kGroup + "d"));
    const QString lacks = loc.readLangFile(0, dir.path()).message();
    EXPECT_TRUE(lacks.contains(u"lacks prompt string 3 (it holds 3"_s)) << lacks.toStdString();

    EXPECT_EQ(loc.getMCrPromptStr(1) + loc.getMCrErrStr(0) + loc.getMCrInterfaceStr(1), u"bce"_s);
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
// refuses a translation whose entries or placeholders differ from English.) English marks the entries
// the program does not show with "-": the named texts and those marks must agree, so a text given a
// number but no name (or a name but no text) is caught.
TEST(LanguageFiles, EveryLanguageLoadsWithARealTextForEveryUsedEntryAndEnglishForNoOther) {
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
            for (int n = 0; lang == 0 && n < (english.*list).size(); ++n)
                EXPECT_EQ((english.*list).at(n) != u"-"_s, numbers.contains(n)) << group << '.' << n;
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

TEST(LanguageSource, ReadsEntriesInAnyOrderWithEscapesCommentsBomAndCrlf) {
    LanguageSource s;
    const QString body =
        QStringLiteral("\uFEFF# comment\r\n\r\ninterface.1 =   two\\nlines \r\n  # indented\n"
                       "interface.0=\\sedge\\s\nprompt.0 = a \\\\ b\\t.\nprompt.1 =\n"
                       "error.0 = 100%1 = ok\n");
    ASSERT_TRUE(parseLanguageSource(body + kHeader, u"T.txt"_s, s).isOk());
    EXPECT_EQ(s.language, u"Test"_s);
    EXPECT_EQ(s.texts.prompts, (QStringList{u"a \\ b\t."_s, QString()}));
    EXPECT_EQ(s.texts.errors, QStringList{u"100%1 = ok"_s});
    EXPECT_EQ(s.texts.interface, (QStringList{u" edge "_s, u"two\nlines"_s}));
}

TEST(LanguageSource, RefusesMistakesNamingTheLine) {
    const std::pair<QString, const char*> cases[] = {
        {kHeader + u"prompt.0 = a\\q\n"_s, "T.txt:3: unknown escape \"\\q\""},
        {kHeader + u"prompt.0 = a\\\n"_s, "T.txt:3: a lone \\ ends the line"},
        {kHeader + u"prompt.0 a\n"_s, "T.txt:3: expected \"key = text\""},
        {kHeader + u"prompts.0 = a\n"_s, "T.txt:3: unknown key \"prompts.0\""},
        {kHeader + kMinimal + u"error.0 = x\n"_s, "T.txt:6: error.0 is given twice (first on line 4)"},
        {kHeader + kMinimal + u"interface.2 = x\n"_s, "T.txt: interface.1 is missing"},
        {kHeader + u"prompt.0 = p\ninterface.0 = i\n"_s, "T.txt: there are no error entries"},
        {u"format = 1\n"_s + kMinimal, "T.txt: the line \"language = ...\" is missing"},
        {u"language = T\nformat = 2\n"_s, "T.txt:2: format \"2\" is not supported"},
    };
    for (const auto& [text, want] : cases) {
        LanguageSource s;
        const QString got = parseLanguageSource(text, u"T.txt"_s, s).message();
        EXPECT_TRUE(got.startsWith(QString::fromUtf8(want))) << got.toStdString();
    }
}

TEST(LanguageSource, TranslationsMustMatchTheReferenceEntriesAndPlaceholders) {
    LanguageSource ref, tr;
    ASSERT_TRUE(parse(kMinimal + u"error.1 = Failed:\\n%1\n"_s, ref).isOk());
    ASSERT_TRUE(parse(kMinimal + u"error.1 = Échec :\\n%1\n"_s, tr).isOk());
    EXPECT_TRUE(checkAgainstReference(tr, ref).isOk());
    ASSERT_TRUE(parse(kMinimal + u"error.1 = Échec\n"_s, tr).isOk());
    EXPECT_EQ(checkAgainstReference(tr, ref).message(),
              u"error.1: Test uses no placeholder where Test uses %1"_s);
    ASSERT_TRUE(parse(kMinimal, tr).isOk());
    EXPECT_TRUE(checkAgainstReference(tr, ref).message().contains(u"has 1 error entries where Test has 2"_s));
}

TEST(LanguageSource, BuildsFilesThatReadBackAndRefusesMarkerEndings) {
    LanguageSource s;
    ASSERT_TRUE(
        parse(u"prompt.0 = a\\\\b.\nprompt.1 =\nerror.0 = ..\\\\x\ninterface.0 = x\\\\\\s\n"_s, s).isOk());
    QByteArray bytes;
    ASSERT_TRUE(buildLanguageFile(s, u"T.txt"_s, bytes).isOk());
    EXPECT_TRUE(bytes.startsWith("MMS Composer language file..\\"));
    LanguageTexts back;
    ASSERT_TRUE(parseLanguageFile(bytes, back).isOk());
    EXPECT_EQ(back.prompts, s.texts.prompts);
    EXPECT_EQ(back.interface, s.texts.interface);
    for (const char* bad : {"ab\\\\\\\\", "ab..\\\\"}) {
        ASSERT_TRUE(
            parse(kMinimal + u"prompt.1 = "_s + QString::fromUtf8(bad) + QLatin1Char('\n'), s).isOk());
        const Status st = buildLanguageFile(s, u"T.txt"_s, bytes);
        EXPECT_TRUE(st.message().startsWith(u"prompt.1 ends in"_s)) << st.message().toStdString();
    }
}
