#include "package/utf8.h"

#include <QStringDecoder>

namespace mms {

namespace {
// Qt would write '?' for an unpaired surrogate; the replacement character says what happened.
QString withoutLoneSurrogates(const QString& text) {
    QString out;
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = text.at(i);
        bool lone = false;
        if (c.isHighSurrogate())
            lone = i + 1 >= n || !text.at(i + 1).isLowSurrogate();
        else if (c.isLowSurrogate())
            lone = i == 0 || !text.at(i - 1).isHighSurrogate();
        if (lone && out.isNull()) out = text;
        if (lone) out[i] = QChar(QChar::ReplacementCharacter);
    }
    return out.isNull() ? text : out;
}
} // namespace

QByteArray toUtf8Bytes(const QString& text) {
    if (text.isEmpty()) return QByteArray();
    return withoutLoneSurrogates(text).toUtf8();
}

QString fromUtf8Bytes(const QByteArray& bytes) {
    if (bytes.isEmpty()) return QString();
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    return decoder.decode(bytes);
}

} // namespace mms
