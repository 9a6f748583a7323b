#include "app/mmsc.h"
#include "app/mmsc_stored.h"

#include "model/cslide.h"
#include "package/messageexport.h"
#include "store/messagestore.h"
#include "store/privatecopy.h"

#include <QDir>
#include <QFileInfo>

namespace mms::cli {

namespace {

const char kUsage[] =
    "  export NAME FILE\n"
    "               writes the stored message NAME as a .tpl package archive to FILE, replacing it, as\n"
    "               the composer's export does after opening the message";

int exportStored(Context& context, const QStringList& args) {
    if (args.size() != 2)
        return fail(context, QStringLiteral("export needs a message name and a file (see mmsc --help)"));
    const QString& name = args.at(0);
    if (!isValidMessageName(name))
        return fail(context, QStringLiteral("'%1' is not a valid message name").arg(name));
    const MessageStore store(context.home);
    if (!store.hasIndex(name))
        return fail(context, QStringLiteral("there is no stored message '%1'").arg(name));
    const QFileInfo target(args.at(1));
    if (args.at(1).isEmpty() || target.isDir())
        return fail(context, QStringLiteral("'%1' is not a file name to export to").arg(args.at(1)));
    if (!target.absoluteDir().exists())
        return fail(context, QStringLiteral("the folder of '%1' does not exist").arg(args.at(1)));

    PrivateCopy copy;
    LoadedMessage message;
    if (Status s = copy.open(store, name, message); !s) return fail(context, s.message());
    warnAboutMissingFiles(context, message, "left out");

    CSlide slides;
    appendLoadedSlides(message, slides);
    if (Status s = exportArchive(slides, context.home, message.subject, target.absoluteFilePath()); !s)
        return fail(context, s.message());
    return 0;
}

const Registrar registrar("export", kUsage, exportStored);

} // namespace

} // namespace mms::cli
