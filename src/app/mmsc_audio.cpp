#include "app/mmsc.h"

#include "app/mmsc_attach.h"
#include "sound/soundconversion.h"

#include <QDir>

namespace mms::cli {

namespace {

const char kUsage[] =
    "  audio IN OUT [--start S] [--end E] [--max-bytes N]\n"
    "               converts the sound of IN (any sound or video file) from S to E seconds (default\n"
    "               the whole sound) to AMR of at most N bytes (default 102399) at the best mode that\n"
    "               fits, or the longest stretch from S that fits at the smallest; writes OUT whole or\n"
    "               not at all; prints OUT, the seconds kept and the size in bytes, tab-separated;\n"
    "               exit status 1 when nothing fits";

int runAudio(Context& context, const QStringList& args) {
    StretchArguments a;
    if (const QString problem = parseStretchArguments("audio", args, a); !problem.isEmpty())
        return fail(context, problem);
    const SoundConversion sound = convertSoundToAmrFile(a.in, a.out, a.start.value_or(0), a.end, a.maxBytes);
    switch (sound.outcome) {
    case SoundConversion::Outcome::Fitted:
        context.out << QDir::toNativeSeparators(a.out) << '\t' << QString::number(sound.seconds, 'f', 3)
                    << '\t' << sound.amr.size() << '\n';
        return 0;
    case SoundConversion::Outcome::NoFit:
        context.err << "mmsc: audio: " << sound.message << Qt::endl;
        return 1;
    default:
        return fail(context, QStringLiteral("audio: %1").arg(sound.message));
    }
}

const Registrar registrar("audio", kUsage, runAudio);

} // namespace

} // namespace mms::cli
