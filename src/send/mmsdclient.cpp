#include "send/mmsdclient.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

namespace mms {

namespace {

const QString kService = QStringLiteral("org.ofono.mms");
const QString kManagerPath = QStringLiteral("/org/ofono/mms");
const QString kManager = QStringLiteral("org.ofono.mms.Manager");
const QString kServiceInterface = QStringLiteral("org.ofono.mms.Service");
const QString kMessageInterface = QStringLiteral("org.ofono.mms.Message");
const QString kModemService = QStringLiteral("/org/ofono/mms/modemmanager");

struct WireAttachment {
    QString id, type, path;
};

QDBusArgument& operator<<(QDBusArgument& arg, const WireAttachment& a) {
    arg.beginStructure();
    arg << a.id << a.type << a.path;
    arg.endStructure();
    return arg;
}

const QDBusArgument& operator>>(const QDBusArgument& arg, WireAttachment& a) {
    arg.beginStructure();
    arg >> a.id >> a.type >> a.path;
    arg.endStructure();
    return arg;
}

// (o, a{sv}) pairs, the shape of GetServices and GetMessages.
QList<std::pair<QString, QVariantMap>> objectList(const QVariant& reply) {
    QList<std::pair<QString, QVariantMap>> out;
    const QDBusArgument arg = reply.value<QDBusArgument>();
    arg.beginArray();
    while (!arg.atEnd()) {
        QDBusObjectPath path;
        QVariantMap properties;
        arg.beginStructure();
        arg >> path >> properties;
        arg.endStructure();
        out.append({path.path(), properties});
    }
    arg.endArray();
    return out;
}

qint64 number(const QVariant& v) {
    return v.isValid() ? v.toLongLong() : 0;
}

} // namespace

} // namespace mms

Q_DECLARE_METATYPE(mms::WireAttachment)

namespace mms {

MmsdClient::MmsdClient(QDBusConnection bus, QObject* parent) : QObject(parent), bus_(std::move(bus)) {
    qDBusRegisterMetaType<WireAttachment>();
    qDBusRegisterMetaType<QList<WireAttachment>>();
}

QString MmsdClient::noServiceText() {
    return QStringLiteral(
        "No MMS service was found on the session bus: it is provided by the mmsd-tng package "
        "and started with \"systemctl --user start mmsd-tng\"");
}

void MmsdClient::call(const QString& path, const QString& interface, const QString& method,
                      const QVariantList& args, std::function<void(const QDBusMessage&)> onReply) {
    QDBusMessage message = QDBusMessage::createMethodCall(kService, path, interface, method);
    message.setArguments(args);
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, kCallTimeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [watcher, onReply = std::move(onReply)](QDBusPendingCallWatcher*) {
                onReply(watcher->reply());
                watcher->deleteLater();
            });
}

void MmsdClient::subscribe() {
    if (subscribed_) return;
    // Any message object's changes (an empty path matches every path), and the service's send errors.
    subscribed_ = bus_.connect(kService, QString(), kMessageInterface, QStringLiteral("PropertyChanged"),
                               this, SLOT(onPropertyChanged(QDBusMessage)));
    bus_.connect(kService, QString(), kServiceInterface, QStringLiteral("MessageSendError"), this,
                 SLOT(onSendError(QDBusMessage)));
}

void MmsdClient::findService() {
    if (!bus_.isConnected()) {
        emit unavailable(noServiceText(), false);
        return;
    }
    subscribe();
    call(kManagerPath, kManager, QStringLiteral("GetServices"), {}, [this](const QDBusMessage& reply) {
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
            emit unavailable(noServiceText(), false);
            return;
        }
        const auto services = objectList(reply.arguments().constFirst());
        servicePath_.clear();
        for (const auto& [path, properties] : services)
            if (servicePath_.isEmpty() || path == kModemService) servicePath_ = path;
        if (servicePath_.isEmpty()) {
            emit unavailable(QStringLiteral("mmsd-tng is running but has no MMS service: it finds one once "
                                            "ModemManager reports a modem with a SIM"),
                             true);
            return;
        }
        call(servicePath_, kServiceInterface, QStringLiteral("GetProperties"), {},
             [this](const QDBusMessage& properties) {
                 ServiceLimits limits;
                 if (properties.type() == QDBusMessage::ReplyMessage && !properties.arguments().isEmpty()) {
                     const QVariantMap map = qdbus_cast<QVariantMap>(properties.arguments().constFirst());
                     limits.totalMaxAttachmentSize =
                         number(map.value(QStringLiteral("TotalMaxAttachmentSize")));
                     limits.maxAttachments = int(number(map.value(QStringLiteral("MaxAttachments"))));
                 }
                 emit serviceReady(limits);
             });
    });
}

void MmsdClient::send(const SendRequest& request) {
    QList<WireAttachment> attachments;
    for (const Attachment& a : request.attachments)
        attachments.append({a.contentId, a.mimeType, a.path});
    // mmsd-tng 2.1 takes the options as a variant holding a{sv}; the key "smil" is case-sensitive.
    QVariantMap options{{QStringLiteral("smil"), request.smil},
                        {QStringLiteral("Subject"), request.subject},
                        {QStringLiteral("DeliveryReport"), request.deliveryReport}};
    const QVariantList args{request.recipients, QVariant::fromValue(QDBusVariant(options)),
                            QVariant::fromValue(attachments)};
    call(servicePath_, kServiceInterface, QStringLiteral("SendMessage"), args,
         [this](const QDBusMessage& reply) {
             if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()) {
                 emit handedOver(reply.arguments().constFirst().value<QDBusObjectPath>().path());
                 return;
             }
             const QString why = reply.errorMessage().isEmpty() ? reply.errorName() : reply.errorMessage();
             emit refused(QStringLiteral("mmsd-tng did not take the message: %1").arg(why));
         });
}

void MmsdClient::refreshStatuses() {
    call(servicePath_, kServiceInterface, QStringLiteral("GetMessages"), {},
         [this](const QDBusMessage& reply) {
             if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) return;
             for (const auto& [path, properties] : objectList(reply.arguments().constFirst()))
                 emit statusChanged(path, properties.value(QStringLiteral("Status")).toString());
         });
}

void MmsdClient::onPropertyChanged(const QDBusMessage& message) {
    const QVariantList args = message.arguments();
    // mmsd-tng 2.1 names the property "status" here, though GetMessages calls it "Status".
    if (args.size() < 2 || args.at(0).toString().compare(QLatin1String("status"), Qt::CaseInsensitive) != 0)
        return;
    emit statusChanged(message.path(), args.at(1).value<QDBusVariant>().variant().toString());
}

void MmsdClient::onSendError(const QDBusMessage& message) {
    if (message.arguments().isEmpty()) return;
    const QVariantMap error = qdbus_cast<QVariantMap>(message.arguments().constFirst());
    const QString host = error.value(QStringLiteral("Host")).toString();
    QString reason = host.isEmpty()
                         ? QStringLiteral("mmsd-tng could not deliver it to the MMS centre")
                         : QStringLiteral("mmsd-tng could not deliver it to the MMS centre at %1").arg(host);
    reason += QStringLiteral(" (error type %1)").arg(error.value(QStringLiteral("ErrorType")).toString());
    emit sendFailed(error.value(QStringLiteral("MessagePath")).toString(), reason);
}

} // namespace mms
