#pragma once

#include <QByteArray>
#include <QString>

namespace mms {

// The text conversion every file format of the program uses for user text (slide texts, subjects,
// language files). No byte-order mark is added and none is dropped: the bytes are the text and
// nothing else. Empty in, empty out.

// The text as UTF-8 bytes. An unpaired surrogate, which UTF-8 cannot carry, becomes U+FFFD.
QByteArray toUtf8Bytes(const QString& text);

// The bytes decoded as UTF-8. A leading byte-order mark stays in the text as U+FEFF; malformed
// sequences become U+FFFD.
QString fromUtf8Bytes(const QByteArray& bytes);

} // namespace mms
