#include "model/slidedur.h"

namespace mms {

QString SlideDur::toString() const {
    if (isNumber()) return QString::number(number());
    return std::get<QString>(value_);
}

QString SlideDur::indexField() const {
    if (isNumber()) return QString::number(number());
    return QLatin1Char('"') + std::get<QString>(value_) + QLatin1Char('"');
}

std::optional<qint16> parseSeconds(QStringView digits) {
    if (digits.isEmpty()) return std::nullopt;
    int value = 0;
    for (QChar c : digits) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) return std::nullopt;
        value = value * 10 + (c.unicode() - '0');
        if (value > SlideDur::kMaxSeconds) return std::nullopt; // also stops long digit strings early
    }
    return static_cast<qint16>(value);
}

} // namespace mms
