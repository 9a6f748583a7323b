#include "send/messagesender.h"

#include "common/workspace.h"
#include "store/messagestore.h"

#include <QDir>
#include <QTemporaryDir>

namespace mms {

MessageSender::MessageSender(QString appFolder, QDBusConnection bus, QObject* parent)
    : QObject(parent), appFolder_(std::move(appFolder)), client_(std::move(bus)), log_(appFolder_) {
    connect(&client_, &MmsdClient::unavailable, this, [this](const QString& reason, bool running) {
        const bool wasSending = !pendingSnapshot_.isEmpty();
        dropPending();
        // A refresh at start-up has nobody to tell.
        if (wasSending || probing_ || !refreshing_) emit unavailable(reason, running);
        refreshing_ = false;
        probing_ = false;
    });
    connect(&client_, &MmsdClient::serviceReady, this, [this](const ServiceLimits& limits) {
        if (refreshing_) {
            refreshing_ = false;
            client_.refreshStatuses();
        }
        if (probing_) {
            probing_ = false;
            emit serviceFound(limits);
        }
        if (pendingSnapshot_.isEmpty() || handingOver_) return;
        if (Status s = checkRequest(pending_, limits); !s) {
            dropPending();
            emit refused(s.message());
            return;
        }
        handingOver_ = true;
        client_.send(pending_);
    });
    connect(&client_, &MmsdClient::refused, this, [this](const QString& reason) {
        dropPending();
        emit refused(reason);
    });
    connect(&client_, &MmsdClient::handedOver, this, [this](const QString& path) {
        SentEntry entry{pendingName_,
                        QDateTime::currentDateTimeUtc(),
                        pending_.recipients,
                        path,
                        QStringLiteral("draft"),
                        {},
                        pendingSnapshot_,
                        pending_.deliveryReport};
        pendingSnapshot_.clear();
        pendingName_.clear();
        handingOver_ = false;
        const Status logged = log_.add(std::move(entry));
        emit handedOver(path);
        emit logChanged(logged ? QString() : logged.message());
        if (const auto early = earlyStatuses_.constFind(path); early != earlyStatuses_.constEnd())
            record(path, early->first, early->second);
        earlyStatuses_.clear();
    });
    connect(&client_, &MmsdClient::statusChanged, this, [this](const QString& path, const QString& status) {
        if (handingOver_) earlyStatuses_.insert(path, {status, QString()});
        record(path, status, {});
        emit statusChanged(path, status);
    });
    connect(&client_, &MmsdClient::sendFailed, this, [this](const QString& path, const QString& reason) {
        if (handingOver_) earlyStatuses_.insert(path, {QStringLiteral("failed"), reason});
        record(path, QStringLiteral("failed"), reason);
        emit failed(path, reason);
    });
}

void MessageSender::send(const QString& name, const QStringList& typedRecipients, bool deliveryReport,
                         const std::optional<QString>& subject) {
    if (!pendingSnapshot_.isEmpty()) {
        emit refused(QStringLiteral("Another message is being handed over"));
        return;
    }
    QString problem;
    const std::optional<QStringList> recipients = phoneNumbers(typedRecipients, problem);
    if (!recipients) {
        emit refused(problem);
        return;
    }
    if (!isValidMessageName(name)) {
        emit refused(QStringLiteral("\"%1\" is not a message name").arg(name));
        return;
    }
    // Loaded once so that a log written by another program since start-up is not overwritten.
    if (Status s = log_.load(); !s) {
        emit refused(s.message());
        return;
    }
    const QString temp = workspace::temp(appFolder_);
    QDir().mkpath(temp);
    QTemporaryDir dir(temp + QStringLiteral("/send-XXXXXX"));
    if (!dir.isValid()) {
        emit refused(QStringLiteral("Cannot create a folder in \"%1\": %2")
                         .arg(QDir::toNativeSeparators(temp), dir.errorString()));
        return;
    }
    dir.setAutoRemove(false);
    pendingSnapshot_ = dir.path();
    pendingName_ = name;
    SendRequest request;
    if (Status s =
            takeSnapshot(MessageStore(appFolder_), name, dir.filePath(QStringLiteral("message")), request);
        !s) {
        dropPending();
        emit refused(s.message());
        return;
    }
    request.recipients = *recipients;
    request.deliveryReport = deliveryReport;
    if (subject) request.subject = *subject;
    pending_ = std::move(request);
    // The limits are the daemon's, so the last checks wait for its answer.
    if (Status s = checkRequest(pending_, {}); !s) {
        dropPending();
        emit refused(s.message());
        return;
    }
    client_.findService();
}

void MessageSender::refresh() {
    if (Status s = log_.load(); !s) {
        emit logChanged(s.message());
        return;
    }
    refreshing_ = true;
    client_.findService();
}

void MessageSender::sendAgain(std::size_t index) {
    if (index >= log_.entries().size()) return;
    const SentEntry entry = log_.entries()[index];
    send(entry.message, entry.recipients, entry.deliveryReport);
}

void MessageSender::findService() {
    probing_ = true;
    client_.findService();
}

void MessageSender::remove(std::size_t index) {
    const Status removed = log_.remove(index);
    emit logChanged(removed ? QString() : removed.message());
}

void MessageSender::dropPending() {
    if (!pendingSnapshot_.isEmpty()) QDir(pendingSnapshot_).removeRecursively();
    pendingSnapshot_.clear();
    pendingName_.clear();
    pending_ = {};
    handingOver_ = false;
    earlyStatuses_.clear();
}

void MessageSender::record(const QString& path, const QString& status, const QString& reason) {
    if (!log_.update(path, status, reason)) return;
    const Status saved = log_.save();
    emit logChanged(saved ? QString() : saved.message());
}

} // namespace mms
