#include "app/mmsc.h"

#include "model/cslide.h"
#include "package/packagewriter.h"
#include "store/messagestore.h"
#include "store/privatecopy.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <filesystem>

namespace mms::cli {

namespace {

const char kUsage[] =
    "  export NAME FILE\n"
    "               writes the stored message NAME as a .tpl package archive to FILE, replacing it, as\n"
    "               the composer's export does after opening the message";

QString native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

// A rename replaces the destination in one step; across file systems the archive is copied through
// a save file, so an earlier file at the destination stays whole until the new one is complete.
Status moveArchive(const QString& from, const QString& to) {
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(from).toStdString(), QFile::encodeName(to).toStdString(),
                            error);
    if (!error) return Status::ok();
    QFile in(from);
    if (!in.open(QIODevice::ReadOnly))
        return Status::failure(QStringLiteral("Cannot read \"%1\": %2").arg(native(from), in.errorString()));
    const QByteArray bytes = in.readAll();
    QSaveFile out(to);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit())
        return Status::failure(QStringLiteral("Cannot write \"%1\": %2").arg(native(to), out.errorString()));
    in.close();
    QFile::remove(from);
    return Status::ok();
}

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
    if (!message.missingFiles.isEmpty())
        context.err << "mmsc: warning: missing files left out: "
                    << message.missingFiles.join(QStringLiteral(", ")) << Qt::endl;

    CSlide slides;
    appendLoadedSlides(message, slides);
    const QString base = context.home + QStringLiteral("/upload");
    slides.setfolderpath(QString());
    slides.setfilename(base);
    if (Status s = generateSMIL(slides, context.home, message.subject); !s) return fail(context, s.message());
    const QString archive = base + QStringLiteral(".tpl");
    if (Status s = moveArchive(archive, target.absoluteFilePath()); !s) {
        QFile::remove(archive);
        return fail(context, s.message());
    }
    return 0;
}

const Registrar registrar("export", kUsage, exportStored);

} // namespace

} // namespace mms::cli
