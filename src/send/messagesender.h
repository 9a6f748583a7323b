#pragma once

#include "send/mmsdclient.h"
#include "send/sentlog.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>
#include <utility>

namespace mms {

// Sends stored messages through mmsd-tng and keeps the workspace's sent log in step with what the
// daemon reports. What a Send window or `mmsc send` calls; it never blocks on the daemon.
class MessageSender final : public QObject {
    Q_OBJECT
public:
    explicit MessageSender(QString appFolder, QDBusConnection bus = QDBusConnection::sessionBus(),
                           QObject* parent = nullptr);
    Q_DISABLE_COPY_MOVE(MessageSender)

    // Checks the stored message `name` and the typed recipients, snapshots the message and hands it
    // over. Exactly one of refused, unavailable or handedOver follows; after handedOver the message's
    // statusChanged and failed. Nothing reaches the daemon when any check fails. `subject` replaces
    // the stored one for this hand-off.
    void send(const QString& name, const QStringList& typedRecipients, bool deliveryReport,
              const std::optional<QString>& subject = std::nullopt);
    // The logged hand-off `index` once more, to the same recipients.
    void sendAgain(std::size_t index);
    // Reloads the log and asks the daemon for the status of every logged hand-off (at start-up).
    void refresh();
    // Asks for the service's limits: serviceFound or unavailable.
    void findService();
    // Takes entry `index` off the log; logChanged follows.
    void remove(std::size_t index);

    SentLog& log() { return log_; }

signals:
    // Nothing was handed over: the message, a recipient or the daemon refused; the reason says which.
    void refused(const QString& reason);
    // No MMS service on the bus; the reason says how to get one. `running`: the daemon answered but
    // has found no modem yet.
    void unavailable(const QString& reason, bool running);
    void serviceFound(const mms::ServiceLimits& limits);
    void handedOver(const QString& messagePath);
    void statusChanged(const QString& messagePath, const QString& status);
    void failed(const QString& messagePath, const QString& reason);
    // The log changed (an entry added or updated) or could not be written (`problem` says why).
    void logChanged(const QString& problem);

private:
    void dropPending();
    void record(const QString& path, const QString& status, const QString& reason);

    QString appFolder_;
    MmsdClient client_;
    SentLog log_;
    // The hand-off under way, between the checks and the daemon's answer.
    QString pendingName_;
    QString pendingSnapshot_;
    SendRequest pending_;
    bool refreshing_ = false;
    bool probing_ = false;
    // SendMessage is on its way: another service answer (a refresh's, a probe's) must not repeat it.
    bool handingOver_ = false;
    // What the daemon reported while a hand-over's reply was still on its way: a fast daemon can
    // report a message sent before the reply that names it is taken in.
    QHash<QString, std::pair<QString, QString>> earlyStatuses_;
};

} // namespace mms
