#include "sound/midiwriter.h"

#include "common/fileio.h"

#include <QStringList>
#include <cmath>

namespace mms {

namespace {

const char* const kNames[12] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};

void putVlq(QByteArray& out, quint32 value) {
    char groups[5];
    int n = 0;
    do {
        groups[n++] = char(value & 0x7F);
        value >>= 7;
    } while (value > 0);
    while (n > 1)
        out.append(char(groups[--n] | 0x80));
    out.append(groups[0]);
}

void putBigEndian(QByteArray& out, quint32 value, int bytes) {
    for (int k = bytes - 1; k >= 0; --k)
        out.append(char((value >> (8 * k)) & 0xFF));
}

void putChunk(QByteArray& file, const char* id, const QByteArray& body) {
    file.append(id, 4);
    putBigEndian(file, quint32(body.size()), 4);
    file.append(body);
}

// Parses "C#5" and the like; -1 when it is not a pitch of the grammar.
int parsePitch(const QString& text) {
    for (int semitone = 11; semitone >= 0; --semitone) {
        const QLatin1String name(kNames[semitone]);
        if (!text.startsWith(name)) continue;
        const QString octave = text.mid(name.size());
        if (octave.isEmpty() || octave.size() > 2) return -1;
        if (octave.size() == 2 && octave[0] == QLatin1Char('0')) return -1;
        for (QChar c : octave)
            if (c < QLatin1Char('0') || c > QLatin1Char('9')) return -1;
        const int note = octave.toInt() * 12 + semitone;
        return note <= 127 ? note : -1;
    }
    return -1;
}

} // namespace

int MidiWriter::ticksOfLength(const QString& code) {
    static const QStringList codes = {QStringLiteral("1"), QStringLiteral("2"),  QStringLiteral("4"),
                                      QStringLiteral("8"), QStringLiteral("16"), QStringLiteral("32")};
    if (!codes.contains(code)) return 0;
    return kTicksPerQuarter * 4 / code.toInt();
}

void MidiWriter::Init() {
    for (auto& channel : notes_)
        channel.clear();
    programs_.fill(0);
}

Status MidiWriter::checkChannel(int channel) const {
    if (channel < 0 || channel > 15)
        return Status::failure(QStringLiteral("MIDI channel %1 is outside 0 to 15").arg(channel));
    return Status::ok();
}

Status MidiWriter::ImportTrackNote(int channel, int reserved, const QString& noteText) {
    if (Status s = checkChannel(channel); !s) return s;
    if (reserved != 0)
        return Status::failure(
            QStringLiteral("the second argument of ImportTrackNote must be 0, not %1").arg(reserved));
    // Delta times are at most four 7-bit groups.
    constexpr qint64 kMaxTicks = 0x0FFFFFFF;
    qint64 total = 0;
    std::vector<Event> events;
    if (noteText != QLatin1String("_")) {
        const QStringList tokens = noteText.split(QLatin1Char(','));
        for (int k = 0; k < tokens.size(); ++k) {
            const QString& token = tokens[k];
            const int codeLength =
                token.startsWith(QLatin1String("16")) || token.startsWith(QLatin1String("32")) ? 2 : 1;
            const int ticks = ticksOfLength(token.left(codeLength));
            const QString what = token.mid(codeLength);
            const int note = what == QLatin1String("P") ? -1 : parsePitch(what);
            if (ticks == 0 || (note < 0 && what != QLatin1String("P")))
                return Status::failure(
                    QStringLiteral("channel %1: token %2 \"%3\" is not a length code (1, 2, 4, "
                                   "8, 16, 32) followed by P or a note such as C#5")
                        .arg(channel)
                        .arg(k + 1)
                        .arg(token));
            events.push_back(Event{note < 0, ticks, note});
            total += ticks;
            if (total > kMaxTicks)
                return Status::failure(
                    QStringLiteral("channel %1: the notes last longer than a MIDI file can say")
                        .arg(channel));
        }
    }
    notes_[channel] = std::move(events);
    return Status::ok();
}

Status MidiWriter::ImportTrackGM(int channel, int program) {
    if (Status s = checkChannel(channel); !s) return s;
    if (program < 0 || program > 127)
        return Status::failure(QStringLiteral("MIDI program %1 is outside 0 to 127").arg(program));
    programs_[channel] = program;
    return Status::ok();
}

Status MidiWriter::ExportMidi(QIODevice& out, int beatsPerMinute, int timeSignatureCode) const {
    static const int kSignatures[5][2] = {{2, 4}, {3, 4}, {4, 4}, {3, 8}, {6, 8}};
    if (timeSignatureCode < 0 || timeSignatureCode > 4)
        return Status::failure(
            QStringLiteral("time-signature code %1 is outside 0 to 4").arg(timeSignatureCode));
    if (beatsPerMinute < 4)
        return Status::failure(
            QStringLiteral("a tempo of %1 beats per minute is too slow to write").arg(beatsPerMinute));
    const quint32 microsPerQuarter = quint32(std::lround(60000000.0 / beatsPerMinute));

    QByteArray tempoTrack;
    const auto [numerator, denominator] = kSignatures[timeSignatureCode];
    tempoTrack.append("\x00\xFF\x58\x04", 4);
    tempoTrack.append(char(numerator));
    tempoTrack.append(char(denominator == 4 ? 2 : 3));
    tempoTrack.append("\x18\x08", 2); // a click per quarter note, 8 thirty-seconds per quarter
    tempoTrack.append("\x00\xFF\x51\x03", 4);
    putBigEndian(tempoTrack, microsPerQuarter, 3);
    tempoTrack.append("\x00\xFF\x2F\x00", 4);

    std::vector<QByteArray> tracks{tempoTrack};
    for (int channel = 0; channel < 16; ++channel) {
        if (notes_[channel].empty()) continue;
        QByteArray track;
        track.append('\0');
        track.append(char(0xC0 | channel));
        track.append(char(programs_[channel]));
        quint32 gap = 0;
        for (const Event& e : notes_[channel]) {
            if (e.rest) {
                gap += quint32(e.ticks);
                continue;
            }
            putVlq(track, gap);
            track.append(char(0x90 | channel));
            track.append(char(e.note));
            track.append(char(kVelocity));
            putVlq(track, quint32(e.ticks));
            track.append(char(0x80 | channel));
            track.append(char(e.note));
            track.append('\0');
            gap = 0;
        }
        putVlq(track, gap); // a trailing rest keeps the tune's length
        track.append("\xFF\x2F\x00", 3);
        tracks.push_back(track);
    }

    QByteArray file;
    QByteArray header;
    putBigEndian(header, 1, 2);
    putBigEndian(header, quint32(tracks.size()), 2);
    putBigEndian(header, kTicksPerQuarter, 2);
    putChunk(file, "MThd", header);
    for (const QByteArray& track : tracks)
        putChunk(file, "MTrk", track);
    if (!fileio::writeWhole(out, file)) return Status::failure(out.errorString());
    return Status::ok();
}

Status MidiWriter::ExportMidi(const QString& outPath, int beatsPerMinute, int timeSignatureCode) const {
    return fileio::writeFileSafely(
        outPath, [&](QIODevice& out) { return ExportMidi(out, beatsPerMinute, timeSignatureCode); });
}

} // namespace mms
