#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace mms {

// The addresses of a send request, each in the form the request carries (see mmsAddress).
// Without any, the request's header is the plain one: From left to the server, no To or Cc.
struct MmsRecipients {
    QStringList to;
    QStringList cc;
    QString from; // empty: the server inserts the sender's address

    bool isEmpty() const { return to.isEmpty() && cc.isEmpty() && from.isEmpty(); }
};

// An address as a person types it, in the form a send request carries: a phone number (digits with
// an optional leading "+"; blanks, hyphens, dots and brackets between them are dropped) becomes
// "+4412345678/TYPE=PLMN"; an e-mail address (one "@" with text on both sides, without blanks,
// control characters, quotes, brackets, slashes, commas or semicolons) stays as it is. Nothing for
// anything else.
std::optional<QString> mmsAddress(const QString& typed);

// The pieces of a recipients field, separated by commas or semicolons, trimmed, empty ones skipped.
QStringList splitAddressList(const QString& field);

} // namespace mms
