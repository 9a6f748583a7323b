#include "store/messageindex.h"

#include "model/cslide.h"

namespace mms {

namespace {
bool isBlank(QChar c) {
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}
} // namespace

QStringList splitIndexFields(const QString& line, QList<bool>* quoted) {
    QStringList fields;
    if (quoted) quoted->clear();
    qsizetype pos = 0;
    const qsizetype end = line.size();
    bool blankLine = true;
    for (QChar c : line)
        if (!isBlank(c)) blankLine = false;
    if (blankLine) return fields;

    while (true) {
        while (pos < end && isBlank(line.at(pos)))
            ++pos;
        const bool isQuoted = pos < end && line.at(pos) == QLatin1Char('"');
        qsizetype comma;
        if (isQuoted) {
            const qsizetype close = line.indexOf(QLatin1Char('"'), pos + 1);
            const qsizetype stop = close < 0 ? end : close;
            fields << line.mid(pos + 1, stop - pos - 1);
            comma = close < 0 ? -1 : line.indexOf(QLatin1Char(','), close + 1);
        } else {
            comma = line.indexOf(QLatin1Char(','), pos);
            fields << line.mid(pos, (comma < 0 ? end : comma) - pos);
        }
        if (quoted) quoted->append(isQuoted);
        if (comma < 0) break;
        pos = comma + 1;
    }
    return fields;
}

namespace {

Status malformed(int lineNumber, const QString& what) {
    return Status::failure(QStringLiteral("line %1 of the index %2").arg(lineNumber).arg(what));
}

// A bare duration: blanks around it are skipped; an index field holds at most five digits.
std::optional<qint16> bareSeconds(const QString& field) {
    const QStringView digits = QStringView(field).trimmed();
    if (digits.size() > 5) return std::nullopt;
    return parseSeconds(digits);
}

bool flagSet(const QString& flag) {
    return flag != QLatin1String("N");
}

} // namespace

Status parseMessageIndex(const QByteArray& bytes, MessageIndex& out) {
    if (bytes.isEmpty()) return Status::failure(QStringLiteral("the index is empty"));
    QStringList lines = QString::fromUtf8(bytes).split(QLatin1Char('\n'));
    for (QString& line : lines)
        if (line.endsWith(QLatin1Char('\r'))) line.chop(1);

    MessageIndex index;
    // The subject is the first field of line 1. An index written elsewhere may hold a subject with
    // commas there; its first field alone would cut it short, so the whole line is taken instead.
    const QStringList subjectFields = splitIndexFields(lines.first());
    index.subject = subjectFields.size() > 1 ? lines.first() : subjectFields.value(0);

    for (qsizetype i = 1; i < lines.size(); ++i) {
        const int lineNumber = static_cast<int>(i + 1);
        QList<bool> quoted;
        const QStringList fields = splitIndexFields(lines.at(i), &quoted);
        if (fields.isEmpty()) continue;
        if (fields.size() < 4)
            return malformed(lineNumber,
                             QStringLiteral("has %1 fields where a slide needs four").arg(fields.size()));
        if (index.slides.size() >= static_cast<size_t>(CSlide::kMaxSlides))
            return malformed(
                lineNumber,
                QStringLiteral("is beyond the %1 slides a message can hold").arg(CSlide::kMaxSlides));
        IndexLine slide;
        if (quoted.first()) {
            slide.duration = SlideDur::fromText(fields.first());
        } else {
            const std::optional<qint16> seconds = bareSeconds(fields.first());
            if (!seconds)
                return malformed(lineNumber,
                                 QStringLiteral("has the duration \"%1\", which is not a whole number "
                                                "from 0 to 32767")
                                     .arg(fields.first()));
            slide.duration = SlideDur::fromNumber(*seconds);
        }
        slide.hasPicture = flagSet(fields.at(1));
        slide.hasText = flagSet(fields.at(2));
        slide.hasSound = flagSet(fields.at(3));
        index.slides.push_back(slide);
    }
    out = std::move(index);
    return Status::ok();
}

} // namespace mms
