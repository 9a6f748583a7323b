#pragma once

#include <QString>
#include <QStringView>
#include <QtGlobal>
#include <optional>
#include <variant>

namespace mms {

// A slide's display time in whole seconds. A new slide holds it as the text "3"; once the user
// edits it, it is held as a 16-bit number. The difference is visible in the message index, where
// text is written in double quotes and a number bare, so both forms must round-trip.
class SlideDur {
public:
    // The longest display time: a duration is a 16-bit signed number of seconds.
    static constexpr int kMaxSeconds = 32767;

    SlideDur() = default;
    static SlideDur fromText(const QString& text) { return SlideDur(text); }
    static SlideDur fromNumber(qint16 seconds) { return SlideDur(seconds); }

    bool isNumber() const { return std::holds_alternative<qint16>(value_); }
    qint16 number() const { return std::get<qint16>(value_); }
    // The decimal text shown in the strip and written into main.smil.
    QString toString() const;
    // The duration as the message index writes it: quoted text or bare digits.
    QString indexField() const;

    friend bool operator==(const SlideDur&, const SlideDur&) = default;

private:
    explicit SlideDur(QString text) : value_(std::move(text)) {}
    explicit SlideDur(qint16 seconds) : value_(seconds) {}
    std::variant<QString, qint16> value_;
};

// The one reading of a duration given as text: decimal digits only (no sign, no blanks), leading
// zeros allowed, from 0 to SlideDur::kMaxSeconds. Nothing for anything else. Callers that allow
// blanks around the digits or cap their number say so themselves.
std::optional<qint16> parseSeconds(QStringView digits);

} // namespace mms
