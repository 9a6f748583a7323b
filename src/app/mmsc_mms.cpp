#include "app/mmsc.h"

#include "common/workspace.h"
#include "package/messageexport.h"
#include "package/mmsaddress.h"
#include "store/messagestore.h"
#include "store/privatecopy.h"

#include <QDir>
#include <QFileInfo>

namespace mms::cli {
namespace {

bool isInside(const QString& path, const QString& folder) {
    const QString f = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    const QString p = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    return p == f || p.startsWith(f + QLatin1Char('/'));
}

// NAME and OUT in order, the address options anywhere; the first problem is returned.
QString parseMms(const QStringList& args, QStringList& positional, MmsRecipients& recipients) {
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& arg = args.at(i);
        const bool to = arg == QLatin1String("--to"), cc = arg == QLatin1String("--cc");
        if (!to && !cc && arg != QLatin1String("--from")) {
            if (arg.startsWith(QLatin1String("--")))
                return QStringLiteral("unknown option '%1' (see mmsc --help)").arg(arg);
            positional << arg;
            continue;
        }
        if (i + 1 >= args.size()) return QStringLiteral("%1 needs an address").arg(arg);
        const std::optional<QString> address = mmsAddress(args.at(++i));
        if (!address)
            return QStringLiteral("'%1' is not a phone number or an e-mail address").arg(args.at(i));
        if (to || cc) {
            (to ? recipients.to : recipients.cc) << *address;
        } else {
            if (!recipients.from.isEmpty()) return QStringLiteral("give --from only once");
            recipients.from = *address;
        }
    }
    if (positional.size() != 2) return QStringLiteral("mms needs NAME OUT (see mmsc --help)");
    return {};
}

int mms(Context& context, const QStringList& args) {
    QStringList positional;
    MmsRecipients recipients;
    if (const QString problem = parseMms(args, positional, recipients); !problem.isEmpty())
        return fail(context, problem);
    const QString& name = positional[0];
    const QString& out = positional[1];
    if (!isValidMessageName(name))
        return fail(context, QStringLiteral("'%1' is not a message name").arg(name));
    const MessageStore store(context.home);
    const QString folder = workspace::messageFolder(context.home, name);
    if (!store.exists(name) || !QFileInfo(folder).isDir())
        return fail(context, QStringLiteral("there is no stored message '%1' in %2")
                                 .arg(name, workspace::messages(context.home)));
    if (isInside(out, folder) || isInside(out, workspace::messageIndex(context.home, name)))
        return fail(context, QStringLiteral("OUT must lie outside the stored message"));

    LoadedMessage message;
    if (Status s = store.load(name, folder, message); !s) return fail(context, s.message());
    // A request without a part its slide has would show the phone a broken slide.
    Status written = Status::failure(
        QStringLiteral("the stored message lacks %1").arg(message.missingFiles.join(QStringLiteral(", "))));
    if (message.missingFiles.isEmpty()) {
        // The package is written afresh from the index, so its presentation names exactly the parts sent.
        CSlide slides;
        appendLoadedSlides(message, slides);
        written = writeMmsFile(slides, context.home, message.subject, out, recipients);
    }
    if (!written) {
        context.err << "mmsc: " << out << " was not written: " << written.message() << Qt::endl;
        return 1;
    }
    return 0;
}

const Registrar
    registrar("mms",
              "  mms NAME OUT [--to ADDR]... [--cc ADDR]... [--from ADDR]\n"
              "               writes the stored message NAME as one binary MMS send request (m-send-req)\n"
              "               to the file OUT, addressed to the given recipients (phone numbers such as\n"
              "               +4412345678, or e-mail addresses); without --from the MMS centre fills in\n"
              "               the sender. A part missing from the stored message fails it (exit 1).",
              mms);

} // namespace
} // namespace mms::cli
