#pragma once

#include "support/outsidetool.h"
#include "support/tempdir.h"

#include <QDataStream>

namespace mms::test {

// tshark's full reading (-V) of an MMS request, carried as the body of one HTTP POST in a capture on
// a user link type that the command line hands to the HTTP dissector, which passes the body to the
// MMSE dissector by its media type. Nothing when tshark is not installed.
inline std::optional<ToolRun> tsharkDecodeMms(const QByteArray& request, const TempDir& dir) {
    const QByteArray post =
        "POST /mms HTTP/1.1\r\nHost: mmsc\r\nContent-Type: application/vnd.wap.mms-message\r\n"
        "Content-Length: " +
        QByteArray::number(request.size()) + "\r\n\r\n" + request;
    QByteArray pcap;
    QDataStream s(&pcap, QIODevice::WriteOnly);
    s.setByteOrder(QDataStream::LittleEndian);
    s << quint32(0xA1B2C3D4) << quint16(2) << quint16(4) << quint64(0) << quint32(65535)
      << quint32(147) // DLT_USER0
      << quint64(0) << quint32(post.size()) << quint32(post.size());
    return runTool(QStringLiteral("tshark"),
                   {QStringLiteral("-r"), dir.write(QStringLiteral("request.pcap"), pcap + post),
                    QStringLiteral("-o"),
                    QStringLiteral("uat:user_dlts:\"User 0 (DLT=147)\",\"http\",\"0\",\"\",\"0\",\"\""),
                    QStringLiteral("-V")});
}

} // namespace mms::test
