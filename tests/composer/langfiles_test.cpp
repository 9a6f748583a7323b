// The language files the build generates: each one loads and is a real translation. (The build
// itself refuses a translation whose entries or placeholders differ from English.)
#include "common/localisation.h"
#include "support/qtprint.h"

#include <gtest/gtest.h>

using namespace mms;

namespace {

QString langDir() {
    return qEnvironmentVariable("MMS_LANG_DIR", QStringLiteral(MMS_BIN_DIR));
}

struct Used {
    const char* group;
    QStringList LanguageTexts::*list;
    QList<int> numbers;
};

QList<Used> usedEntries() {
    return {{"prompt", &LanguageTexts::prompts, usedPromptNumbers()},
            {"error", &LanguageTexts::errors, usedErrorNumbers()},
            {"interface", &LanguageTexts::interface, usedInterfaceNumbers()}};
}

Localisation load(int langIndex) {
    Localisation loc;
    const Status s = loc.readLangFile(langIndex, langDir());
    EXPECT_TRUE(s.isOk()) << s.message().toStdString();
    return loc;
}

} // namespace

TEST(LanguageFiles, EveryLanguageLoadsWithARealTextForEveryUsedEntry) {
    const Localisation english = load(0);
    for (int lang = 0; lang < 8; ++lang) {
        const Localisation loc = load(lang);
        int sameAsEnglish = 0;
        for (const Used& used : usedEntries()) {
            for (int n : used.numbers) {
                const QString text = (loc.texts().*used.list).at(n);
                const QString en = (english.texts().*used.list).at(n);
                const QString where =
                    languageFileName(lang) + QStringLiteral(" %1.%2").arg(QLatin1String(used.group)).arg(n);
                EXPECT_FALSE(text.isEmpty() || text == QStringLiteral("-") || text != text.trimmed())
                    << where.toStdString();
                sameAsEnglish += lang != 0 && text == en;
            }
        }
        EXPECT_LE(sameAsEnglish, 5) << languageFileName(lang).toStdString();
    }
}
