#include "common/localisation.h"

#include "common/desktoptexts.h"
#include "common/filesize.h"
#include "common/playbacktexts.h"
#include "common/sendtexts.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QVariant>

#include <algorithm>
#include <stdexcept>

namespace mms {

namespace {

struct LanguageEntry {
    const char16_t* code;
    int index;
};

// The order in which a setting is compared; the first exact match wins.
constexpr LanguageEntry kLanguages[] = {
    {u"it", 5}, {u"sch", 1}, {u"tch", 2}, {u"ru", 7}, {u"spa", 6}, {u"ger", 4}, {u"fra", 3},
};

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

QList<int> range(int first, int last) {
    QList<int> numbers;
    for (int n = first; n <= last; ++n)
        numbers.append(n);
    return numbers;
}

} // namespace

int langIndexForCode(const QString& code) {
    for (const auto& entry : kLanguages) {
        if (code == QStringView(entry.code)) return entry.index;
    }
    return 0;
}

QStringList languageCodes() {
    QStringList codes;
    for (const auto& entry : kLanguages)
        codes.append(QStringView(entry.code).toString());
    return codes;
}

QString languageFileName(int langIndex) {
    switch (langIndex) {
    case 1:
        return QStringLiteral("SimplifiedChinese.lng");
    case 2:
        return QStringLiteral("TraditionalChinese.lng");
    case 3:
        return QStringLiteral("French.lng");
    case 4:
        return QStringLiteral("German.lng");
    case 5:
        return QStringLiteral("Italian.lng");
    case 6:
        return QStringLiteral("Spanish.lng");
    case 7:
        return QStringLiteral("Russian.lng");
    default:
        return QStringLiteral("English.lng");
    }
}

QString helpFileName(int langIndex) {
    switch (langIndex) {
    case 1:
        return QStringLiteral("MorvaneSim.chm");
    case 2:
        return QStringLiteral("MorvaneChi.chm");
    case 5:
        return QStringLiteral("MorvaneIta.chm");
    default:
        return QStringLiteral("Morvane.chm");
    }
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
    return {1, 2, 3, 4, 7, 8, 9, 10, 11, desktoptext::kPromptRestoreDraft, sizetext::kPromptShrinkToFit,
            sizetext::kPromptExportOverLimit,
            // The picture checks' questions (image/picturetexts.h, which this side may not include).
            15, 16};
}

QList<int> usedErrorNumbers() {
    QList<int> numbers{0, 1, 3, 4, 5, 6, 7};
    numbers.append(range(10, 31));
    numbers.append(sendtexts::kNotAnAddress);
    numbers.append({playbacktext::kNoSlides, playbacktext::kSoundsSkipped});
    numbers.append(range(desktoptext::kFirstError, desktoptext::kLastError));
    numbers.append(sizetext::kErrPictureCannotFit);
    numbers.append(range(41, 45)); // why a picture cannot be used (image/picturetexts.h)
    return numbers;
}

QList<int> usedInterfaceNumbers() {
    QList<int> numbers = range(0, 69);
    numbers.removeAll(16);
    numbers.removeAll(46);
    numbers.removeAll(47);
    numbers.removeAll(59);
    numbers.append(sendtexts::kRecipientsLabel);
    numbers.append(range(playbacktext::kFirstInterface, playbacktext::kLastInterface));
    numbers.append(range(desktoptext::kFirstInterface, desktoptext::kLastInterface));
    numbers.append(range(sizetext::kFirstInterface, sizetext::kLastInterface));
    return numbers;
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
