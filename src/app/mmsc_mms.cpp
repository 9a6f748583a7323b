#include "app/mmsc.h"

#include "package/mmsencoder.h"
#include "store/messagestore.h"
#include "common/workspace.h"

#include <QDir>
#include <QFileInfo>

namespace mms::cli {
namespace {

bool isInside(const QString& path, const QString& folder) {
    const QString f = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    const QString p = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    return p == f || p.startsWith(f + QLatin1Char('/'));
}

int mms(Context& context, const QStringList& args) {
    if (args.size() != 2) return fail(context, QStringLiteral("mms needs NAME OUT"));
    const QString& name = args[0];
    const QString& out = args[1];
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
    for (const QString& missing : message.missingFiles)
        context.err << "mmsc: missing from the stored message, left out: " << missing << Qt::endl;

    CSlide slides;
    for (const LoadedSlide& slide : message.slides)
        slides.InsertAtBack(slide.duration, slide.picturePath, slide.text, slide.soundPath);
    StderrSink sink;
    if (Status s = writeSendRequest(slides, folder, message.subject, out, &sink); !s) {
        context.err << "mmsc: " << out << " was not written: " << s.message() << Qt::endl;
        return 1;
    }
    return 0;
}

const Registrar
    registrar("mms",
              "  mms NAME OUT\n"
              "               writes the stored message NAME as one binary MMS send request (m-send-req)\n"
              "               to the file OUT",
              mms);

} // namespace
} // namespace mms::cli
