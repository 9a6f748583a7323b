#pragma once

#include "model/status.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <vector>

namespace mms {

// One hand-off to the MMS daemon.
struct SentEntry {
    QString message; // the stored message's name
    QDateTime handedOver;
    QStringList recipients;
    QString path;     // the daemon's message object
    QString status;   // "draft", "sent", "delivered" or "failed"
    QString reason;   // why it failed
    QString snapshot; // the private copy the daemon reads, until the status is final
    bool deliveryReport = false;

    bool isFinal() const;
};

// The sent messages of a workspace, kept in UserData/sent.json.
class SentLog {
public:
    explicit SentLog(QString appFolder);

    // A missing log reads as empty; an unreadable or malformed one fails naming the file, and the
    // entries are left as they were.
    Status load();
    const std::vector<SentEntry>& entries() const { return entries_; }

    Status add(SentEntry entry);
    // Records the daemon's news about `path`; false when no entry has that path or nothing changed.
    // A final status removes the entry's snapshot.
    bool update(const QString& path, const QString& status, const QString& reason = {});
    Status remove(std::size_t index);
    Status save() const;

    QString file() const;

    // One tab-separated line: time, message, recipients, status (with the reason), path.
    static QString line(const SentEntry& entry);

private:
    QString appFolder_;
    std::vector<SentEntry> entries_;
};

} // namespace mms
