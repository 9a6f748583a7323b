#include "sound/mididecoder.h"

// The decoder's note text: lengths as codes, gaps as rests, the text split into bars, and the
// stretch of it a crop selects.

#include "sound/midiarith.h"

#include <QStringView>

namespace mms {

using midi::checked32;
using midi::roundHalfEven;

namespace {

// Only this many tokens of a channel can ever reach the bar table: a bar holds at most 33 tokens
// (one more fails the decode) and at most 40 bars are kept. Text beyond it is not built, so a tiny
// file with a gap of two billion ticks cannot ask for gigabytes of rest tokens.
constexpr int kTokenBudget = MidiDecoder::kBars * (MidiDecoder::kMaxTokensPerBar + 1);

// k times the division as a 16-bit number, as the length rules compute it.
qint16 times16(int k, qint16 d) {
    const int v = k * int(d);
    if (v > std::numeric_limits<qint16>::max()) throw std::overflow_error("ticks per quarter too large");
    return qint16(v);
}

QLatin1String noteCode(qint32 ticks, qint16 d) {
    const double t = ticks;
    const double d3 = times16(3, d);
    if (t <= d3 / 16) return QLatin1String("32");
    if (t <= d3 / 8) return QLatin1String("16");
    if (t <= d3 / 4) return QLatin1String("8");
    if (t <= 1.5 * d) return QLatin1String("4");
    if (t <= d3) return QLatin1String("2");
    return QLatin1String("1");
}

// Appends the rest tokens of a gap, at most `budget` of them (the budget is lowered by what was
// appended). The range checks are made whether or not text is still wanted.
void appendRest(QString& out, qint32 ticks, qint16 d, int& budget) {
    if (ticks <= 0) return;
    if (d <= 0) throw std::domain_error("no ticks per quarter");
    const qint16 d4 = times16(4, d);
    const qint16 d2 = times16(2, d);
    qint64 left = ticks;
    while (left > 0 && budget > 0) {
        if (left >= d4) {
            out += QLatin1String("1P ");
            left -= d4;
        } else if (left >= d2) {
            out += QLatin1String("2P ");
            left -= d2;
        } else if (left >= d) {
            out += QLatin1String("4P ");
            left -= d;
        } else if (left >= d / 2.0) {
            out += QLatin1String("8P ");
            left -= roundHalfEven(d / 2.0);
        } else if (left >= d / 4.0) {
            out += QLatin1String("16P ");
            left -= roundHalfEven(d / 4.0);
        } else if (left >= d / 8.0) {
            out += QLatin1String("32P ");
            left -= roundHalfEven(d / 8.0);
        } else {
            break;
        }
        --budget;
    }
}

// Calls f(token) for each space-separated token of `text`, as views into it.
template <class F> void forEachToken(QStringView text, F&& f) {
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype end = text.indexOf(QLatin1Char(' '), start);
        if (end < 0) end = text.size();
        if (end > start && !f(text.sliced(start, end - start))) return;
        start = end + 1;
    }
}

int leadingNumberOf(QStringView token) {
    if (token.size() >= 2 && token[0].isDigit() && token[1].isDigit())
        return token[0].digitValue() * 10 + token[1].digitValue();
    if (!token.isEmpty() && token[0].isDigit()) return token[0].digitValue();
    return 0;
}

} // namespace

QString MidiDecoder::durationText(qint32 ticks, qint16 ticksPerQuarter, bool isNote) {
    if (isNote) return noteCode(ticks, ticksPerQuarter);
    QString out;
    int unlimited = std::numeric_limits<int>::max();
    appendRest(out, ticks, ticksPerQuarter, unlimited);
    return out;
}

int MidiDecoder::leadingNumber(const QString& token) {
    return leadingNumberOf(token);
}

int MidiDecoder::timeSignatureCode(const std::array<qint16, 2>& timeSig) {
    const auto [n, d] = timeSig;
    if (n == 2 && d == 4) return 0;
    if (n == 3 && d == 4) return 1;
    if (n == 4 && d == 4) return 2;
    if (n == 3 && d == 8) return 3;
    if (n == 6 && d == 8) return 4;
    return 0;
}

void MidiDecoder::buildNoteText() {
    const qint16 d = ticksPerQuarter_;
    try {
        for (int channel = 0; channel < kChannels; ++channel) {
            const auto& ev = noteEvents_[channel];
            const size_t n = ev.size();
            QString& cell = noteTable_[channel][0];
            cell.reserve(cell.size() + qsizetype(std::min<size_t>(n, kTokenBudget)) * 5);
            int budget = kTokenBudget;
            size_t i = 0;
            qint64 rest = 0; // R: gap collected since the last note ended
            qint64 length = 0;
            while (i < n) {
                const qint16 name = ev[i].note;
                const qint32 noteRest = rest != 0 ? checked32(rest) : ev[i].delta;
                // The note lasts until an event of the same name ends it; notes starting meanwhile
                // (a chord) are passed over. No ending event at all fails the step.
                do {
                    if (++i >= n) throw Failure();
                    length += ev[i].delta;
                } while (!(ev[i].note == name && (!ev[i].isNoteOn || ev[i].velocity == 0)));
                const qint32 noteLength = checked32(length);

                appendRest(cell, noteRest, d, budget);
                const QLatin1String code = noteCode(noteLength, d);
                if (budget > 0) {
                    cell += code;
                    cell += noteName(name);
                    cell += QLatin1Char(' ');
                    --budget;
                }
                rest = 0;
                length = 0;

                ++i;
                while (!(i < n && ev[i].isNoteOn && ev[i].velocity > 0)) {
                    if (i >= n) break;
                    ++i;
                    if (i < n) rest += ev[i].delta;
                }
            }
        }
    } catch (...) {
        midiDecoded_ = false;
    }
}

void MidiDecoder::splitIntoBars(qint16 numerator, qint16 denominator) {
    const double barLength = double(numerator) / denominator;
    for (int channel = 0; channel < kChannels; ++channel) {
        auto& row = noteTable_[channel];
        const QString all = row[0].trimmed();
        if (all.isEmpty()) continue;
        int bar = 0;
        double sum = 0;
        QString current;
        int tokens = 0;
        bool tooLong = false;
        forEachToken(all, [&](QStringView token) {
            if (tokens++ > 0) current += QLatin1Char(' ');
            current += token;
            if (tokens > kMaxTokensPerBar) {
                tooLong = true;
                return false;
            }
            sum += 1.0 / leadingNumberOf(token);
            if (sum >= barLength) {
                row[bar++] = current;
                current.clear();
                tokens = 0;
                sum = 0;
                if (bar == kBars) return false;
            }
            return true;
        });
        if (tooLong) {
            midiDecoded_ = false;
            return;
        }
        if (tokens > 0 && bar < kBars) row[bar] = current;
    }
}

int MidiDecoder::barCount(int channel) const {
    for (int bar = 0; bar < kBars; ++bar)
        if (noteTable_[channel][bar].trimmed().isEmpty()) return bar;
    return kBars;
}

double MidiDecoder::tuneLength() const {
    int bars = 0;
    for (int channel = 0; channel < kChannels; ++channel)
        bars = std::max(bars, barCount(channel));
    return bars * (barWholeNotes_ / 0.25) * secPerQuarter_;
}

std::array<QString, MidiDecoder::kChannels> MidiDecoder::selectTimeSpan(double start, double end) const {
    std::array<QString, kChannels> result;
    for (int channel = 0; channel < kChannels; ++channel) {
        double pos = 0;
        bool finished = false;
        for (int bar = 0; bar < kBars && !finished; ++bar) {
            const QString cell = noteTable_[channel][bar].trimmed();
            if (cell.isEmpty()) break;
            forEachToken(cell, [&](QStringView token) {
                const int lead = leadingNumberOf(token);
                const double length = lead > 0 ? (1.0 / lead) / 0.25 * secPerQuarter_ : 0.0;
                if (pos >= end) {
                    finished = true;
                    return false;
                }
                if (pos + length > start) {
                    result[channel] += QLatin1Char(' ');
                    result[channel] += token;
                }
                pos += length;
                return true;
            });
        }
    }
    return result;
}

} // namespace mms
