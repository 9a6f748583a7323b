#pragma once

#include "model/status.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace mms {

// The three string lists of a language file.
struct LanguageTexts {
    QStringList prompts;   // group 0
    QStringList errors;    // group 1
    QStringList interface; // group 2
};

// Language choice: registry code -> langIndex (0 English, 1 sch, 2 tch, 3 fra, 4 ger, 5 it, 6 spa, 7 ru).
// Exact, case-sensitive; any other code gives 0.
int langIndexForCode(const QString& code);
// The codes langIndexForCode knows, in the order it tries them (for validating a --language option).
QStringList languageCodes();
// "English.lng" ... by langIndex; anything outside 1..7 counts as 0.
QString languageFileName(int langIndex);
// "Morvane.chm" ... by langIndex.
QString helpFileName(int langIndex);
// The Qt locale of a langIndex, whose catalogue translates Qt's own texts; empty for English.
QString qtLocaleName(int langIndex);
// The "Language" setting (QSettings, organisation "Morvane"); empty when absent or not a string.
QString readLanguageSetting();

// Parses a language file's bytes. Fails with a message saying what is wrong; out is then untouched.
Status parseLanguageFile(const QByteArray& bytes, LanguageTexts& out);

// The entries the program shows. A language file must hold every one of them.
QList<int> usedPromptNumbers();
QList<int> usedErrorNumbers();
QList<int> usedInterfaceNumbers();
// Fails naming the first used entry the texts lack.
Status checkUsedEntries(const LanguageTexts& texts);

// The loaded language: owned by the composer window, read by every window through these lookups.
class Localisation {
public:
    // Loads programFolder + "/" + languageFileName(langIndex) and checks that every entry the
    // program uses is there. On failure the lists are left as they were.
    Status readLangFile(int langIndex, const QString& programFolder);
    // Loads a parsed language directly (tests, tools).
    void setTexts(LanguageTexts texts) { texts_ = std::move(texts); }

    // An index beyond the end of its list throws std::out_of_range with a clear message.
    QString getMCrPromptStr(int index) const;
    QString getMCrErrStr(int index) const;
    QString getMCrInterfaceStr(int index) const;

    const QString& helpFile() const { return helpFile_; }
    const LanguageTexts& texts() const { return texts_; }

private:
    LanguageTexts texts_;
    QString helpFile_;
};

} // namespace mms
