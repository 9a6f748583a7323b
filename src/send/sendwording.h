#pragma once

#include "send/sendrequest.h"
#include "send/sentlog.h"

#include <QString>
#include <QStringList>
#include <optional>

class QSettings;

namespace mms {

class Localisation;

// What the Send and Sent Messages windows tell the user, in the user's language: the checks they
// make before anything is handed over, the size against the service's limit, the statuses, and the
// numbers the recipients box completes from.

// The phone numbers of a recipients field (separated by commas or semicolons); nothing, and the
// reason in `problem`, for an empty field or a piece that is no phone number.
std::optional<QStringList> typedNumbers(const Localisation& loc, const QString& field, QString& problem);

// Whether `bytes` exceed what the service said it takes (a limit of 0 is none).
bool isOverServiceLimit(qint64 bytes, const ServiceLimits& limits);
// "Size: 12 KB of at most 1 MB"; the limit reads "unknown" until the service has answered, and the
// size too when the message could not be measured.
QString sizeAgainstLimit(const Localisation& loc, std::optional<qint64> bytes,
                         const std::optional<ServiceLimits>& limits);
QString tooLargeText(const Localisation& loc, qint64 bytes, const ServiceLimits& limits);

// Why nothing can be sent now: no daemon on the bus (and how to start one), or no modem yet.
QString unavailableText(const Localisation& loc, bool running);

// "draft", "sent", "delivered" or "failed: why"; a status the daemon names otherwise as it is.
QString statusText(const Localisation& loc, const SentEntry& entry);

// The numbers the recipients box completes from, the last used first.
inline constexpr int kRecentNumbersLimit = 20;
QStringList withRecentNumbers(QStringList recent, const QStringList& used);
QStringList loadRecentNumbers(const QSettings& settings);
void saveRecentNumbers(QSettings& settings, const QStringList& numbers);

} // namespace mms
