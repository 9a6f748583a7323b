#include "app/mmsc.h"

#include "image/jpegwriter.h"

#include <QDir>
#include <QFileInfo>

namespace mms::cli {

namespace {

const char kUsage[] =
    "  jpeg IN OUT\n"
    "               re-encodes the picture IN (GIF, JPEG, BMP or PNG) as a JPEG of the same size\n"
    "               at quality 35, as the composer converts large pictures but without the size\n"
    "               limit, and writes it to OUT, replacing it; prints OUT and its size in bytes";

int runJpeg(Context& context, const QStringList& args) {
    if (args.size() != 2) return fail(context, QStringLiteral("jpeg takes two arguments: IN OUT"));
    const QString& in = args[0];
    const QString& out = args[1];
    if (const Status written = reencodeAsJpeg(in, out, kJpegQuality); !written)
        return fail(context, QStringLiteral("jpeg: %1").arg(written.message()));
    context.out << QDir::toNativeSeparators(out) << '\t' << QFileInfo(out).size() << " bytes\n";
    return 0;
}

const Registrar registrar("jpeg", kUsage, runJpeg);

} // namespace

} // namespace mms::cli
