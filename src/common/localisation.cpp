#include "common/localisation.h"

#include "common/commontexts.h"
#include "common/desktoptexts.h"
#include "common/filesize.h"
#include "common/imagetexts.h"
#include "common/packagetexts.h"
#include "common/playbacktexts.h"
#include "common/sendtexts.h"
#include "common/soundtexts.h"
#include "common/storetexts.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QVariant>

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <span>
#include <stdexcept>

namespace mms {

namespace {

// Everything known about one language.
struct Language {
    int index;                // langIndex
    const char16_t* code;     // the Language setting; empty for English, which any unknown code gives
    const char16_t* fileName; // the language file
    const char16_t* helpFile;
    const char16_t* qtLocale; // Qt's own texts; empty for English, which needs none
};

// In the order a setting is compared (the first exact match wins); English, the fallback, last.
constexpr Language kLanguages[] = {
    {5, u"it", u"Italian.lng", u"MorvaneIta.chm", u"it"},
    {1, u"sch", u"SimplifiedChinese.lng", u"MorvaneSim.chm", u"zh_CN"},
    {2, u"tch", u"TraditionalChinese.lng", u"MorvaneChi.chm", u"zh_TW"},
    {7, u"ru", u"Russian.lng", u"Morvane.chm", u"ru"},
    {6, u"spa", u"Spanish.lng", u"Morvane.chm", u"es"},
    {4, u"ger", u"German.lng", u"Morvane.chm", u"de"},
    {3, u"fra", u"French.lng", u"Morvane.chm", u"fr"},
    {0, u"", u"English.lng", u"Morvane.chm", u""},
};
constexpr const Language& kEnglish = kLanguages[std::size(kLanguages) - 1];

const Language& language(int langIndex) {
    for (const Language& entry : kLanguages) {
        if (entry.index == langIndex) return entry;
    }
    return kEnglish;
}

// Markers end in U+0000, which no string can hold, so a cut never falls inside a string.
QString sectionMarker() {
    return QStringLiteral("..\\") + QChar(u'\0');
}
QString groupMarker() {
    return QStringLiteral("\\\\") + QChar(u'\0');
}

const char* groupName(int group) {
    switch (group) {
    case 0:
        return "prompt string";
    case 1:
        return "error string";
    default:
        return "interface string";
    }
}

QString entryAt(const QStringList& list, int index, int group) {
    if (index < 0 || index >= list.size()) {
        throw std::out_of_range(QStringLiteral("The language file has no %1 %2 (it holds %3).")
                                    .arg(QLatin1String(groupName(group)))
                                    .arg(index)
                                    .arg(list.size())
                                    .toStdString());
    }
    return list.at(index);
}

// The entries of every area, ascending; an entry two areas name counts once.
QList<int> usedNumbers(std::initializer_list<std::span<const int>> areas) {
    QList<int> numbers;
    for (const std::span<const int> area : areas)
        numbers.append(QList<int>(area.begin(), area.end()));
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

} // namespace

int langIndexForCode(const QString& code) {
    for (const Language& entry : kLanguages) {
        if (&entry != &kEnglish && code == QStringView(entry.code)) return entry.index;
    }
    return kEnglish.index;
}

QStringList languageCodes() {
    QStringList codes;
    for (const Language& entry : kLanguages) {
        if (&entry != &kEnglish) codes.append(QStringView(entry.code).toString());
    }
    return codes;
}

QString languageFileName(int langIndex) {
    return QStringView(language(langIndex).fileName).toString();
}

QString helpFileName(int langIndex) {
    return QStringView(language(langIndex).helpFile).toString();
}

QString qtLocaleName(int langIndex) {
    return QStringView(language(langIndex).qtLocale).toString();
}

QString readLanguageSetting() {
    // User scope falls back to the system-wide settings, so an administrator's choice applies
    // unless the user has one of their own. On Windows the system-wide place is HKLM\SOFTWARE\Morvane.
    const QSettings settings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Morvane"));
    const QVariant value = settings.value(QStringLiteral("Language"));
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

Status parseLanguageFile(const QByteArray& bytes, LanguageTexts& out) {
    if (bytes.isEmpty()) return Status::failure(QStringLiteral("the file is empty"));

    // A byte-order mark stays in piece 0, which is never read.
    const QStringList pieces = QString::fromUtf8(bytes).split(sectionMarker(), Qt::KeepEmptyParts);
    if (pieces.size() < 6) {
        return Status::failure(
            QStringLiteral("it has %1 of the 5 section markers (\"..\\\" and a NUL) that precede the strings")
                .arg(pieces.size() - 1));
    }
    const QStringList groups = pieces.at(5).split(groupMarker(), Qt::KeepEmptyParts);
    if (groups.size() < 3) {
        return Status::failure(
            QStringLiteral("its strings form %1 of the 3 groups (prompts, errors, interface) "
                           "separated by \"\\\\\" and a NUL")
                .arg(groups.size()));
    }
    const QChar nul(u'\0');
    out.prompts = groups.at(0).split(nul, Qt::KeepEmptyParts);
    out.errors = groups.at(1).split(nul, Qt::KeepEmptyParts);
    out.interface = groups.at(2).split(nul, Qt::KeepEmptyParts);
    return Status::ok();
}

QList<int> usedPromptNumbers() {
    return usedNumbers({desktoptext::kUsedPrompts, storetext::kUsedPrompts, sizetext::kUsedPrompts,
                        imagetext::kUsedPrompts, sendtext::kUsedPrompts});
}

QList<int> usedErrorNumbers() {
    return usedNumbers({desktoptext::kUsedErrors, storetext::kUsedErrors, packagetext::kUsedErrors,
                        imagetext::kUsedErrors, soundtext::kUsedErrors, playbacktext::kUsedErrors,
                        sizetext::kUsedErrors, sendtext::kUsedErrors});
}

QList<int> usedInterfaceNumbers() {
    return usedNumbers({commontext::kUsedInterface, desktoptext::kUsedInterface, storetext::kUsedInterface,
                        packagetext::kUsedInterface, imagetext::kUsedInterface, soundtext::kUsedInterface,
                        playbacktext::kUsedInterface, sizetext::kUsedInterface, sendtext::kUsedInterface});
}

Status checkUsedEntries(const LanguageTexts& texts) {
    const std::pair<const QStringList*, QList<int>> groups[] = {
        {&texts.prompts, usedPromptNumbers()},
        {&texts.errors, usedErrorNumbers()},
        {&texts.interface, usedInterfaceNumbers()},
    };
    for (int g = 0; g < 3; ++g) {
        const QStringList* list = groups[g].first;
        const QList<int>& used = groups[g].second;
        // The numbers are ascending, so the last one tells whether all are there.
        if (used.last() >= list->size()) {
            const int missing =
                *std::find_if(used.begin(), used.end(), [&](int n) { return n >= list->size(); });
            return Status::failure(QStringLiteral("it lacks %1 %2 (it holds %3, the program uses up to %4)")
                                       .arg(QLatin1String(groupName(g)))
                                       .arg(missing)
                                       .arg(list->size())
                                       .arg(used.last()));
        }
    }
    return Status::ok();
}

Status Localisation::readLangFile(int langIndex, const QString& programFolder) {
    helpFile_ = programFolder + QLatin1Char('/') + helpFileName(langIndex);
    const QString path = programFolder + QLatin1Char('/') + languageFileName(langIndex);
    const QString shown = QDir::toNativeSeparators(path);

    QFile file(path);
    if (!file.exists()) return Status::failure(QStringLiteral("The language file %1 is missing.").arg(shown));
    if (!file.open(QIODevice::ReadOnly)) {
        return Status::failure(
            QStringLiteral("The language file %1 cannot be read: %2.").arg(shown, file.errorString()));
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        return Status::failure(
            QStringLiteral("The language file %1 cannot be read: %2.").arg(shown, file.errorString()));
    }

    LanguageTexts parsed;
    Status status = parseLanguageFile(bytes, parsed);
    if (status) status = checkUsedEntries(parsed);
    if (!status) {
        return Status::failure(
            QStringLiteral("The language file %1 is not usable: %2.").arg(shown, status.message()));
    }
    texts_ = std::move(parsed);
    return Status::ok();
}

QString Localisation::getMCrPromptStr(int index) const {
    return entryAt(texts_.prompts, index, 0);
}
QString Localisation::getMCrErrStr(int index) const {
    return entryAt(texts_.errors, index, 1);
}
QString Localisation::getMCrInterfaceStr(int index) const {
    return entryAt(texts_.interface, index, 2);
}

} // namespace mms
