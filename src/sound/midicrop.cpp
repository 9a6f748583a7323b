#include "sound/midicrop.h"

#include "sound/midiwriter.h"

#include <QStringList>

namespace mms {

namespace {

// "12.5s" -> 12.5. A text that is not a number reads as 0, as an empty one does.
double secondsOf(const QString& text) {
    QString s = text;
    s.chop(1);
    s = s.trimmed();
    if (s.isEmpty()) return 0;
    bool ok = false;
    const double v = s.toDouble(&ok);
    return ok ? v : 0;
}

} // namespace

CropTexts CropTexts::english() {
    return {QStringLiteral("The end must be later than the start."),
            QStringLiteral("The end lies beyond the end of the tune."),
            QStringLiteral("The start cannot lie before the beginning of the tune.")};
}

bool cropMidi(MidiDecoder& decoder, const QString& inPath, const QString& outPath, const QString& startText,
              const QString& endText, const CropTexts& texts, MessageSink& sink) {
    decoder.resetMidiTables();
    decoder.decodeMidiFile(inPath);
    const double start = secondsOf(startText);
    const double end = secondsOf(endText);
    if (!decoder.midiDecoded()) return false;
    decoder.assumeDefaultTempo();
    if (end <= start) {
        sink.inform(texts.endNotAfterStart);
        return false;
    }
    if (start < 0) {
        sink.inform(texts.startBelowZero);
        return false;
    }
    if (end > decoder.tuneLength()) {
        sink.inform(texts.endBeyondTune);
        return false;
    }

    MidiWriter writer;
    writer.Init();
    const auto spans = decoder.selectTimeSpan(start, end);
    for (int channel = 0; channel < MidiDecoder::kChannels; ++channel) {
        const QStringList tokens = spans[channel].trimmed().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        const QString noteText = tokens.isEmpty() ? QStringLiteral("_") : tokens.join(QLatin1Char(','));
        Status s = writer.ImportTrackNote(channel, 0, noteText);
        if (s) s = writer.ImportTrackGM(channel, decoder.channelProgram(channel));
        if (!s) {
            sink.inform(s.message());
            return false;
        }
    }
    const Status written = writer.ExportMidi(outPath, decoder.tempoBpm(), decoder.timeSignatureCode());
    if (!written) {
        sink.inform(written.message());
        return false;
    }
    return true;
}

} // namespace mms
