// Any bytes as a language file and as its editable source. The binary file parses or fails with a
// message, leaving the texts as they were. A source that parses and builds gives a file that parses
// back to exactly its texts.
#include "common/langsource.h"
#include "common/localisation.h"
#include "fuzzcheck.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    mms::LanguageTexts texts;
    texts.prompts << QStringLiteral("untouched");
    const mms::Status file = mms::parseLanguageFile(bytes, texts);
    if (!file)
        FUZZ_CHECK(!file.message().isEmpty() && texts.prompts == QStringList{QStringLiteral("untouched")});

    mms::LanguageSource source;
    const mms::Status parsed =
        mms::parseLanguageSource(QString::fromUtf8(bytes), QStringLiteral("f.txt"), source);
    if (!parsed) {
        FUZZ_CHECK(parsed.message().startsWith(QStringLiteral("f.txt:")));
        return 0;
    }
    QByteArray built;
    const mms::Status written = mms::buildLanguageFile(source, QStringLiteral("f.txt"), built);
    if (!written) {
        FUZZ_CHECK(!written.message().isEmpty());
        return 0;
    }
    mms::LanguageTexts back;
    FUZZ_CHECK(mms::parseLanguageFile(built, back).isOk());
    FUZZ_CHECK(back.prompts == source.texts.prompts && back.errors == source.texts.errors &&
               back.interface == source.texts.interface);
    return 0;
}
