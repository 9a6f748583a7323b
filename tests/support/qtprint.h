#pragma once

#include <QByteArray>
#include <QString>
#include <ostream>

// Readable failure output for Qt strings.
inline void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}
inline void PrintTo(const QByteArray& b, std::ostream* os) {
    *os << '"' << b.toStdString() << '"';
}
