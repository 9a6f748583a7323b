#include "composer/langsource.h"
#include "support/qtprint.h"

#include <gtest/gtest.h>

using namespace mms;

namespace {

const QString kHeader = QStringLiteral("language = Test\nformat = 1\n");
const QString kMinimal = QStringLiteral("prompt.0 = p\nerror.0 = e\ninterface.0 = i\n");

Status parse(const QString& body, LanguageSource& out) {
    return parseLanguageSource(kHeader + body, QStringLiteral("T.txt"), out);
}

QString failure(const QString& text) {
    LanguageSource s;
    const Status st = parseLanguageSource(text, QStringLiteral("T.txt"), s);
    return st ? QStringLiteral("(accepted)") : st.message();
}

} // namespace

TEST(LanguageSource, ReadsEntriesInAnyOrderWithEscapesCommentsBomAndCrlf) {
    LanguageSource s;
    const QString body =
        QStringLiteral("\uFEFF# comment\r\n\r\ninterface.1 =   two\\nlines \r\n  # indented\n"
                       "interface.0=\\sedge\\s\nprompt.0 = a \\\\ b\\t.\nprompt.1 =\n"
                       "error.0 = 100%1 = ok\n");
    ASSERT_TRUE(parseLanguageSource(body + kHeader, QStringLiteral("T.txt"), s).isOk());
    EXPECT_EQ(s.language, QStringLiteral("Test"));
    EXPECT_EQ(s.texts.prompts, (QStringList{QStringLiteral("a \\ b\t."), QString()}));
    EXPECT_EQ(s.texts.errors, QStringList{QStringLiteral("100%1 = ok")});
    EXPECT_EQ(s.texts.interface, (QStringList{QStringLiteral(" edge "), QStringLiteral("two\nlines")}));
}

TEST(LanguageSource, RefusesMistakesNamingTheLine) {
    const std::pair<QString, const char*> cases[] = {
        {kHeader + QStringLiteral("prompt.0 = a\\q\n"), "T.txt:3: unknown escape \"\\q\""},
        {kHeader + QStringLiteral("prompt.0 = a\\\n"), "T.txt:3: a lone \\ ends the line"},
        {kHeader + QStringLiteral("prompt.0 a\n"), "T.txt:3: expected \"key = text\""},
        {kHeader + QStringLiteral("prompts.0 = a\n"), "T.txt:3: unknown key \"prompts.0\""},
        {kHeader + kMinimal + QStringLiteral("error.0 = x\n"),
         "T.txt:6: error.0 is given twice (first on line 4)"},
        {kHeader + kMinimal + QStringLiteral("interface.2 = x\n"), "T.txt: interface.1 is missing"},
        {kHeader + QStringLiteral("prompt.0 = p\ninterface.0 = i\n"), "T.txt: there are no error entries"},
        {QStringLiteral("format = 1\n") + kMinimal, "T.txt: the line \"language = ...\" is missing"},
        {QStringLiteral("language = T\nformat = 2\n"), "T.txt:2: format \"2\" is not supported"},
    };
    for (const auto& [text, want] : cases)
        EXPECT_TRUE(failure(text).startsWith(QString::fromUtf8(want))) << failure(text).toStdString();
}

TEST(LanguageSource, TranslationsMustMatchTheReferenceEntriesAndPlaceholders) {
    LanguageSource ref, tr;
    ASSERT_TRUE(parse(kMinimal + QStringLiteral("error.1 = Failed:\\n%1\n"), ref).isOk());
    ASSERT_TRUE(parse(kMinimal + QStringLiteral("error.1 = Échec :\\n%1\n"), tr).isOk());
    EXPECT_TRUE(checkAgainstReference(tr, ref).isOk());
    ASSERT_TRUE(parse(kMinimal + QStringLiteral("error.1 = Échec\n"), tr).isOk());
    EXPECT_EQ(checkAgainstReference(tr, ref).message(),
              QStringLiteral("error.1: Test uses no placeholder where Test uses %1"));
    ASSERT_TRUE(parse(kMinimal, tr).isOk());
    EXPECT_TRUE(checkAgainstReference(tr, ref).message().contains(
        QLatin1String("has 1 error entries where Test has 2")));
}

TEST(LanguageSource, BuildsFilesThatReadBackAndRefusesMarkerEndings) {
    LanguageSource s;
    ASSERT_TRUE(
        parse(QStringLiteral("prompt.0 = a\\\\b.\nprompt.1 =\nerror.0 = ..\\\\x\ninterface.0 = x\\\\\\s\n"),
              s)
            .isOk());
    QByteArray bytes;
    ASSERT_TRUE(buildLanguageFile(s, QStringLiteral("T.txt"), bytes).isOk());
    EXPECT_TRUE(bytes.startsWith("MMS Composer language file..\\"));
    LanguageTexts back;
    ASSERT_TRUE(parseLanguageFile(bytes, back).isOk());
    EXPECT_EQ(back.prompts, s.texts.prompts);
    EXPECT_EQ(back.interface, s.texts.interface);

    for (const char* bad : {"ab\\\\\\\\", "ab..\\\\"}) {
        ASSERT_TRUE(
            parse(kMinimal + QStringLiteral("prompt.1 = ") + QString::fromUtf8(bad) + QLatin1Char('\n'), s)
                .isOk());
        const Status st = buildLanguageFile(s, QStringLiteral("T.txt"), bytes);
        EXPECT_TRUE(st.message().startsWith(QLatin1String("prompt.1 ends in"))) << st.message().toStdString();
    }
}
