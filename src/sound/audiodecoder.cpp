#include "sound/audiodecoder.h"

#include "sound/amrdecoder.h"
#include "sound/mediahandles.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <memory>

namespace mms {

namespace {

QString named(const QString& path, const QString& reason) {
    return QStringLiteral("%1 %2.").arg(QFileInfo(path).fileName(), reason);
}

// Appends the resampled samples of `frame` (null: what the resampler still holds) that fall in the
// stretch; false once the stretch is full.
class Collector {
public:
    Collector(qint64 skip, qint64 wanted, DecodedSound& out) : skip_(skip), wanted_(wanted), out_(out) {}

    bool add(SwrContext* swr, const AVFrame* frame) {
        const int room = swr_get_out_samples(swr, frame ? frame->nb_samples : 0);
        if (room <= 0) return true;
        buffer_.resize(size_t(room));
        auto* target = reinterpret_cast<uint8_t*>(buffer_.data());
        const int got = swr_convert(swr, &target, room,
                                    frame ? const_cast<const uint8_t**>(frame->extended_data) : nullptr,
                                    frame ? frame->nb_samples : 0);
        for (int i = 0; i < got; ++i) {
            if (skip_ > 0) {
                --skip_;
                continue;
            }
            if (qint64(out_.samples.size()) >= wanted_) {
                out_.cut = true;
                return false;
            }
            out_.samples.push_back(buffer_[size_t(i)]);
        }
        return true;
    }

private:
    qint64 skip_;
    qint64 wanted_;
    DecodedSound& out_;
    std::vector<qint16> buffer_;
};

} // namespace

LibraryInfo mediaLibrary() {
    return {QStringLiteral("FFmpeg"), QString::fromLatin1(av_version_info()), QStringLiteral("GNU LGPL 2.1")};
}

void prepareMediaLibrary() {
    static const bool prepared = [] {
        av_log_set_level(AV_LOG_QUIET);
        av_max_alloc(size_t(64) << 20);
        return true;
    }();
    (void)prepared;
}

Status decodeSound(const QString& path, double start, std::optional<double> end, qint64 maxSamples,
                   DecodedSound& out, const Progress& progress) {
    prepareMediaLibrary();
    out = DecodedSound();
    AVFormatContext* opened = nullptr;
    if (avformat_open_input(&opened, QFile::encodeName(path).constData(), nullptr, nullptr) < 0)
        return Status::failure(named(path, QStringLiteral("cannot be read as a sound or a video")));
    const media::Input format(opened);
    if (avformat_find_stream_info(format.get(), nullptr) < 0)
        return Status::failure(named(path, QStringLiteral("is cut short or damaged")));
    const AVCodec* codec = nullptr;
    const int stream = av_find_best_stream(format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0);
    if (stream < 0 || !codec) return Status::failure(named(path, QStringLiteral("holds no sound")));
    const AVStream* audio = format->streams[stream];
    if (format->duration > 0) out.sourceSeconds = double(format->duration) / AV_TIME_BASE;

    const media::Codec decoder(avcodec_alloc_context3(codec));
    if (!decoder || avcodec_parameters_to_context(decoder.get(), audio->codecpar) < 0 ||
        avcodec_open2(decoder.get(), codec, nullptr) < 0 || decoder->sample_rate <= 0)
        return Status::failure(named(path, QStringLiteral("holds a sound that cannot be decoded")));
    if (decoder->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
        av_channel_layout_default(&decoder->ch_layout, std::max(decoder->ch_layout.nb_channels, 1));

    SwrContext* made = nullptr;
    AVChannelLayout mono = AV_CHANNEL_LAYOUT_MONO;
    if (swr_alloc_set_opts2(&made, &mono, AV_SAMPLE_FMT_S16, kAmrSampleRate, &decoder->ch_layout,
                            decoder->sample_fmt, decoder->sample_rate, 0, nullptr) < 0 ||
        swr_init(made) < 0) {
        swr_free(&made);
        return Status::failure(named(path, QStringLiteral("holds a sound that cannot be converted")));
    }
    const media::Resampler swr(made);

    const qint64 skip = qint64(std::max(start, 0.0) * kAmrSampleRate + 0.5);
    qint64 wanted = maxSamples;
    if (end) wanted = std::min(wanted, qint64((*end - std::max(start, 0.0)) * kAmrSampleRate + 0.5));
    wanted = std::max<qint64>(wanted, 0);
    Collector collect(skip, wanted, out);
    const media::Packet packet(av_packet_alloc());
    const media::Frame frame(av_frame_alloc());
    const double total = out.sourceSeconds.value_or(0) * kAmrSampleRate;
    bool damaged = false;
    bool more = true;
    qint64 decodedSamples = 0;
    const auto drain = [&]() {
        while (more && avcodec_receive_frame(decoder.get(), frame.get()) == 0) {
            more = collect.add(swr.get(), frame.get());
            decodedSamples += frame->nb_samples;
            av_frame_unref(frame.get());
        }
    };
    while (more) {
        const int read = av_read_frame(format.get(), packet.get());
        if (read < 0) break; // the end, or damage past which nothing can be read
        if (packet->stream_index == stream) {
            const int sent = avcodec_send_packet(decoder.get(), packet.get());
            if (sent < 0 && sent != AVERROR(EAGAIN)) damaged = true;
            drain();
        }
        av_packet_unref(packet.get());
        if (progress && total > 0 &&
            !progress(std::min(1.0, double(decodedSamples) * kAmrSampleRate / decoder->sample_rate / total)))
            return Status::failure(QString());
    }
    if (more) {
        avcodec_send_packet(decoder.get(), nullptr);
        drain();
        if (more) collect.add(swr.get(), nullptr);
    }
    if (out.samples.empty() && damaged && decodedSamples == 0)
        return Status::failure(named(path, QStringLiteral("is cut short or damaged")));
    return Status::ok();
}

} // namespace mms
