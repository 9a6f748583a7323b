#include "app/mmsc.h"

#include "app/mmsc_attach.h"
#include "common/filesize.h"
#include "video/clipconversion.h"

#include <QDir>

namespace mms::cli {

namespace {

const char kUsage[] =
    "  video IN OUT [--start S] [--end E] [--max-bytes N]\n"
    "               converts the video IN from S to E seconds (default the whole video) to a 3GP clip\n"
    "               of at most N bytes (default 102399): H.263 at 176x144 or 128x96, letterboxed, its\n"
    "               sound as AMR, frame rate and quality searched until it fits, or the longest\n"
    "               stretch from S that fits; a 3GP that fits and holds H.263 or MPEG-4 is taken as it\n"
    "               is; writes OUT whole or not at all; prints OUT, the seconds kept, WIDTHxHEIGHT and\n"
    "               the size in bytes, tab-separated; exit status 1 when nothing fits";

int runVideo(Context& context, const QStringList& args) {
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
        return fail(context, QStringLiteral("video takes IN OUT [--start S] [--end E] [--max-bytes N]"));
    if (start && end && *end <= *start) return fail(context, QStringLiteral("--end must come after --start"));
    const ClipConversion clip = convertVideoToClipFile(files[0], files[1], start.value_or(0), end, maxBytes);
    switch (clip.outcome) {
    case ClipConversion::Outcome::Fitted:
        context.out << QDir::toNativeSeparators(files[1]) << '\t' << QString::number(clip.seconds, 'f', 3)
                    << '\t' << clip.size.width() << 'x' << clip.size.height() << '\t' << clip.clip.size()
                    << '\n';
        return 0;
    case ClipConversion::Outcome::NoFit:
        context.err << "mmsc: video: " << clip.message << Qt::endl;
        return 1;
    default:
        return fail(context, QStringLiteral("video: %1").arg(clip.message));
    }
}

const Registrar registrar("video", kUsage, runVideo);

} // namespace

} // namespace mms::cli
