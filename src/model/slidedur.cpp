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

} // namespace mms
