#include "app/mmsc.h"
#include "app/mmsc_stored.h"

#include "model/cslide.h"
#include "store/messagestore.h"
#include "store/privatecopy.h"

namespace mms::cli {

namespace {

const char kUsage[] =
    "  show NAME    rebuilds the stored message NAME as Open does (from a copy of its own) and prints\n"
    "               \"subject: TEXT\", then one line per slide: position, duration (in double quotes when\n"
    "               held as text), picture file, text and sound file, separated by tabs; an absent part\n"
    "               is empty; in the text \\, tab, CR and LF are written as \\\\, \\t, \\r and \\n";

QString escaped(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (QChar c : text) {
        switch (c.unicode()) {
        case '\\':
            out += QLatin1String("\\\\");
            break;
        case '\t':
            out += QLatin1String("\\t");
            break;
        case '\r':
            out += QLatin1String("\\r");
            break;
        case '\n':
            out += QLatin1String("\\n");
            break;
        default:
            out += c;
        }
    }
    return out;
}

int show(Context& context, const QStringList& args) {
    if (args.size() != 1)
        return fail(context, QStringLiteral("show needs one message name (see mmsc --help)"));
    const QString& name = args.first();
    if (!isValidMessageName(name))
        return fail(context, QStringLiteral("'%1' is not a valid message name").arg(name));
    PrivateCopy copy;
    LoadedMessage message;
    if (Status s = openStoredCopy(MessageStore(context.home), name, copy, message); !s)
        return fail(context, s.message());
    warnAboutMissingFiles(context, message, "left empty");

    context.out << "subject: " << message.subject << '\n';
    int position = 0;
    for (const LoadedSlide& slide : message.slides)
        context.out << ++position << '\t' << slide.duration.indexField() << '\t'
                    << CSlide::extractFileName(slide.picturePath) << '\t' << escaped(slide.text) << '\t'
                    << CSlide::extractFileName(slide.soundPath) << '\n';
    return 0;
}

const Registrar registrar("show", kUsage, show);

} // namespace

} // namespace mms::cli
