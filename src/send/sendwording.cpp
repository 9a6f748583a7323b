#include "send/sendwording.h"

#include "common/filesize.h"
#include "common/localisation.h"
#include "common/sendtexts.h"
#include "package/mmsaddress.h"

#include <QSettings>

namespace mms {

namespace {

const QString kRecentNumbersKey = QStringLiteral("RecentNumbers");

// %1 and %2 filled in one pass, so that a size or name holding "%2" stays as it is.
QString filled(const QString& text, const QString& first, const QString& second = {}) {
    QString out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar next = i + 1 < text.size() ? text.at(i + 1) : QChar();
        if (text.at(i) == QLatin1Char('%') && next == QLatin1Char('1')) {
            out += first;
            ++i;
        } else if (text.at(i) == QLatin1Char('%') && next == QLatin1Char('2') && !second.isNull()) {
            out += second;
            ++i;
        } else {
            out += text.at(i);
        }
    }
    return out;
}

} // namespace

std::optional<QStringList> typedNumbers(const Localisation& loc, const QString& field, QString& problem) {
    using namespace sendtext;
    const QStringList pieces = splitAddressList(field);
    if (pieces.isEmpty()) {
        problem = loc.getMCrErrStr(kErrNoRecipient);
        return std::nullopt;
    }
    QStringList numbers;
    for (const QString& piece : pieces) {
        if (const std::optional<QString> number = phoneNumber(piece)) {
            if (!numbers.contains(*number)) numbers << *number;
            continue;
        }
        // Anything else the address rules take is an e-mail address, which the daemon cannot send to.
        problem =
            filled(loc.getMCrErrStr(mmsAddress(piece) ? kErrEmailRecipient : kErrNotPhoneNumber), piece);
        return std::nullopt;
    }
    return numbers;
}

bool isOverServiceLimit(qint64 bytes, const ServiceLimits& limits) {
    return limits.totalMaxAttachmentSize > 0 && bytes > limits.totalMaxAttachmentSize;
}

QString sizeAgainstLimit(const Localisation& loc, std::optional<qint64> bytes,
                         const std::optional<ServiceLimits>& limits) {
    using namespace sendtext;
    const QString unknown = loc.getMCrInterfaceStr(kUnknown);
    QString limit = unknown;
    if (limits)
        limit = limits->totalMaxAttachmentSize > 0 ? sizeText(loc, limits->totalMaxAttachmentSize)
                                                   : loc.getMCrInterfaceStr(kNoLimit);
    return filled(loc.getMCrInterfaceStr(kSizeAgainstLimit), bytes ? sizeText(loc, *bytes) : unknown, limit);
}

QString tooLargeText(const Localisation& loc, qint64 bytes, const ServiceLimits& limits) {
    return filled(loc.getMCrErrStr(sendtext::kErrTooLargeToSend), sizeText(loc, bytes),
                  sizeText(loc, limits.totalMaxAttachmentSize));
}

QString unavailableText(const Localisation& loc, bool running) {
    return loc.getMCrErrStr(running ? sendtext::kErrNoModem : sendtext::kErrNoService);
}

QString statusText(const Localisation& loc, const SentEntry& entry) {
    using namespace sendtext;
    const QString& s = entry.status;
    if (s == QLatin1String("draft")) return loc.getMCrInterfaceStr(kStatusDraft);
    if (s == QLatin1String("sent")) return loc.getMCrInterfaceStr(kStatusSent);
    if (s == QLatin1String("delivered")) return loc.getMCrInterfaceStr(kStatusDelivered);
    if (s == QLatin1String("failed")) return filled(loc.getMCrInterfaceStr(kStatusFailed), entry.reason);
    return s;
}

QStringList withRecentNumbers(QStringList recent, const QStringList& used) {
    for (auto it = used.rbegin(); it != used.rend(); ++it) {
        recent.removeAll(*it);
        recent.prepend(*it);
    }
    return recent.mid(0, kRecentNumbersLimit);
}

QStringList loadRecentNumbers(const QSettings& settings) {
    return settings.value(kRecentNumbersKey).toStringList().mid(0, kRecentNumbersLimit);
}

void saveRecentNumbers(QSettings& settings, const QStringList& numbers) {
    settings.setValue(kRecentNumbersKey, numbers);
}

} // namespace mms
