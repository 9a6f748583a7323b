#include "sound/mididecoder.h"

#include <QFile>
#include <QStringList>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace mms {

// A damaged file or a number out of range: the decode ends without a message.
class MidiDecoder::Failure {};

// Bounds-checked reading of one chunk's bytes; reading past its end is a Failure.
class MidiDecoder::Reader {
public:
    Reader(const QByteArray& data, qsizetype begin, qsizetype end) : data_(data), pos_(begin), end_(end) {}
    bool atEnd() const { return pos_ >= end_; }
    quint8 peek() const {
        if (atEnd()) throw Failure();
        return quint8(data_[pos_]);
    }
    quint8 byte() {
        const quint8 b = peek();
        ++pos_;
        return b;
    }
    void skip(qint64 n) {
        if (n < 0 || n > end_ - pos_) throw Failure();
        pos_ += qsizetype(n);
    }
    // A variable-length quantity; values past the 32-bit signed range are a Failure.
    qint64 vlq() {
        qint64 value = 0;
        for (;;) {
            const quint8 b = byte();
            value = value * 128 + (b & 0x7F);
            if (value > std::numeric_limits<qint32>::max()) throw Failure();
            if (!(b & 0x80)) return value;
        }
    }
    quint32 bigEndian(int bytes) {
        quint32 v = 0;
        for (int k = 0; k < bytes; ++k)
            v = v << 8 | byte();
        return v;
    }

private:
    const QByteArray& data_;
    qsizetype pos_;
    qsizetype end_;
};

namespace {

// The thrown message ends the decode after it has been shown.
struct Stopped {};

// A channel holds at most this many note events: its counter is a 16-bit number.
constexpr int kMaxEventsPerChannel = 32766;

// Only this many tokens of a channel can ever reach the bar table: a bar holds at most 33 tokens
// (one more fails the decode) and at most 40 bars are kept. Text beyond it is not built, so a tiny
// file with a gap of two billion ticks cannot ask for gigabytes of rest tokens.
constexpr int kTokenBudget = MidiDecoder::kBars * (MidiDecoder::kMaxTokensPerBar + 1);

const char* const kNoteNames[12] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};

const char* const kInstruments[128] = {"Acoustic Grand Piano",
                                       "Bright Acoustic Piano",
                                       "Electric Grand Piano",
                                       "Honky-tonk Piano",
                                       "Electric Piano 1",
                                       "Electric Piano 2",
                                       "Harpsichord",
                                       "Clavi",
                                       "Celesta",
                                       "Glockenspiel",
                                       "Music Box",
                                       "Vibraphone",
                                       "Marimba",
                                       "Xylophone",
                                       "Tubular Bells",
                                       "Dulcimer",
                                       "Drawbar Organ",
                                       "Percussive Organ",
                                       "Rock Organ",
                                       "Church Organ",
                                       "Reed Organ",
                                       "Accordion",
                                       "Harmonica",
                                       "Tango Accordion",
                                       "Acoustic Guitar(nylon)",
                                       "Acoustic Guitar(Steel)",
                                       "Electric Guitar(jazz)",
                                       "Electric Guitar(clean)",
                                       "Electric Guitar(Muted)",
                                       "Overdriven Guitar",
                                       "Distortion Guitar",
                                       "Guitar harmonics",
                                       "Acoustic Bass",
                                       "Electric Bass(finger)",
                                       "Electric Bass(pick)",
                                       "Fretless Bass",
                                       "Slap Bass 1",
                                       "Slap Bass 2",
                                       "Synth Bass 1",
                                       "Synth Bass 2",
                                       "Violin",
                                       "Viola",
                                       "Cello",
                                       "Contrabass",
                                       "Tremolo Strings",
                                       "Pizzicato Strings",
                                       "Orchestral Harp",
                                       "Timpani",
                                       "String Ensemble 1",
                                       "String Ensemble 2",
                                       "SynthStrings 1",
                                       "SynthStrings 2",
                                       "Choir Aahs",
                                       "Voice Oohs",
                                       "Synth Voice",
                                       "Orchestra Hit",
                                       "Trumpet",
                                       "Trombone",
                                       "Tuba",
                                       "Muted Trumpet",
                                       "French Horn",
                                       "Brass Section",
                                       "SynthBrass 1",
                                       "SynthBrass 2",
                                       "Soprano Sax",
                                       "Alto Sax",
                                       "Tenor Sax",
                                       "Baritone Sax",
                                       "Oboe",
                                       "English Horn",
                                       "Bassoon",
                                       "Clarinet",
                                       "Piccolo",
                                       "Flute",
                                       "Recorder",
                                       "Pan Flute",
                                       "Blown Bottle",
                                       "Shakuhachi",
                                       "Whistle",
                                       "Ocarina",
                                       "Lead 1 (square)",
                                       "Lead 2 (sawtooth)",
                                       "Lead 3 (calliope)",
                                       "Lead 4 (chiff)",
                                       "Lead 5 (charang)",
                                       "Lead 6 (voice)",
                                       "Lead 7 (fifths)",
                                       "Lead 8 (bass + lead)",
                                       "Pad 1 (new age)",
                                       "Pad 2 (warm)",
                                       "Pad 3 (polysynth)",
                                       "Pad 4 (choir)",
                                       "Pad 5 (bowed)",
                                       "Pad 6 (metallic)",
                                       "Pad 7 (halo)",
                                       "Pad 8 (sweep)",
                                       "FX 1 (rain)",
                                       "FX 2 (soundtrack)",
                                       "FX 3 (crystal)",
                                       "FX 4 (atmosphere)",
                                       "FX 5 (brightness)",
                                       "FX 6 (goblins)",
                                       "FX 7 (echoes)",
                                       "FX 8 (sci-fi)",
                                       "Sitar",
                                       "Banjo",
                                       "Shamisen",
                                       "Koto",
                                       "Kalimba",
                                       "Bag pipe",
                                       "Fiddle",
                                       "Shanai",
                                       "Tinkle Bell",
                                       "Agogo",
                                       "Steel Drums",
                                       "Woodblock",
                                       "Taiko Drum",
                                       "Melodic Tom",
                                       "Synth Drum",
                                       "Reverse Cymbal",
                                       "Guitar Fret Noise",
                                       "Breath Noise",
                                       "Seashore",
                                       "Bird Tweet",
                                       "Telephone Ring",
                                       "Helicopter",
                                       "Applause",
                                       "Gunshot"};

// k times the division as a 16-bit number, as the length rules compute it.
qint16 times16(int k, qint16 d) {
    const int v = k * int(d);
    if (v > std::numeric_limits<qint16>::max()) throw std::overflow_error("ticks per quarter too large");
    return qint16(v);
}

// Rounds halves to even, like the conversions the tempo and rest rules were written for.
qint64 roundHalfEven(double v) {
    return qint64(std::nearbyint(v));
}

qint32 checked32(qint64 v) {
    if (v > std::numeric_limits<qint32>::max()) throw std::overflow_error("tick count too large");
    return qint32(v);
}

QString noteCode(qint32 ticks, qint16 d) {
    const double t = ticks;
    const double d3 = times16(3, d);
    if (t <= d3 / 16) return QStringLiteral("32");
    if (t <= d3 / 8) return QStringLiteral("16");
    if (t <= d3 / 4) return QStringLiteral("8");
    if (t <= 1.5 * d) return QStringLiteral("4");
    if (t <= d3) return QStringLiteral("2");
    return QStringLiteral("1");
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

QStringList tokensOf(const QString& text) {
    return text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

QString NoteEvent::pitchName() const {
    return MidiDecoder::noteName(note);
}

QString MidiDecoder::noteName(qint16 n) {
    const int k = ((n % 12) + 12) % 12;
    return QLatin1String(kNoteNames[k]) + QString::number(n / 12);
}

std::optional<QString> MidiDecoder::gmInstrumentName(qint16 program) {
    if (program < 0 || program > 127) return std::nullopt;
    return QString::fromLatin1(kInstruments[program]);
}

QString MidiDecoder::durationText(qint32 ticks, qint16 ticksPerQuarter, bool isNote) {
    if (isNote) return noteCode(ticks, ticksPerQuarter);
    QString out;
    int unlimited = std::numeric_limits<int>::max();
    appendRest(out, ticks, ticksPerQuarter, unlimited);
    return out;
}

int MidiDecoder::leadingNumber(const QString& token) {
    if (token.size() >= 2 && token[0].isDigit() && token[1].isDigit()) return token.left(2).toInt();
    if (!token.isEmpty() && token[0].isDigit()) return token[0].digitValue();
    return 0;
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

void MidiDecoder::resetMidiTables() {
    channelProgram_.fill(0);
    for (auto& row : noteTable_)
        for (auto& cell : row)
            cell.clear();
}

void MidiDecoder::decodeMidiFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        decode(QByteArray()); // resets the per-decode state and ends: not a MIDI file
        return;
    }
    decode(file.readAll());
}

void MidiDecoder::decodeMidiData(const QByteArray& data) {
    decode(data);
}

void MidiDecoder::stop(const QString& message) {
    if (sink_) sink_->inform(message);
    throw Stopped();
}

void MidiDecoder::decode(const QByteArray& data) {
    timeSig_ = {4, 4};
    barWholeNotes_ = 1.0;
    for (auto& events : noteEvents_)
        events.clear();
    midiDecoded_ = false;
    runningTicks_ = 0;
    previousStatus_ = -1;

    if (!data.startsWith("MThd")) return;
    try {
        Reader header(data, 4, data.size());
        const quint32 headerLength = header.bigEndian(4);
        if (headerLength > quint32(data.size() - 8)) throw Failure();
        Reader fields(data, 8, 8 + qsizetype(headerLength));
        fields.skip(4); // format and track count: tracks are read until the data ends
        const quint16 division = quint16(fields.bigEndian(2));
        if (!(division & 0x8000)) ticksPerQuarter_ = qint16(division);

        qsizetype pos = 8 + qsizetype(headerLength);
        while (pos < data.size()) {
            if (data.size() - pos < 4 || data.mid(pos, 4) != "MTrk")
                stop(QStringLiteral("Decode Error: MTrk\n"));
            Reader lengthField(data, pos + 4, data.size());
            const quint32 length = lengthField.bigEndian(4);
            const qsizetype begin = pos + 8;
            if (length > quint64(data.size() - begin)) throw Failure();
            Reader track(data, begin, begin + qsizetype(length));
            readTrack(track);
            runningTicks_ = 0;
            pos = begin + qsizetype(length);
        }
    } catch (const Failure&) {
        return;
    } catch (const Stopped&) {
        return;
    } catch (const std::exception&) {
        return;
    }
    midiDecoded_ = true;
    buildNoteText();
    splitIntoBars(timeSig_[0], timeSig_[1]);
}

void MidiDecoder::readTrack(Reader& track) {
    while (!track.atEnd()) {
        runningTicks_ += track.vlq();
        checked32(runningTicks_);
        const quint8 b = track.peek();
        if (b < 0x80) {
            // Running status: the byte is the first data byte of a message like the previous one.
            if (previousStatus_ < 0) throw Failure();
            channelMessage(track, quint8(previousStatus_));
            continue;
        }
        track.skip(1);
        if (b == 0xFF) {
            metaEvent(track);
        } else if (b == 0xF0 || b == 0xF7) {
            track.skip(track.vlq());
        } else if (b >= 0xF1) {
            // One-byte system messages; system common ones do not belong in a file and carry no
            // data we could trust, so only the status byte is stepped over.
        } else {
            channelMessage(track, b);
            previousStatus_ = b;
        }
    }
}

void MidiDecoder::channelMessage(Reader& track, quint8 status) {
    const int channel = status & 0x0F;
    switch (status >> 4) {
    case 0x8:
    case 0x9: {
        const quint8 note = track.byte();
        if (note > 127) stop(QStringLiteral("Decode Error(Note)"));
        const quint8 velocity = track.byte();
        if (velocity > 127) stop(QStringLiteral("Velocity: Decode Error(Velocity)"));
        appendNote(channel, (status >> 4) == 0x9, note, velocity);
        break;
    }
    case 0xA:
        if (track.byte() > 127) stop(QStringLiteral("Decode Error(Note)"));
        if (track.byte() > 127) stop(QStringLiteral("Pressure Value: Decode Error(Pressure Value)"));
        break;
    case 0xB:
        if (track.byte() > 127) stop(QStringLiteral("Decode Error(Control Number)"));
        if (track.byte() > 127) stop(QStringLiteral("New Value: Decode Error(New Value)"));
        break;
    case 0xC: {
        const quint8 program = track.byte();
        if (program > 127) stop(QStringLiteral("Decode Error(New Program Number)"));
        channelProgram_[channel] = program;
        break;
    }
    case 0xD:
        if (track.byte() > 127) stop(QStringLiteral("Decode Error(Pressure Value)"));
        break;
    case 0xE:
        track.skip(2);
        break;
    default:
        throw Failure();
    }
}

void MidiDecoder::appendNote(int channel, bool on, qint16 note, qint16 velocity) {
    auto& events = noteEvents_[channel];
    if (events.size() >= size_t(kMaxEventsPerChannel)) throw Failure();
    events.push_back(NoteEvent{on, checked32(runningTicks_), note, velocity});
    runningTicks_ = 0;
}

void MidiDecoder::metaEvent(Reader& track) {
    const quint8 type = track.byte();
    const qint64 length = track.vlq();
    auto require = [&](bool ok, const char* message) {
        if (!ok) stop(QString::fromLatin1(message));
    };
    switch (type) {
    case 0x00:
        require(length == 0 || length == 2, "Sequence Number Error\n");
        track.skip(length);
        break;
    case 0x01:
    case 0x02:
    case 0x03:
    case 0x04:
    case 0x05:
    case 0x06:
    case 0x07:
    case 0x7F:
        track.skip(length);
        break;
    case 0x20:
        require(length == 1, "MIDI Channel : Error");
        track.skip(length);
        break;
    case 0x21:
        require(length == 1, "MIDI Port : Error");
        track.skip(length);
        break;
    case 0x2F:
        require(length == 0, "End of Track : Error");
        break;
    case 0x51: {
        require(length == 3, "Tempo : Error");
        const quint32 t = track.bigEndian(3);
        secPerQuarter_ = t / 1000000.0;
        if (t == 0) throw Failure();
        tempoBpm_ = qint32(roundHalfEven(60000000.0 / t));
        break;
    }
    case 0x54:
        require(length == 5, "SMPTE offset : Error");
        track.skip(length);
        break;
    case 0x58: {
        require(length == 4, "Time Signature: Error");
        const quint8 numerator = track.byte();
        const quint8 power = track.byte();
        track.skip(2);
        if (power > 14) throw Failure(); // the denominator is a 16-bit number
        timeSig_ = {qint16(numerator), qint16(1 << power)};
        barWholeNotes_ = double(timeSig_[0]) / timeSig_[1];
        break;
    }
    case 0x59:
        require(length == 2, "Key Signature: Error");
        track.skip(length);
        break;
    default:
        stop(QStringLiteral("Meta Event Error %1\n").arg(QString::number(type, 16).toUpper()));
    }
}

void MidiDecoder::buildNoteText() {
    const qint16 d = ticksPerQuarter_;
    try {
        for (int channel = 0; channel < kChannels; ++channel) {
            const auto& ev = noteEvents_[channel];
            const size_t n = ev.size();
            QString& cell = noteTable_[channel][0];
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

                QString restText;
                appendRest(restText, noteRest, d, budget);
                const QString code = noteCode(noteLength, d);
                cell += restText;
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
        QStringList current;
        for (const QString& token : tokensOf(all)) {
            current << token;
            if (current.size() > kMaxTokensPerBar) {
                midiDecoded_ = false;
                return;
            }
            sum += 1.0 / leadingNumber(token);
            if (sum >= barLength) {
                row[bar++] = current.join(QLatin1Char(' '));
                current.clear();
                sum = 0;
                if (bar == kBars) break;
            }
        }
        if (!current.isEmpty() && bar < kBars) row[bar] = current.join(QLatin1Char(' '));
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
            for (const QString& token : tokensOf(cell)) {
                const int lead = leadingNumber(token);
                const double length = lead > 0 ? (1.0 / lead) / 0.25 * secPerQuarter_ : 0.0;
                if (pos < end && pos + length > start) {
                    result[channel] += QLatin1Char(' ') + token;
                    pos += length;
                } else if (pos < end) {
                    pos += length;
                } else {
                    finished = true;
                    break;
                }
            }
        }
    }
    return result;
}

} // namespace mms
