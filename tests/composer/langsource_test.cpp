#include "common/langsource.h"
#include "support/qtprint.h"

#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

const QString kHeader = u"language = Test\nformat = 1\n"_s;
const QString kMinimal = u"prompt.0 = p\nerror.0 = e\ninterface.0 = i\n"_s;

Status parse(const QString& body, LanguageSource& out) {
    return parseLanguageSource(kHeader + body, u"T.txt"_s, out);
}

} // namespace

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
    EXPECT_TRUE(checkAgainstReference(tr, ref).message().contains(
        QLatin1String("has 1 error entries where Test has 2")));
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
        EXPECT_TRUE(st.message().startsWith(QLatin1String("prompt.1 ends in"))) << st.message().toStdString();
    }
}
