// The store's writing operations that mmsc has no command for, as the composer runs them, for the
// crash and full-disk matrix: store_ops HOME start | open NAME | delete NAME | new | saveas NAME | draft
// TEXT | sent NAME. Exit status 0 when the operation succeeded, 1 with the reason on stderr.

#include "composer/draftstore.h"
#include "composer/workspacefolders.h"
#include "send/sentlog.h"
#include "store/messagestore.h"
#include "store/privatecopy.h"

#include <QCoreApplication>
#include <QTextStream>
#include <QTimeZone>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

// The composer's Save as of the message it has open (greeting): its slides point into the working
// copy.
Status saveOpenedAs(const MessageStore& store, const QString& name) {
    LoadedMessage message;
    const QString workingCopy = store.appFolder() + QStringLiteral("/UserData/MMS/temp");
    if (Status s = store.load(QStringLiteral("greeting"), workingCopy, message); !s) return s;
    CSlide slides;
    appendLoadedSlides(message, slides);
    return store.save(slides, name, message.subject);
}

Status run(const QStringList& args) {
    if (args.size() < 2) return Status::failure(QStringLiteral("usage: store_ops HOME OPERATION [ARG]"));
    const QString& home = args[0];
    const QString& op = args[1];
    const QString arg = args.value(2);
    const MessageStore store(home);
    if (op == QLatin1String("start")) return createWorkspaceFolders(home);
    if (op == QLatin1String("open")) return store.copyToWorkingCopy(arg);
    if (op == QLatin1String("delete")) return store.remove(arg);
    if (op == QLatin1String("new")) return store.removeWorkingCopy();
    if (op == QLatin1String("saveas")) return saveOpenedAs(store, arg);
    if (op == QLatin1String("draft")) {
        const SlideContent slide{SlideDur::fromNumber(4), home + u"/UserData/MMS/temp/pic1.png"_s, arg,
                                 QString()};
        return DraftStore(home).write(encodeDraft(Draft{u"greeting"_s, arg, 1, {slide}}));
    }
    if (op != QLatin1String("sent")) return Status::failure(u"unknown operation "_s + op);
    SentLog log(home);
    if (Status s = log.load(); !s) return s;
    const QDateTime when = QDateTime::fromSecsSinceEpoch(1700000000, QTimeZone::utc());
    return log.add(SentEntry{arg, when, {u"+4412345678"_s}, u"/org/ofono/mms/1"_s, u"draft"_s, {}, {}});
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const Status s = run(QCoreApplication::arguments().mid(1));
    if (s) return 0;
    QTextStream(stderr) << s.message() << Qt::endl;
    return 1;
}
