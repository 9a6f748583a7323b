#include "app/mmsc.h"

#include "sound/mididecoder.h"

#include <QFileInfo>

namespace mms::cli {
namespace {

QString fixed6(double v) {
    return QString::number(v, 'f', 6);
}

int midi(Context& context, const QStringList& args) {
    if (args.size() != 1) return fail(context, QStringLiteral("midi needs exactly one file"));
    const QString& path = args.first();
    if (!QFileInfo(path).isFile() || !QFileInfo(path).isReadable())
        return fail(context, QStringLiteral("cannot read %1").arg(path));

    ErrSink sink(context, path + QStringLiteral(": "));
    MidiDecoder decoder(&sink);
    decoder.resetMidiTables();
    decoder.decodeMidiFile(path);
    if (!decoder.midiDecoded()) {
        context.out << "decoded: 0\n";
        if (sink.shown() == 0) sink.inform(QStringLiteral("not a MIDI file that can be decoded"));
        return 1;
    }
    context.out << "decoded: 1\n"
                << "ticks_per_quarter: " << decoder.ticksPerQuarter() << '\n'
                << "tempo_bpm: " << decoder.tempoBpm() << '\n'
                << "sec_per_quarter: " << fixed6(decoder.secPerQuarter()) << '\n'
                << "time_signature: " << decoder.timeSig()[0] << '/' << decoder.timeSig()[1] << '\n'
                << "bar_whole_notes: " << fixed6(decoder.barWholeNotes()) << '\n'
                << "tune_length: " << fixed6(decoder.tuneLength()) << '\n';
    for (int channel = 0; channel < MidiDecoder::kChannels; ++channel) {
        QStringList bars;
        for (int bar = 0; bar < MidiDecoder::kBars; ++bar) {
            const QString cell = decoder.noteTable(channel, bar).trimmed();
            if (cell.isEmpty()) break;
            bars << cell;
        }
        if (bars.isEmpty()) continue;
        context.out << "channel " << channel << " program " << decoder.channelProgram(channel) << " bars "
                    << bars.size() << ": " << bars.join(QStringLiteral(" | ")) << '\n';
    }
    return 0;
}

const Registrar
    registrar("midi",
              "  midi FILE\n"
              "               decodes a MIDI file: tempo, time signature, tune length and the note text\n"
              "               of every channel by bars; exit status 1 when it could not be decoded",
              midi);

} // namespace
} // namespace mms::cli
