// Any bytes as a MIDI file. Whatever decodes must give a span whose tokens the writer accepts, and
// the written file must decode again.
#include "sound/mididecoder.h"
#include "sound/midiwriter.h"

#include <QBuffer>
#include <QStringList>
#include <cstdint>
#include <cstdlib>

namespace {
class CountingSink : public mms::MessageSink {
public:
    mms::Answer show(const mms::Message& m) override {
        if (m.text.isEmpty()) std::abort();
        ++shown;
        return m.defaultAnswer;
    }
    int shown = 0;
};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CountingSink sink;
    mms::MidiDecoder decoder(&sink);
    decoder.resetMidiTables();
    decoder.decodeMidiData(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    if (sink.shown > 1) std::abort(); // the first reported error ends the decode
    if (!decoder.midiDecoded()) return 0;

    const double length = decoder.tuneLength();
    // The last two bytes choose the stretch, as fractions of the tune.
    const double a = size >= 2 ? data[size - 2] / 255.0 * length : 0;
    const double b = size >= 1 ? data[size - 1] / 255.0 * length : length;
    const auto spans = decoder.selectTimeSpan(std::min(a, b), std::max(a, b));

    mms::MidiWriter writer;
    writer.Init();
    for (int channel = 0; channel < 16; ++channel) {
        const QStringList tokens = spans[channel].trimmed().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        const QString text = tokens.isEmpty() ? QStringLiteral("_") : tokens.join(QLatin1Char(','));
        if (!writer.ImportTrackNote(channel, 0, text)) std::abort();
        if (!writer.ImportTrackGM(channel, decoder.channelProgram(channel))) std::abort();
    }
    if (decoder.tempoBpm() < 4) return 0; // no tempo read: nothing a crop would write
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    if (!writer.ExportMidi(out, decoder.tempoBpm(), decoder.timeSignatureCode())) std::abort();
    mms::MidiDecoder again;
    again.resetMidiTables();
    again.decodeMidiData(out.data());
    if (!again.midiDecoded() || again.tempoBpm() != decoder.tempoBpm()) std::abort();
    return 0;
}
