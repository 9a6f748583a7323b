#include "app/mmsc.h"

#include "app/mmsc_attach.h"
#include "common/filesize.h"
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
    QStringList files;
    qint64 maxBytes = kAttachmentLimit - 1;
    std::optional<double> start, end;
    for (qsizetype i = 0; i < args.size(); ++i) {
        QString problem;
        if (args[i] == QLatin1String("--max-bytes"))
            problem = parseMaxBytesOption(args, i, maxBytes);
        else if (args[i] == QLatin1String("--start") || args[i] == QLatin1String("--end"))
            problem = parseSecondsOption(args, i, args[i] == QLatin1String("--start") ? start : end);
        else
            files << args[i];
        if (!problem.isEmpty()) return fail(context, problem);
    }
    if (files.size() != 2)
        return fail(context, QStringLiteral("audio takes IN OUT [--start S] [--end E] [--max-bytes N]"));
    if (start && end && *end <= *start) return fail(context, QStringLiteral("--end must come after --start"));
    const SoundConversion sound = convertSoundToAmrFile(files[0], files[1], start.value_or(0), end, maxBytes);
    switch (sound.outcome) {
    case SoundConversion::Outcome::Fitted:
        context.out << QDir::toNativeSeparators(files[1]) << '\t' << QString::number(sound.seconds, 'f', 3)
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
