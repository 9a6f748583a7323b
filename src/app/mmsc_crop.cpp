#include "app/mmsc.h"

#include "common/localisation.h"
#include "common/soundtexts.h"
#include "sound/midicrop.h"

#include <QFileInfo>

namespace mms::cli {
namespace {

// "12.5" or "12.5s" -> "12.5s", the form the crop takes; empty when it is not a number of seconds.
QString secondsText(const QString& arg) {
    QString number = arg.endsWith(QLatin1Char('s')) ? arg.chopped(1) : arg;
    bool ok = false;
    number.toDouble(&ok);
    return ok ? number + QLatin1Char('s') : QString();
}

// Errors 18, 20 and 21 of the English language file, else the built-in texts.
CropTexts cropTexts(const QString& languageFolder) {
    Localisation language;
    if (!language.readLangFile(0, languageFolder)) return CropTexts::english();
    return {language.getMCrErrStr(soundtext::kErrCropEndNotAfterStart),
            language.getMCrErrStr(soundtext::kErrCropEndBeyondTune),
            language.getMCrErrStr(soundtext::kErrCropStartBeforeTune)};
}

int crop(Context& context, const QStringList& args) {
    if (args.size() != 4) return fail(context, QStringLiteral("crop needs IN START END OUT"));
    const QString& in = args[0];
    const QString& out = args[3];
    const QString start = secondsText(args[1]);
    const QString end = secondsText(args[2]);
    if (start.isEmpty() || end.isEmpty())
        return fail(context, QStringLiteral("START and END must be numbers of seconds, such as 2.5 or 2.5s"));
    if (!QFileInfo(in).isFile() || !QFileInfo(in).isReadable())
        return fail(context, QStringLiteral("cannot read %1").arg(in));
    if (QFileInfo(out).absoluteFilePath() == QFileInfo(in).absoluteFilePath())
        return fail(context, QStringLiteral("OUT must not be the tune itself"));

    ErrSink sink(context, in + QStringLiteral(": "));
    MidiDecoder decoder(&sink);
    if (!cropMidi(decoder, in, out, start, end, cropTexts(context.languageFolder), sink)) {
        if (sink.shown() == 0) sink.inform(QStringLiteral("not a MIDI file that can be decoded"));
        return 1;
    }
    return 0;
}

const Registrar
    registrar("crop",
              "  crop IN START END OUT\n"
              "               writes the stretch from START to END seconds (\"s\" optional) of the MIDI\n"
              "               file IN as the MIDI file OUT; exit status 1 when the crop is refused",
              crop);

} // namespace
} // namespace mms::cli
