#include "app/mmsc.h"

#include "app/mmsc_attach.h"
#include "image/jpegwriter.h"
#include "image/picturequality.h"

#include <QDir>
#include <QFileInfo>

namespace mms::cli {

namespace {

const char kUsage[] =
    "  jpeg IN OUT [--quality N]\n"
    "               re-encodes the picture IN (GIF, JPEG, BMP or PNG) as a JPEG of the same size\n"
    "               at quality N (1 to 100; default the PictureQuality setting, else 35), as the\n"
    "               composer converts large pictures but without the size limit, and writes it to\n"
    "               OUT, replacing it; prints OUT and its size in bytes";

int runJpeg(Context& context, const QStringList& args) {
    QStringList files;
    int quality = readPictureQualitySetting();
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] != QLatin1String("--quality")) {
            files << args[i];
            continue;
        }
        const QString problem = parseQualityOption(i + 1 < args.size() ? args[++i] : QString(), quality);
        if (!problem.isEmpty()) return fail(context, problem);
    }
    if (files.size() != 2) return fail(context, QStringLiteral("jpeg takes two arguments: IN OUT"));
    const QString& in = files[0];
    const QString& out = files[1];
    if (const Status written = reencodeAsJpeg(in, out, quality); !written)
        return fail(context, QStringLiteral("jpeg: %1").arg(written.message()));
    context.out << QDir::toNativeSeparators(out) << '\t' << QFileInfo(out).size() << " bytes\n";
    return 0;
}

const Registrar registrar("jpeg", kUsage, runJpeg);

} // namespace

} // namespace mms::cli
