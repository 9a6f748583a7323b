#include "app/mmsc.h"

#include "image/imageprobe.h"

namespace mms::cli {
namespace {

int probe(Context& context, const QStringList& args) {
    if (args.isEmpty()) return fail(context, QStringLiteral("probe needs at least one file"));
    int status = 0;
    for (const QString& path : args) {
        ImageProbe r;
        if (Status s = checkValidImg(path, r); !s) {
            context.err << "mmsc: " << s.message() << Qt::endl;
            status = 1;
        }
        context.out << (r.answer ? 1 : 0) << '\t' << r.imgType << '\t' << r.imgWidth << '\t' << r.imgHeight
                    << '\t' << int(r.imgDepth) << '\t' << path << '\n';
    }
    return status;
}

const Registrar registrar(
    "probe",
    "  probe FILE...\n"
    "               one line per file: answer (1/0), type (0 unknown, 1 GIF, 2 JPEG, 3 PNG, 4 BMP),\n"
    "               width, height, depth and file, tab-separated; exit status 1 when a file\n"
    "               could not be read",
    probe);

} // namespace
} // namespace mms::cli
