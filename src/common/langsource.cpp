#include "common/langsource.h"

#include <QMap>
#include <QRegularExpression>

#include <array>
#include <set>

namespace mms {

namespace {

constexpr std::array<const char*, 3> kGroupKeys = {"prompt", "error", "interface"};

QString sectionMarker() {
    return QStringLiteral("..\\") + QChar(u'\0');
}
QString groupMarker() {
    return QStringLiteral("\\\\") + QChar(u'\0');
}

QStringList& groupList(LanguageTexts& texts, int group) {
    return group == 0 ? texts.prompts : group == 1 ? texts.errors : texts.interface;
}
const QStringList& groupList(const LanguageTexts& texts, int group) {
    return group == 0 ? texts.prompts : group == 1 ? texts.errors : texts.interface;
}

QString entryKey(int group, int number) {
    return QStringLiteral("%1.%2").arg(QLatin1String(kGroupKeys[group])).arg(number);
}

// Resolves the escapes of a text; fails with what is wrong, without the line number.
Status unescape(const QString& raw, QString& out) {
    out.clear();
    out.reserve(raw.size());
    for (qsizetype i = 0; i < raw.size(); ++i) {
        const QChar c = raw.at(i);
        if (c != QLatin1Char('\\')) {
            out.append(c);
            continue;
        }
        if (i + 1 == raw.size()) {
            return Status::failure(QStringLiteral("a lone \\ ends the line (write \\\\ for a backslash)"));
        }
        const QChar e = raw.at(++i);
        if (e == QLatin1Char('n')) {
            out.append(QLatin1Char('\n'));
        } else if (e == QLatin1Char('t')) {
            out.append(QLatin1Char('\t'));
        } else if (e == QLatin1Char('s')) {
            out.append(QLatin1Char(' '));
        } else if (e == QLatin1Char('\\')) {
            out.append(QLatin1Char('\\'));
        } else {
            return Status::failure(
                QStringLiteral("unknown escape \"\\%1\" (known: \\n, \\t, \\s, and \\\\ for a backslash)")
                    .arg(e));
        }
    }
    return Status::ok();
}

std::set<QString> placeholders(const QString& text) {
    static const QRegularExpression pattern(QStringLiteral("%[1-9]"));
    std::set<QString> found;
    for (const auto& m : pattern.globalMatch(text))
        found.insert(m.captured());
    return found;
}

QString describe(const std::set<QString>& set) {
    if (set.empty()) return QStringLiteral("no placeholder");
    const QStringList list(set.begin(), set.end());
    return list.join(QLatin1Char(' '));
}

} // namespace

namespace {

// Reads a language source line by line into `out`; every refusal names the line it stopped at.
class SourceReader {
public:
    SourceReader(const QString& sourceName, LanguageSource& out) : name_(sourceName), out_(out) {}

    Status line(qsizetype lineNo, const QString& text);
    // After the last line: the header is complete and every group is numbered without a gap.
    Status finish();

private:
    Status fail(qsizetype lineNo, const QString& what) const {
        return Status::failure(QStringLiteral("%1:%2: %3").arg(name_).arg(lineNo).arg(what));
    }
    Status header(qsizetype lineNo, const QString& key, const QString& value);
    Status entry(qsizetype lineNo, const QString& key, const QString& value);

    const QString& name_;
    LanguageSource& out_;
    std::array<QMap<int, QString>, 3> entries_;
    std::array<QMap<int, qsizetype>, 3> lineOf_;
    qsizetype languageLine_ = 0;
    qsizetype formatLine_ = 0;
};

Status SourceReader::line(qsizetype lineNo, const QString& text) {
    const QString line = text.trimmed();
    if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) return Status::ok();
    if (line.contains(QChar(u'\0')))
        return fail(lineNo, QStringLiteral("a NUL character cannot be part of a text"));
    const qsizetype eq = line.indexOf(QLatin1Char('='));
    if (eq < 0) return fail(lineNo, QStringLiteral("expected \"key = text\", found \"%1\"").arg(line));
    const QString key = line.left(eq).trimmed();
    QString value;
    if (Status s = unescape(line.mid(eq + 1).trimmed(), value); !s) return fail(lineNo, s.message());
    if (key == QLatin1String("language") || key == QLatin1String("format")) return header(lineNo, key, value);
    return entry(lineNo, key, value);
}

Status SourceReader::header(qsizetype lineNo, const QString& key, const QString& value) {
    if (key == QLatin1String("language")) {
        if (languageLine_) return fail(lineNo, QStringLiteral("the language is named twice"));
        if (value.isEmpty()) return fail(lineNo, QStringLiteral("the language name is empty"));
        out_.language = value;
        languageLine_ = lineNo;
        return Status::ok();
    }
    if (formatLine_) return fail(lineNo, QStringLiteral("the format is given twice"));
    bool ok = false;
    out_.format = value.toInt(&ok);
    if (!ok || out_.format != kLanguageSourceFormat) {
        return fail(lineNo, QStringLiteral("format \"%1\" is not supported (this build reads format %2)")
                                .arg(value)
                                .arg(kLanguageSourceFormat));
    }
    formatLine_ = lineNo;
    return Status::ok();
}

Status SourceReader::entry(qsizetype lineNo, const QString& key, const QString& value) {
    const qsizetype dot = key.indexOf(QLatin1Char('.'));
    int group = -1;
    for (int g = 0; g < 3 && dot > 0; ++g) {
        if (QStringView(key).left(dot) == QLatin1String(kGroupKeys[g])) group = g;
    }
    bool ok = false;
    const int number = dot > 0 ? key.mid(dot + 1).toInt(&ok) : -1;
    // Digits only: "+3" or " 3" would hide a typo.
    static const QRegularExpression digits(QStringLiteral("^[0-9]{1,4}$"));
    if (group < 0 || !ok || !digits.match(key.mid(dot + 1)).hasMatch()) {
        return fail(lineNo, QStringLiteral("unknown key \"%1\" (expected language, format, prompt.N, error.N "
                                           "or interface.N)")
                                .arg(key));
    }
    if (lineOf_[group].contains(number)) {
        return fail(
            lineNo,
            QStringLiteral("%1 is given twice (first on line %2)").arg(key).arg(lineOf_[group][number]));
    }
    entries_[group].insert(number, value);
    lineOf_[group].insert(number, lineNo);
    return Status::ok();
}

Status SourceReader::finish() {
    if (!languageLine_)
        return Status::failure(QStringLiteral("%1: the line \"language = ...\" is missing").arg(name_));
    if (!formatLine_)
        return Status::failure(
            QStringLiteral("%1: the line \"format = %2\" is missing").arg(name_).arg(kLanguageSourceFormat));
    for (int g = 0; g < 3; ++g) {
        const auto& map = entries_[g];
        if (map.isEmpty()) {
            return Status::failure(
                QStringLiteral("%1: there are no %2 entries").arg(name_, QLatin1String(kGroupKeys[g])));
        }
        QStringList& list = groupList(out_.texts, g);
        for (auto it = map.begin(); it != map.end(); ++it) {
            // The map is ordered, so the first key that is not its position shows the first gap.
            if (it.key() != list.size()) {
                return Status::failure(
                    QStringLiteral("%1: %2 is missing (every number up to %3 needs a line; "
                                   "write \"-\" for one the program does not show)")
                        .arg(name_, entryKey(g, int(list.size())), entryKey(g, map.lastKey())));
            }
            list.append(it.value());
        }
    }
    return Status::ok();
}

} // namespace

Status parseLanguageSource(const QString& text, const QString& sourceName, LanguageSource& out) {
    out = LanguageSource();
    QString body = text;
    if (body.startsWith(QChar(0xFEFF))) body.remove(0, 1);
    const QStringList lines = body.split(QLatin1Char('\n'));
    SourceReader reader(sourceName, out);
    for (qsizetype i = 0; i < lines.size(); ++i)
        if (Status s = reader.line(i + 1, lines.at(i)); !s) return s;
    return reader.finish();
}

Status checkAgainstReference(const LanguageSource& translation, const LanguageSource& reference) {
    for (int g = 0; g < 3; ++g) {
        const QStringList& mine = groupList(translation.texts, g);
        const QStringList& theirs = groupList(reference.texts, g);
        if (mine.size() != theirs.size()) {
            return Status::failure(
                QStringLiteral("%1 has %2 %3 entries where %4 has %5; add or remove them in all "
                               "languages at once")
                    .arg(translation.language)
                    .arg(mine.size())
                    .arg(QLatin1String(kGroupKeys[g]))
                    .arg(reference.language)
                    .arg(theirs.size()));
        }
        for (qsizetype k = 0; k < mine.size(); ++k) {
            const auto want = placeholders(theirs.at(k));
            const auto have = placeholders(mine.at(k));
            if (want != have) {
                return Status::failure(QStringLiteral("%1: %2 uses %3 where %4 uses %5")
                                           .arg(entryKey(g, int(k)), translation.language, describe(have),
                                                reference.language, describe(want)));
            }
        }
    }
    return Status::ok();
}

Status buildLanguageFile(const LanguageSource& source, const QString& sourceName, QByteArray& out) {
    const QChar nul(u'\0');
    if (source.language.contains(nul))
        return Status::failure(QStringLiteral("the language name holds a NUL"));
    for (int g = 0; g < 3; ++g) {
        const QStringList& list = groupList(source.texts, g);
        for (qsizetype k = 0; k < list.size(); ++k) {
            const QString& entry = list.at(k);
            if (entry.contains(nul)) {
                return Status::failure(QStringLiteral("%1 holds a NUL character, which separates the texts")
                                           .arg(entryKey(g, int(k))));
            }
            // Followed by the NUL that ends it, such an ending would be read as a marker.
            if (entry.endsWith(QLatin1String("\\\\")) || entry.endsWith(QLatin1String("..\\"))) {
                return Status::failure(
                    QStringLiteral("%1 ends in \"%2\", which the file format reserves as a "
                                   "marker; end the text with another character")
                        .arg(entryKey(g, int(k)),
                             entry.right(entry.endsWith(QLatin1String("..\\")) ? 3 : 2)));
            }
        }
    }

    QString text = QStringLiteral("MMS Composer language file") + sectionMarker();
    text += QStringLiteral("language: ") + source.language + sectionMarker();
    text += QStringLiteral("format: %1").arg(source.format) + sectionMarker();
    text +=
        QStringLiteral("generated from %1; edit that file, not this one").arg(sourceName) + sectionMarker();
    text += sectionMarker();
    for (int g = 0; g < 3; ++g)
        text += groupList(source.texts, g).join(nul) + groupMarker();
    out = text.toUtf8();

    // The checks above should make this impossible; reading back proves it.
    LanguageTexts back;
    if (Status s = parseLanguageFile(out, back); !s) return s;
    if (back.prompts != source.texts.prompts || back.errors != source.texts.errors ||
        back.interface != source.texts.interface) {
        return Status::failure(QStringLiteral("the built file does not read back as written"));
    }
    return Status::ok();
}

} // namespace mms
