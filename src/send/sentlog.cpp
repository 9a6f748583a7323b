#include "send/sentlog.h"

#include "common/fileio.h"
#include "common/workspace.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace mms {

namespace {

QString native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

QJsonObject toJson(const SentEntry& e) {
    return {{QStringLiteral("message"), e.message},
            {QStringLiteral("handedOver"), e.handedOver.toUTC().toString(Qt::ISODate)},
            {QStringLiteral("recipients"), QJsonArray::fromStringList(e.recipients)},
            {QStringLiteral("path"), e.path},
            {QStringLiteral("status"), e.status},
            {QStringLiteral("reason"), e.reason},
            {QStringLiteral("snapshot"), e.snapshot},
            {QStringLiteral("deliveryReport"), e.deliveryReport}};
}

SentEntry fromJson(const QJsonObject& o) {
    SentEntry e;
    e.message = o.value(QStringLiteral("message")).toString();
    e.handedOver = QDateTime::fromString(o.value(QStringLiteral("handedOver")).toString(), Qt::ISODate);
    for (const QJsonValue& r : o.value(QStringLiteral("recipients")).toArray())
        e.recipients << r.toString();
    e.path = o.value(QStringLiteral("path")).toString();
    e.status = o.value(QStringLiteral("status")).toString();
    e.reason = o.value(QStringLiteral("reason")).toString();
    e.snapshot = o.value(QStringLiteral("snapshot")).toString();
    e.deliveryReport = o.value(QStringLiteral("deliveryReport")).toBool();
    return e;
}

} // namespace

bool SentEntry::isFinal() const {
    return status == QLatin1String("sent") || status == QLatin1String("delivered") ||
           status == QLatin1String("failed");
}

SentLog::SentLog(QString appFolder) : appFolder_(std::move(appFolder)) {}

QString SentLog::file() const {
    return workspace::userData(appFolder_) + QStringLiteral("/sent.json");
}

Status SentLog::load() {
    QFile in(file());
    if (!in.exists()) {
        entries_.clear();
        return Status::ok();
    }
    if (!in.open(QIODevice::ReadOnly))
        return Status::failure(
            QStringLiteral("Cannot read \"%1\": %2").arg(native(in.fileName()), in.errorString()));
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(in.readAll(), &error);
    if (error.error != QJsonParseError::NoError || !doc.isArray())
        return Status::failure(QStringLiteral("\"%1\" is not a sent-messages log: %2")
                                   .arg(native(in.fileName()), error.errorString()));
    std::vector<SentEntry> entries;
    for (const QJsonValue& v : doc.array())
        entries.push_back(fromJson(v.toObject()));
    entries_ = std::move(entries);
    return Status::ok();
}

Status SentLog::save() const {
    QJsonArray array;
    for (const SentEntry& e : entries_)
        array.append(toJson(e));
    if (Status s = fileio::createPath(workspace::userData(appFolder_)); !s) return s;
    return fileio::writeFileSafely(file(), QJsonDocument(array).toJson());
}

Status SentLog::add(SentEntry entry) {
    entries_.push_back(std::move(entry));
    return save();
}

bool SentLog::update(const QString& path, const QString& status, const QString& reason) {
    for (SentEntry& e : entries_) {
        if (e.path != path || path.isEmpty()) continue;
        // The daemon keeps a message it gave up on as a draft; the failure is what the user needs.
        if ((e.status == status && e.reason == reason) ||
            (e.status == QLatin1String("failed") && status == QLatin1String("draft")))
            return false;
        e.status = status;
        e.reason = reason;
        if (e.isFinal() && !e.snapshot.isEmpty()) {
            QDir(e.snapshot).removeRecursively();
            e.snapshot.clear();
        }
        return true;
    }
    return false;
}

Status SentLog::remove(std::size_t index) {
    if (index >= entries_.size()) return Status::ok();
    if (!entries_[index].snapshot.isEmpty()) QDir(entries_[index].snapshot).removeRecursively();
    entries_.erase(entries_.begin() + qsizetype(index));
    return save();
}

QString SentLog::line(const SentEntry& e) {
    const QString status = e.reason.isEmpty() ? e.status : e.status + QStringLiteral(": ") + e.reason;
    return QStringList{e.handedOver.toUTC().toString(Qt::ISODate), e.message,
                       e.recipients.join(QLatin1Char(',')), status, e.path}
        .join(QLatin1Char('\t'));
}

} // namespace mms
