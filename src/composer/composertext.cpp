#include "composer/composertext.h"

#include "model/cslide.h"

namespace mms {

QString removeTxtOccurrence(const QString& text, const QString& find) {
    if (text.isEmpty() || find.isEmpty()) return text;
    QString result = text;
    const qsizetype n = find.size();
    qsizetype start = 0; // 0-based here; the rule is stated 1-based
    qsizetype p = result.indexOf(find, start);
    while (p >= 0) {
        result.remove(p, n);
        start = p + n;
        if (start > result.size()) break;
        p = result.indexOf(find, start);
    }
    return result;
}

QString stripLabel(int position, const QString& duration) {
    static const QString kGap = QStringLiteral(".             "); // "." and 13 spaces
    return QString::number(position) + kGap + duration + QLatin1Char('s');
}

bool isDurationNumeric(const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) return false;
    for (QChar c : trimmed) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) return false;
    }
    return true;
}

std::optional<qint16> durationSeconds(const QString& text) {
    return parseSeconds(QStringView(text).trimmed());
}

QString soundLabelText(const QString& soundPath, int position, const QString& currentFile) {
    if (soundPath.isEmpty()) return QString();
    const QString fileName = CSlide::extractFileName(soundPath);
    // "*sound<N>.*": anything, then sound<N>., then anything.
    if (soundPath.contains(QStringLiteral("sound%1.").arg(position)))
        return currentFile + QLatin1Char('-') + fileName;
    return fileName;
}

MoveCommands moveCommandsFor(int position, int count) {
    if (count <= 1) return {};
    return {position > 1, position < count};
}

} // namespace mms
