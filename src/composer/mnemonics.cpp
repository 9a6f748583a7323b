#include "composer/mnemonics.h"

#include <QSet>

namespace mms {

namespace {

// Where a caption marks its mnemonic ("&&" is a literal ampersand), -1 when it has none.
qsizetype markedAt(const QString& caption) {
    for (qsizetype i = 0; i + 1 < caption.size(); ++i) {
        if (caption.at(i) != QLatin1Char('&')) continue;
        if (caption.at(i + 1) != QLatin1Char('&')) return i + 1;
        ++i;
    }
    return -1;
}

// Letters a keyboard types directly; ideographic and syllabic scripts are entered another way.
bool typeable(QChar c) {
    if (!c.isLetter()) return false;
    switch (c.script()) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Hangul:
    case QChar::Script_Bopomofo:
        return false;
    default:
        return true;
    }
}

QString markFirstFree(const QString& caption, QChar key, QSet<QChar>& taken) {
    for (qsizetype i = 0; i < caption.size(); ++i) {
        const QChar c = caption.at(i);
        if (typeable(c) && !taken.contains(c.toLower())) {
            taken.insert(c.toLower());
            return QString(caption).insert(i, QLatin1Char('&'));
        }
    }
    bool anyLetter = false;
    for (QChar c : caption)
        anyLetter = anyLetter || c.isLetter();
    if (!anyLetter) return caption;
    QChar letter = key.toLower();
    if (letter.isNull() || taken.contains(letter)) {
        letter = QChar();
        for (char a = 'z'; a >= 'a'; --a)
            if (!taken.contains(QLatin1Char(a))) letter = QLatin1Char(a);
        if (letter.isNull()) return caption;
    }
    taken.insert(letter);
    return caption + QStringLiteral("(&") + letter.toUpper() + QLatin1Char(')');
}

} // namespace

QStringList withMnemonics(const QStringList& captions, const QString& keys) {
    QSet<QChar> taken;
    for (const QString& caption : captions) {
        const qsizetype at = markedAt(caption);
        if (at >= 0) taken.insert(caption.at(at).toLower());
    }
    QStringList out;
    for (qsizetype i = 0; i < captions.size(); ++i) {
        const QString& caption = captions.at(i);
        const QChar key = i < keys.size() ? keys.at(i) : QChar();
        out << (markedAt(caption) >= 0 ? caption : markFirstFree(caption, key, taken));
    }
    return out;
}

} // namespace mms
