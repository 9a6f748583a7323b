#include "app/mmsc.h"

#include "package/mmsaddress.h"
#include "send/messagesender.h"

#include <QEventLoop>
#include <QTimer>

namespace mms::cli {
namespace {

constexpr int kDaemonFailed = 1;
constexpr int kNoService = 3;
constexpr int kDefaultTimeoutSeconds = 60;

struct SendArgs {
    QString name;
    QStringList recipients;
    bool deliveryReport = false;
    int timeoutSeconds = kDefaultTimeoutSeconds;
};

QString parseSend(const QStringList& args, SendArgs& out) {
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& arg = args.at(i);
        if (arg == QLatin1String("--delivery-report")) {
            out.deliveryReport = true;
        } else if (arg == QLatin1String("--to") || arg == QLatin1String("--cc")) {
            if (i + 1 >= args.size()) return QStringLiteral("%1 needs a phone number").arg(arg);
            // The daemon has one list of recipients: copies go to it as well.
            out.recipients << splitAddressList(args.at(++i));
        } else if (arg == QLatin1String("--timeout")) {
            bool ok = false;
            out.timeoutSeconds = i + 1 < args.size() ? args.at(++i).toInt(&ok) : 0;
            if (!ok || out.timeoutSeconds < 1 || out.timeoutSeconds > 3600)
                return QStringLiteral("--timeout needs a number of seconds from 1 to 3600");
        } else if (arg.startsWith(QLatin1String("--"))) {
            return QStringLiteral("unknown option '%1' (see mmsc --help)").arg(arg);
        } else if (out.name.isEmpty()) {
            out.name = arg;
        } else {
            return QStringLiteral("send takes one message NAME (see mmsc --help)");
        }
    }
    if (out.name.isEmpty()) return QStringLiteral("send needs NAME (see mmsc --help)");
    if (out.recipients.isEmpty()) return QStringLiteral("send needs --to NUMBER");
    return {};
}

int send(Context& context, const QStringList& args) {
    SendArgs parsed;
    if (const QString problem = parseSend(args, parsed); !problem.isEmpty()) return fail(context, problem);

    MessageSender sender(context.home);
    QEventLoop loop;
    int status = kDaemonFailed;
    QString path;
    auto finish = [&](int code, const QString& line) {
        if (code == 0)
            context.out << line << Qt::endl;
        else
            context.err << "mmsc: " << line << Qt::endl;
        status = code;
        loop.quit();
    };
    QObject::connect(&sender, &MessageSender::refused, &loop,
                     [&](const QString& reason) { finish(kUsageError, reason); });
    QObject::connect(&sender, &MessageSender::unavailable, &loop,
                     [&](const QString& reason) { finish(kNoService, reason); });
    QObject::connect(&sender, &MessageSender::handedOver, &loop, [&](const QString& p) { path = p; });
    QObject::connect(&sender, &MessageSender::statusChanged, &loop, [&](const QString& p, const QString& s) {
        if (p == path && (s == QLatin1String("sent") || s == QLatin1String("delivered")))
            finish(0, QStringLiteral("sent\t") + p);
    });
    QObject::connect(&sender, &MessageSender::failed, &loop, [&](const QString& p, const QString& reason) {
        if (p == path) finish(kDaemonFailed, QStringLiteral("%1 was not sent: %2").arg(parsed.name, reason));
    });
    QObject::connect(&sender, &MessageSender::logChanged, &loop, [&](const QString& problem) {
        if (!problem.isEmpty()) context.err << "mmsc: " << problem << Qt::endl;
    });
    QTimer::singleShot(parsed.timeoutSeconds * 1000, &loop, [&] {
        finish(kDaemonFailed,
               path.isEmpty()
                   ? QStringLiteral("mmsd-tng did not answer within %1 s").arg(parsed.timeoutSeconds)
                   : QStringLiteral("%1 was handed to mmsd-tng as %2 but not reported sent within %3 s")
                         .arg(parsed.name, path)
                         .arg(parsed.timeoutSeconds));
    });
    QTimer::singleShot(0, &loop, [&] { sender.send(parsed.name, parsed.recipients, parsed.deliveryReport); });
    loop.exec();
    return status;
}

int sent(Context& context, const QStringList& args) {
    if (!args.isEmpty()) return fail(context, QStringLiteral("sent takes no arguments"));
    SentLog log(context.home);
    if (Status s = log.load(); !s) return fail(context, s.message());
    for (const SentEntry& entry : log.entries())
        context.out << SentLog::line(entry) << "\n";
    return 0;
}

const Registrar sendRegistrar(
    "send",
    "  send NAME --to NUMBER... [--cc NUMBER]... [--delivery-report] [--timeout SECONDS]\n"
    "               hands the stored message NAME to mmsd-tng on the session bus and waits (60 s unless\n"
    "               --timeout says otherwise) until it reports the message sent: prints \"sent<TAB>PATH\".\n"
    "               Exit 1 when the daemon reports a failure or nothing final came in time, 2 for bad\n"
    "               arguments, an unknown message or a refused recipient (nothing handed over), 3 when\n"
    "               there is no MMS service on the session bus. Phone numbers only; --cc recipients are\n"
    "               sent as the others (mmsd-tng has one list).",
    send);

const Registrar
    sentRegistrar("sent",
                  "  sent         prints the log of hand-offs to mmsd-tng, one line each: time, message,\n"
                  "               recipients, last status (and why it failed), the daemon's message path.",
                  sent);

} // namespace
} // namespace mms::cli
