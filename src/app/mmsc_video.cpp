#include "app/mmsc.h"

#include "app/mmsc_attach.h"
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
    StretchArguments a;
    if (const QString problem = parseStretchArguments("video", args, a); !problem.isEmpty())
        return fail(context, problem);
    const ClipConversion clip = convertVideoToClipFile(a.in, a.out, a.start.value_or(0), a.end, a.maxBytes);
    switch (clip.outcome) {
    case ClipConversion::Outcome::Fitted:
        context.out << QDir::toNativeSeparators(a.out) << '\t' << QString::number(clip.seconds, 'f', 3)
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
