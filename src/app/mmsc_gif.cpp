#include "app/mmsc.h"

#include "app/mmsc_attach.h"
#include "image/gifshrink.h"

#include <QDir>

namespace mms::cli {

namespace {

const char kUsage[] =
    "  gif IN OUT [--max-bytes N]\n"
    "               shrinks the GIF IN to the largest GIF of at most N bytes (default 102399), as\n"
    "               the composer does: smaller, fewer colours and, only where needed, fewer frames\n"
    "               with the same total time and loop count; writes it to OUT, replacing it; prints\n"
    "               OUT, the frame count, WIDTHxHEIGHT and the size in bytes, tab-separated; exit\n"
    "               status 1 when nothing fits";

int runGif(Context& context, const QStringList& args) {
    QStringList files;
    qint64 maxBytes = kFitMaxBytes;
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] != QLatin1String("--max-bytes")) {
            files << args[i];
            continue;
        }
        if (const QString problem = parseMaxBytesOption(args, i, maxBytes); !problem.isEmpty())
            return fail(context, problem);
    }
    if (files.size() != 2) return fail(context, QStringLiteral("gif takes IN OUT [--max-bytes N]"));
    const GifShrink gif = shrinkGifToFile(files[0], files[1], maxBytes);
    switch (gif.outcome) {
    case GifShrink::Outcome::Fitted:
        context.out << QDir::toNativeSeparators(files[1]) << '\t' << gif.frames << '\t' << gif.size.width()
                    << 'x' << gif.size.height() << '\t' << gif.gif.size() << '\n';
        return 0;
    case GifShrink::Outcome::NoFit:
        context.err << "mmsc: gif: " << gif.message << Qt::endl;
        return 1;
    default:
        return fail(context, QStringLiteral("gif: %1").arg(gif.message));
    }
}

const Registrar registrar("gif", kUsage, runGif);

} // namespace

} // namespace mms::cli
