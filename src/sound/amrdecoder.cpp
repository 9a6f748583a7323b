#include "sound/amrdecoder.h"

#include <QDir>
#include <QFile>
#include <memory>

extern "C" {
#include <opencore-amrnb/interf_dec.h>
}

namespace mms {

namespace {

const QByteArray kMagic = QByteArrayLiteral("#!AMR\n");
constexpr int kFrameSamples = 160;                 // 20 ms at 8 kHz
constexpr qint64 kMaxFileBytes = 16 * 1024 * 1024; // far beyond any phone sound
// Bytes of speech data after the header byte, by frame type. Types 9 to 14 belong to other codecs
// or are reserved, and 15 is a frame with no data.
constexpr int kFrameBytes[16] = {12, 13, 15, 17, 19, 20, 26, 31, 5, -1, -1, -1, -1, -1, -1, 0};

struct DecoderDeleter {
    void operator()(void* state) const { Decoder_Interface_exit(state); }
};

} // namespace

LibraryInfo amrLibrary() {
    return {QStringLiteral("opencore-amr"), QStringLiteral(MMS_OPENCORE_AMR_VERSION),
            QStringLiteral("Apache 2.0")};
}

Status decodeAmr(const QByteArray& bytes, std::vector<qint16>& samples) {
    samples.clear();
    if (bytes.startsWith("#!AMR-WB")) return Status::failure(QStringLiteral("it is wide band AMR"));
    if (!bytes.startsWith(kMagic)) return Status::failure(QStringLiteral("it is not an AMR sound"));

    // Check every frame before decoding any: the decoder reads as many bytes as the type announces.
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
    std::vector<qsizetype> frames;
    for (qsizetype at = kMagic.size(); at < bytes.size();) {
        const int type = (data[at] >> 3) & 0x0f;
        if (kFrameBytes[type] < 0)
            return Status::failure(QStringLiteral("frame %1 has type %2, which AMR does not use")
                                       .arg(frames.size() + 1)
                                       .arg(type));
        if (at + 1 + kFrameBytes[type] > bytes.size())
            return Status::failure(QStringLiteral("frame %1 is cut short").arg(frames.size() + 1));
        frames.push_back(at);
        at += 1 + kFrameBytes[type];
    }
    if (frames.empty()) return Status::failure(QStringLiteral("it holds no sound"));

    const std::unique_ptr<void, DecoderDeleter> decoder(Decoder_Interface_init());
    if (!decoder) return Status::failure(QStringLiteral("the AMR decoder could not be started"));
    samples.resize(frames.size() * kFrameSamples);
    for (std::size_t i = 0; i < frames.size(); ++i)
        Decoder_Interface_Decode(decoder.get(), data + frames[i], samples.data() + i * kFrameSamples, 0);
    return Status::ok();
}

Status decodeAmrFile(const QString& path, std::vector<qint16>& samples) {
    samples.clear();
    const QString shown = QDir::toNativeSeparators(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Status::failure(QStringLiteral("%1: %2").arg(shown, file.errorString()));
    if (file.size() > kMaxFileBytes)
        return Status::failure(QStringLiteral("%1: the file is too large to be an AMR sound").arg(shown));
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return Status::failure(QStringLiteral("%1: %2").arg(shown, file.errorString()));
    if (Status s = decodeAmr(bytes, samples); !s)
        return Status::failure(QStringLiteral("%1: %2").arg(shown, s.message()));
    return Status::ok();
}

} // namespace mms
