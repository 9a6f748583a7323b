#pragma once

#include "model/slidedur.h"
#include "model/status.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

namespace mms {

// One slide line of a message index: the duration as held and the three part flags.
struct IndexLine {
    SlideDur duration;
    bool hasPicture = false;
    bool hasText = false;
    bool hasSound = false;
};

struct MessageIndex {
    QString subject;
    std::vector<IndexLine> slides;
};

// Splits one line into its comma-separated fields: leading blanks are skipped; a field opening with a
// double quote runs to its closing quote (anything between that quote and the next comma is dropped);
// any other field runs to the next comma or the line end. `quoted` tells, per field, whether it was
// quoted. A blank line has no fields.
QStringList splitIndexFields(const QString& line, QList<bool>* quoted = nullptr);

// Reads a whole index: the subject is the first field of line 1 (the whole line when it holds more
// than one field, so that a subject with commas comes back whole), then one slide per non-blank line
// with at least four fields (duration, picture, text and sound flag; "N" means absent). A quoted
// duration is held as text, a bare one must be a whole number from 0 to 32767. Fails naming the line
// that is malformed; `out` is then left as it was.
Status parseMessageIndex(const QByteArray& bytes, MessageIndex& out);

} // namespace mms
