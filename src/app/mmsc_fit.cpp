#include "app/mmsc.h"

#include "app/mmsc_attach.h"
#include "image/picturefit.h"
#include "image/picturequality.h"

#include <QDir>

namespace mms::cli {

namespace {

const char kUsage[] =
    "  fit IN OUT [--max-bytes N] [--quality Q]\n"
    "               converts the picture IN (GIF, JPEG, BMP or PNG) to the largest upright JPEG of\n"
    "               at most N bytes (default 102399, the attachment limit) at quality Q (1 to 100;\n"
    "               default the PictureQuality setting, else 35), as the composer shrinks a picture\n"
    "               to fit, and writes it to OUT, replacing it; prints OUT, WIDTHxHEIGHT and the\n"
    "               size in bytes, tab-separated; exit status 1 when no size fits";

int runFit(Context& context, const QStringList& args) {
    QStringList files;
    qint64 maxBytes = kFitMaxBytes;
    int quality = readPictureQualitySetting();
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] == QLatin1String("--quality")) {
            const QString problem = parseQualityOption(i + 1 < args.size() ? args[++i] : QString(), quality);
            if (!problem.isEmpty()) return fail(context, problem);
            continue;
        }
        if (args[i] != QLatin1String("--max-bytes")) {
            files << args[i];
            continue;
        }
        if (const QString problem = parseMaxBytesOption(args, i, maxBytes); !problem.isEmpty())
            return fail(context, problem);
    }
    if (files.size() != 2)
        return fail(context, QStringLiteral("fit takes IN OUT [--max-bytes N] [--quality Q]"));
    const FitResult fit = fitPictureToFile(files[0], files[1], maxBytes, nullptr, quality);
    switch (fit.outcome) {
    case FitResult::Outcome::Fitted:
        context.out << QDir::toNativeSeparators(files[1]) << '\t' << fit.size.width() << 'x'
                    << fit.size.height() << '\t' << fit.jpeg.size() << '\n';
        return 0;
    case FitResult::Outcome::NoFit:
        context.err << "mmsc: fit: " << fit.message << Qt::endl;
        return 1;
    default:
        return fail(context, QStringLiteral("fit: %1").arg(fit.message));
    }
}

const Registrar registrar("fit", kUsage, runFit);

} // namespace

} // namespace mms::cli
