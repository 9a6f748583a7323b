#pragma once

#include "send/sendrequest.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QVariantMap>

class QDBusPendingCall;
class QDBusMessage;

namespace mms {

// A client of mmsd-tng on a bus (the session bus normally). Every call is asynchronous with a
// time-out, so no caller's thread waits on the daemon; answers come back as signals.
class MmsdClient final : public QObject {
    Q_OBJECT
public:
    explicit MmsdClient(QDBusConnection bus = QDBusConnection::sessionBus(), QObject* parent = nullptr);
    Q_DISABLE_COPY_MOVE(MmsdClient)

    // The longest any single call may take before it counts as unanswered.
    static constexpr int kCallTimeoutMs = 5000;

    // Looks for the modem's MMS service: serviceReady with its limits, or unavailable.
    void findService();
    // Hands the request to the service found by findService: handedOver or refused.
    void send(const SendRequest& request);
    // Asks for the status of every message the service keeps: a statusChanged for each.
    void refreshStatuses();

    const QString& servicePath() const { return servicePath_; }

    static QString noServiceText();

signals:
    void serviceReady(const mms::ServiceLimits& limits);
    // `running`: the daemon answered but has no service (no modem with a SIM yet).
    void unavailable(const QString& reason, bool running);
    void handedOver(const QString& messagePath);
    void refused(const QString& reason);
    // "draft", "sent", "delivered", ... as the daemon names them.
    void statusChanged(const QString& messagePath, const QString& status);
    // The daemon gave up on a message (it stays a draft there).
    void sendFailed(const QString& messagePath, const QString& reason);

private slots:
    void onPropertyChanged(const QDBusMessage& message);
    void onSendError(const QDBusMessage& message);

private:
    void call(const QString& path, const QString& interface, const QString& method, const QVariantList& args,
              std::function<void(const QDBusMessage&)> onReply);
    void subscribe();

    QDBusConnection bus_;
    QString servicePath_;
    bool subscribed_ = false;
};

} // namespace mms
