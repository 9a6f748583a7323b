#include "send/sendrequest.h"

#include "common/workspace.h"
#include "package/mmsaddress.h"
#include "package/packagemembers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace mms {

namespace {

const QString kPlmnSuffix = QStringLiteral("/TYPE=PLMN");

QString native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

// The member files of a message read from `folder`, in slide order: picture or video, text, sound.
QStringList memberFiles(const LoadedMessage& message, const QString& folder) {
    QStringList files;
    int n = 0;
    for (const LoadedSlide& slide : message.slides) {
        ++n;
        if (!slide.picturePath.isEmpty()) files << slide.picturePath;
        if (!slide.text.isEmpty()) files << folder + QStringLiteral("/text%1.txt").arg(n);
        if (!slide.soundPath.isEmpty()) files << slide.soundPath;
    }
    return files;
}

} // namespace

std::optional<QString> phoneNumber(const QString& typed) {
    // The send request's address rules decide what a phone number is; only its type suffix is dropped.
    const std::optional<QString> address = mmsAddress(typed);
    if (!address || !address->endsWith(kPlmnSuffix)) return std::nullopt;
    return address->chopped(kPlmnSuffix.size());
}

std::optional<QStringList> phoneNumbers(const QStringList& typed, QString& problem) {
    QStringList numbers;
    for (const QString& piece : typed) {
        if (const std::optional<QString> number = phoneNumber(piece)) {
            if (!numbers.contains(*number)) numbers << *number;
            continue;
        }
        const std::optional<QString> address = mmsAddress(piece);
        problem = address ? QStringLiteral("'%1' is an e-mail address; mmsd-tng sends to phone numbers only")
                                .arg(piece.trimmed())
                          : QStringLiteral("'%1' is not a phone number").arg(piece.trimmed());
        return std::nullopt;
    }
    if (numbers.isEmpty()) {
        problem = QStringLiteral("no recipient was given");
        return std::nullopt;
    }
    return numbers;
}

QString smilWithContentIds(const QString& smil) {
    static const QRegularExpression src(QStringLiteral(R"re(src\s*=\s*"(?!cid:)([^"]*)")re"));
    QString out = smil;
    out.replace(src, QStringLiteral("src=\"cid:\\1\""));
    return out;
}

Status takeSnapshot(const MessageStore& store, const QString& name, const QString& folder, SendRequest& out) {
    if (!store.hasIndex(name))
        return Status::failure(QStringLiteral("There is no stored message \"%1\"").arg(name));
    if (Status s = store.copyPackage(name, folder); !s) return s;
    LoadedMessage message;
    if (Status s = store.load(name, folder, message); !s) return s;
    if (!message.missingFiles.isEmpty())
        return Status::failure(QStringLiteral("The stored message \"%1\" lacks %2")
                                   .arg(name, message.missingFiles.join(QStringLiteral(", "))));
    QFile smil(folder + QStringLiteral("/main.smil"));
    if (!smil.open(QIODevice::ReadOnly))
        return Status::failure(
            QStringLiteral("Cannot read \"%1\": %2").arg(native(smil.fileName()), smil.errorString()));

    SendRequest request;
    request.subject = message.subject;
    request.smil = smilWithContentIds(QString::fromUtf8(smil.readAll()));
    for (const QString& path : memberFiles(message, folder)) {
        const QFileInfo file(path);
        request.attachments.push_back({file.fileName(), memberMimeType(path), file.absoluteFilePath()});
    }
    out = std::move(request);
    return Status::ok();
}

Status memberBytes(const MessageStore& store, const QString& name, qint64& out) {
    const QString folder = workspace::messageFolder(store.appFolder(), name);
    LoadedMessage message;
    if (Status s = store.load(name, folder, message); !s) return s;
    qint64 total = 0;
    for (const QString& path : memberFiles(message, folder))
        total += QFileInfo(path).size();
    out = total;
    return Status::ok();
}

Status checkRequest(const SendRequest& request, const ServiceLimits& limits) {
    if (request.recipients.isEmpty()) return Status::failure(QStringLiteral("No recipient was given"));
    if (request.attachments.empty())
        return Status::failure(QStringLiteral("The message has nothing to send"));
    qint64 total = 0;
    for (const Attachment& a : request.attachments) {
        // mmsd-tng 2.1 crashes on a SMIL attachment: the presentation travels as the "smil" option.
        if (a.mimeType.compare(QLatin1String("application/smil"), Qt::CaseInsensitive) == 0)
            return Status::failure(
                QStringLiteral("\"%1\" is a presentation; it cannot be sent as a member").arg(a.contentId));
        if (a.mimeType.contains(QLatin1Char(';')))
            return Status::failure(
                QStringLiteral("The type of \"%1\" has parameters (%2); mmsd-tng takes a bare "
                               "MIME type")
                    .arg(a.contentId, a.mimeType));
        const QFileInfo file(a.path);
        QFile readable(a.path);
        if (!file.isFile() || !readable.open(QIODevice::ReadOnly))
            return Status::failure(QStringLiteral("The member \"%1\" cannot be read from \"%2\"")
                                       .arg(a.contentId, native(a.path)));
        total += file.size();
    }
    const int count = int(request.attachments.size());
    if (limits.maxAttachments > 0 && count > limits.maxAttachments)
        return Status::failure(QStringLiteral("The message has %1 members; the MMS service takes at most %2")
                                   .arg(count)
                                   .arg(limits.maxAttachments));
    if (limits.totalMaxAttachmentSize > 0 && total > limits.totalMaxAttachmentSize)
        return Status::failure(
            QStringLiteral("The message's members take %1 bytes; the MMS service takes at most "
                           "%2 bytes")
                .arg(total)
                .arg(limits.totalMaxAttachmentSize));
    return Status::ok();
}

} // namespace mms
