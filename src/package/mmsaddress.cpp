#include "package/mmsaddress.h"

#include <QRegularExpression>

namespace mms {

std::optional<QString> mmsAddress(const QString& typed) {
    const QString text = typed.trimmed();
    static const QRegularExpression phoneSeparators(QStringLiteral("[ \\-.()]"));
    static const QRegularExpression phone(QStringLiteral("^\\+?[0-9]{1,20}$"));
    static const QRegularExpression email(
        QStringLiteral("^[^\\s\\x00-\\x1f\\x7f@\"<>(),;/]+@[^\\s\\x00-\\x1f\\x7f@\"<>(),;/]+$"));
    QString number = text;
    // An address already written with its type is taken back to the number it carries.
    if (number.endsWith(QLatin1String("/TYPE=PLMN"), Qt::CaseInsensitive)) number.chop(10);
    number.remove(phoneSeparators);
    if (phone.match(number).hasMatch()) return number + QStringLiteral("/TYPE=PLMN");
    if (email.match(text).hasMatch()) return text;
    return std::nullopt;
}

QStringList splitAddressList(const QString& field) {
    static const QRegularExpression separators(QStringLiteral("[,;]"));
    QStringList pieces;
    for (const QString& piece : field.split(separators, Qt::SkipEmptyParts))
        if (!piece.trimmed().isEmpty()) pieces << piece.trimmed();
    return pieces;
}

} // namespace mms
