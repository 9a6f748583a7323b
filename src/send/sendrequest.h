#pragma once

#include "model/status.h"
#include "store/messagestore.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace mms {

// One member handed to the MMS daemon: (content id, MIME type, absolute path).
struct Attachment {
    QString contentId;
    QString mimeType;
    QString path;
};

// Everything SendMessage carries. The presentation goes as the "smil" option, never as an attachment.
struct SendRequest {
    QStringList recipients; // bare phone numbers, as the daemon takes them
    QString subject;
    bool deliveryReport = false;
    QString smil;
    std::vector<Attachment> attachments;
};

// What the service says it accepts (its GetProperties); 0 means no limit was reported.
struct ServiceLimits {
    qint64 totalMaxAttachmentSize = 0;
    int maxAttachments = 0;
};

// A typed phone number as the daemon wants it: digits with an optional leading "+", the blanks,
// hyphens, dots and brackets people type between them dropped. Nothing for anything else.
std::optional<QString> phoneNumber(const QString& typed);

// The recipients from the typed pieces; the first piece that is no phone number is named in `problem`
// (an e-mail address gets its own reason: the daemon takes phone numbers only).
std::optional<QStringList> phoneNumbers(const QStringList& typed, QString& problem);

// The presentation with every src="member" turned into src="cid:member", the form the daemon links
// attachments by.
QString smilWithContentIds(const QString& smil);

// A copy of the stored message `name` taken into `folder` (which must not exist), and the request
// built from the copy: members in slide order, picture or video, text, sound. The daemon reads the
// files after the call returns, so they must not be the library's or the store's own.
Status takeSnapshot(const MessageStore& store, const QString& name, const QString& folder, SendRequest& out);

// The bytes the members of the stored message `name` take together: what the service's
// TotalMaxAttachmentSize is measured against.
Status memberBytes(const MessageStore& store, const QString& name, qint64& out);

// Every reason the daemon would refuse the request with a bare "Invalid Arguments!" (or crash on),
// checked here so the user is told which one: no recipient, an application/smil attachment, a MIME
// type with parameters, a member file that cannot be read, too many members, too many bytes.
Status checkRequest(const SendRequest& request, const ServiceLimits& limits);

} // namespace mms
