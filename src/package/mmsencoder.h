#pragma once

#include "model/cslide.h"
#include "model/messagesink.h"
#include "model/status.h"
#include "package/mmsaddress.h"

#include <QByteArray>
#include <QIODevice>
#include <QString>

namespace mms {

// Writes a message as a binary MMS send request (m-send-req in the WAP multipart encapsulation)
// from a package folder written in store mode.
//
// Positions are 1-based byte positions in the output, as the operations hand them from one to the
// next; 0 means failure. Failures are shown through the sink: "Error" for the length and header
// steps, "<file name>: Error" for a body part, "ImgHeader: oversized" for a part whose headers
// would need 256 bytes or more.
//
// Beyond the short forms: a subject whose value length exceeds 30 is written with the length quote
// (1F) and a uintvar; the entry count and every part's headers length are uintvars (identical to
// one byte below 128); a content type longer than 30 bytes gets the length quote too. A 3GP part is
// "video/3gpp", written like the other types given by text, and so are "image/png" and "image/jpeg"
// for the extensions png, jpeg and jpe. A part of any other extension is typed by its first bytes
// (GIF, JPEG, PNG or BMP), else as "application/octet-stream".
//
// Beyond the header table: the sender's address replaces the insert-address token of From, and To
// and Cc headers follow From, one per address (see MmsRecipients); without addresses the header is
// byte for byte the plain one.
class MmsEncoder {
public:
    explicit MmsEncoder(MessageSink* sink = nullptr) : sink_(sink) {}

    // 7-bit groups, most significant first, the top bit set on all but the last: 300 -> 82 2C.
    static QByteArray uintvar(quint64 value);

    // Leaves the uintvar of the file's size in lengthBuffer().
    bool calculateDataLen(const QString& path);
    const QByteArray& lengthBuffer() const { return lengthBuffer_; }

    // Writes the header from the device's first byte; returns the position after it.
    // `pos` is not used (the header always starts at the beginning).
    qint32 generateMMSHeader(QIODevice& out, qint32 pos, const qint16& parts, const QString& subject);
    // Writes the body part for the file `source` at `pos`; returns the position after it.
    qint32 generateMsgElement(QIODevice& out, const QString& source, qint32 pos);
    // Appends main.smil and, for slides 1 to count, each slide's picture or video, text and sound
    // from `packageFolder`. Returns the position after the last part, 0 when a part failed (the
    // parts after it are not written).
    qint32 generateMMSBody(QIODevice& out, const CSlide& slides, const QString& packageFolder, qint32 start,
                           const qint16& count);

    // The same, opening the output file for writing at explicit positions without truncating it.
    qint32 generateMMSHeader(const QString& outPath, qint32 pos, const qint16& parts, const QString& subject);
    qint32 generateMsgElement(const QString& outPath, const QString& source, qint32 pos);

    // The header for any number of parts (the count is a uintvar, one byte below 128).
    qint32 writeHeader(QIODevice& out, quint32 parts, const QString& subject,
                       const MmsRecipients& recipients = {});

    // The number of body parts generateMMSBody writes for the first `count` slides.
    static int countParts(const CSlide& slides, qint16 count);

    // What went wrong last, naming the file and the reason (the shown texts are terser).
    const QString& lastFailure() const { return lastFailure_; }

private:
    void show(const QString& text, const QString& detail);
    MessageSink* sink_;
    QByteArray lengthBuffer_;
    QString lastFailure_;
};

// A complete send request: the header with the number of parts, then the body of every slide.
Status writeSendRequest(const CSlide& slides, const QString& packageFolder, const QString& subject,
                        QIODevice& out, MessageSink* sink = nullptr, const MmsRecipients& recipients = {});
// The same into a new file at outPath, which is replaced only when the request is complete.
Status writeSendRequest(const CSlide& slides, const QString& packageFolder, const QString& subject,
                        const QString& outPath, MessageSink* sink = nullptr,
                        const MmsRecipients& recipients = {});

} // namespace mms
