#include "video/clipframes.h"

#include "sound/audiodecoder.h"
#include "sound/mediahandles.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

namespace mms {

void FrameDeleter::operator()(AVFrame* frame) const {
    av_frame_free(&frame);
}

namespace {

QString named(const QString& path, const QString& reason) {
    return QStringLiteral("%1 %2.").arg(QFileInfo(path).fileName(), reason);
}

// Pictures larger than this are refused rather than decoded (a 16K video would take gigabytes).
constexpr qint64 kMostPixels = qint64(4096) * 2304;

// Scales decoded pictures into a box of one clip size, shape kept, black around them.
class Letterbox {
public:
    explicit Letterbox(QSize box) : box_(box) {}

    FramePtr place(const AVFrame* picture, AVRational sampleAspect) {
        const double aspect = sampleAspect.num > 0 && sampleAspect.den > 0 ? av_q2d(sampleAspect) : 1.0;
        const double shown = double(picture->width) * aspect / picture->height;
        int w = box_.width(), h = box_.height();
        if (shown > double(w) / h)
            h = std::max(2, int(std::lround(w / shown)) & ~1);
        else
            w = std::max(2, int(std::lround(h * shown)) & ~1);
        if (!scaler_ || w != w_ || h != h_ || picture->width != inW_ || picture->height != inH_ ||
            picture->format != inFormat_) {
            scaler_.reset(sws_getContext(picture->width, picture->height, AVPixelFormat(picture->format), w,
                                         h, AV_PIX_FMT_YUV420P, SWS_BILINEAR, nullptr, nullptr, nullptr));
            w_ = w, h_ = h, inW_ = picture->width, inH_ = picture->height, inFormat_ = picture->format;
        }
        FramePtr out(av_frame_alloc());
        out->format = AV_PIX_FMT_YUV420P;
        out->width = box_.width();
        out->height = box_.height();
        if (!scaler_ || av_frame_get_buffer(out.get(), 0) < 0) return nullptr;
        // Black: Y 16, U and V 128.
        for (int y = 0; y < out->height; ++y)
            std::fill_n(out->data[0] + y * out->linesize[0], out->width, uint8_t(16));
        for (int plane = 1; plane < 3; ++plane)
            for (int y = 0; y < out->height / 2; ++y)
                std::fill_n(out->data[plane] + y * out->linesize[plane], out->width / 2, uint8_t(128));
        const int x0 = (box_.width() - w) / 2 & ~1, y0 = (box_.height() - h) / 2 & ~1;
        uint8_t* dst[3] = {out->data[0] + y0 * out->linesize[0] + x0,
                           out->data[1] + y0 / 2 * out->linesize[1] + x0 / 2,
                           out->data[2] + y0 / 2 * out->linesize[2] + x0 / 2};
        sws_scale(scaler_.get(), picture->data, picture->linesize, 0, picture->height, dst, out->linesize);
        return out;
    }

private:
    QSize box_;
    media::Scaler scaler_;
    int w_ = 0, h_ = 0, inW_ = 0, inH_ = 0, inFormat_ = -1;
};

// Opens the file and finds its video stream, filling what the header tells.
Status openVideo(const QString& path, ClipSource& out, media::Input& format, int& stream,
                 const AVCodec*& codec) {
    prepareMediaLibrary();
    AVFormatContext* opened = nullptr;
    if (avformat_open_input(&opened, QFile::encodeName(path).constData(), nullptr, nullptr) < 0)
        return Status::failure(named(path, QStringLiteral("cannot be read as a video")));
    format.reset(opened);
    if (avformat_find_stream_info(format.get(), nullptr) < 0)
        return Status::failure(named(path, QStringLiteral("is cut short or damaged")));
    stream = av_find_best_stream(format.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (stream < 0 || !codec) return Status::failure(named(path, QStringLiteral("holds no video")));
    const AVStream* video = format->streams[stream];
    out.container = QString::fromLatin1(format->iformat->name);
    out.videoCodec = QString::fromLatin1(avcodec_get_name(video->codecpar->codec_id));
    out.sourceSize = QSize(video->codecpar->width, video->codecpar->height);
    if (format->duration > 0) out.sourceSeconds = double(format->duration) / AV_TIME_BASE;
    if (qint64(out.sourceSize.width()) * out.sourceSize.height() > kMostPixels)
        return Status::failure(named(path, QStringLiteral("is a video too large to convert (%1x%2)")
                                               .arg(out.sourceSize.width())
                                               .arg(out.sourceSize.height())));
    return Status::ok();
}

} // namespace

Status readClipHeader(const QString& path, ClipSource& out) {
    out = ClipSource();
    media::Input format;
    int stream = -1;
    const AVCodec* codec = nullptr;
    return openVideo(path, out, format, stream, codec);
}

Status readClipSource(const QString& path, double start, std::optional<double> end, double maxSeconds,
                      ClipSource& out, const Progress& progress) {
    out = ClipSource();
    start = std::max(start, 0.0);
    media::Input format;
    int stream = -1;
    const AVCodec* codec = nullptr;
    if (const Status opened = openVideo(path, out, format, stream, codec); !opened) return opened;
    AVStream* video = format->streams[stream];

    const media::Codec decoder(avcodec_alloc_context3(codec));
    if (!decoder || avcodec_parameters_to_context(decoder.get(), video->codecpar) < 0)
        return Status::failure(named(path, QStringLiteral("holds a video that cannot be decoded")));
    decoder->thread_count = 0; // as many as the machine has
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0)
        return Status::failure(named(path, QStringLiteral("holds a video that cannot be decoded")));

    double last = start + maxSeconds;
    if (end) last = std::min(last, *end);
    const qint64 slotCount = std::max<qint64>(0, qint64(std::floor((last - start) * kClipMaxRate + 1e-9)));
    if (start > 0) av_seek_frame(format.get(), -1, qint64(start * AV_TIME_BASE), AVSEEK_FLAG_BACKWARD);

    Letterbox large(kClipLarge), small(kClipSmall);
    const media::Packet packet(av_packet_alloc());
    const FramePtr frame(av_frame_alloc());
    const double timeBase = av_q2d(video->time_base);
    const double firstTime = video->start_time != AV_NOPTS_VALUE ? video->start_time * timeBase : 0.0;
    bool damaged = false;
    // Slot k of the clip (time start + k / rate) shows the last picture due at or before it. The
    // picture waiting to be shown is scaled only once a slot takes it: most decoded pictures of a
    // 30-a-second video are never shown at 15.
    FramePtr pending(av_frame_alloc());
    bool havePending = false;
    FramePtr placedLarge, placedSmall;
    AVRational aspect{1, 1};
    double lastShown = start, lastLength = 1.0 / kClipMaxRate; // the latest picture's time and length
    const auto fillBefore = [&](double time) {
        while (havePending && qint64(out.large.size()) < slotCount &&
               start + double(out.large.size()) / kClipMaxRate < time) {
            if (!placedLarge) {
                placedLarge = large.place(pending.get(), aspect);
                placedSmall = small.place(pending.get(), aspect);
                if (!placedLarge || !placedSmall) return;
            }
            out.large.push_back(FramePtr(av_frame_clone(placedLarge.get())));
            out.small.push_back(FramePtr(av_frame_clone(placedSmall.get())));
        }
    };
    const auto take = [&]() {
        while (avcodec_receive_frame(decoder.get(), frame.get()) == 0) {
            const qint64 pts = frame->best_effort_timestamp;
            const double time = pts != AV_NOPTS_VALUE ? pts * timeBase - firstTime : lastShown + lastLength;
            fillBefore(time);
            lastShown = time;
            if (frame->pkt_duration > 0) lastLength = double(frame->pkt_duration) * timeBase;
            aspect = av_guess_sample_aspect_ratio(format.get(), video, frame.get());
            av_frame_unref(pending.get());
            av_frame_move_ref(pending.get(), frame.get());
            havePending = true;
            placedLarge.reset();
            placedSmall.reset();
        }
    };
    while (qint64(out.large.size()) < slotCount) {
        const int read = av_read_frame(format.get(), packet.get());
        if (read < 0) break;
        if (packet->stream_index == stream) {
            const int sent = avcodec_send_packet(decoder.get(), packet.get());
            if (sent < 0 && sent != AVERROR(EAGAIN)) damaged = true;
            take();
        }
        av_packet_unref(packet.get());
        if (progress && slotCount > 0 && !progress(0.8 * double(out.large.size()) / double(slotCount)))
            return Status::failure(QString());
    }
    avcodec_send_packet(decoder.get(), nullptr);
    take();
    // The last picture stands until the stretch or the video ends; a slot is kept only when the
    // whole of it lies within the video.
    fillBefore(std::min(last, lastShown + lastLength - 0.5 / kClipMaxRate) + 1e-6);
    if (out.large.empty())
        return Status::failure(
            named(path, damaged ? QStringLiteral("is cut short or damaged")
                                : QStringLiteral("has no picture from %1 s on").arg(start, 0, 'f', 3)));

    DecodedSound sound;
    const qint64 wanted = qint64(out.large.size()) * 8000 / kClipMaxRate;
    if (decodeSound(path, start, start + out.seconds(), wanted, sound).isOk() && !sound.samples.empty()) {
        out.sound = std::move(sound.samples);
        out.hasSound = true;
    }
    if (progress && !progress(0.85)) return Status::failure(QString());
    return Status::ok();
}

} // namespace mms
