#include "video/clipthumbnail.h"

#include "sound/audiodecoder.h"
#include "sound/mediahandles.h"

#include <QElapsedTimer>
#include <QFile>
#include <memory>

namespace mms {

namespace {

constexpr qint64 kBudgetMs = 1500;
constexpr int kLargestSide = 4096;
constexpr int kThumbnailSide = 352; // enough for the phone screen and every thumbnail

int stopWhenLate(void* timer) {
    return static_cast<QElapsedTimer*>(timer)->hasExpired(kBudgetMs) ? 1 : 0;
}

} // namespace

QImage firstVideoFrame(const QString& path) {
    prepareMediaLibrary();
    QElapsedTimer timer;
    timer.start();
    AVFormatContext* opened = avformat_alloc_context();
    if (!opened) return {};
    opened->interrupt_callback = AVIOInterruptCB{&stopWhenLate, &timer};
    if (avformat_open_input(&opened, QFile::encodeName(path).constData(), nullptr, nullptr) < 0) return {};
    const media::Input format(opened);
    if (avformat_find_stream_info(format.get(), nullptr) < 0) return {};
    const AVCodec* codec = nullptr;
    const int stream = av_find_best_stream(format.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (stream < 0 || !codec) return {};
    const AVCodecParameters* video = format->streams[stream]->codecpar;
    if (video->width <= 0 || video->height <= 0 || video->width > kLargestSide ||
        video->height > kLargestSide)
        return {};
    const media::Codec decoder(avcodec_alloc_context3(codec));
    if (!decoder || avcodec_parameters_to_context(decoder.get(), video) < 0 ||
        avcodec_open2(decoder.get(), codec, nullptr) < 0)
        return {};
    const media::Packet packet(av_packet_alloc());
    const media::Frame frame(av_frame_alloc());
    bool got = false;
    while (!got && !timer.hasExpired(kBudgetMs)) {
        const bool read = av_read_frame(format.get(), packet.get()) >= 0;
        if (read && packet->stream_index != stream) {
            av_packet_unref(packet.get());
            continue;
        }
        avcodec_send_packet(decoder.get(), read ? packet.get() : nullptr);
        av_packet_unref(packet.get());
        got = avcodec_receive_frame(decoder.get(), frame.get()) == 0;
        if (!read && !got) break;
    }
    if (!got || frame->width <= 0 || frame->height <= 0) return {};

    // The shape as shown: pixels that are not square are widened or narrowed.
    const AVRational aspect =
        av_guess_sample_aspect_ratio(format.get(), format->streams[stream], frame.get());
    double width = frame->width * (aspect.num > 0 && aspect.den > 0 ? av_q2d(aspect) : 1.0);
    double height = frame->height;
    const double shrink = std::min(1.0, kThumbnailSide / std::max(width, height));
    const int w = std::max(1, int(width * shrink)), h = std::max(1, int(height * shrink));
    const media::Scaler scaler(sws_getContext(frame->width, frame->height, AVPixelFormat(frame->format), w, h,
                                              AV_PIX_FMT_RGB32, SWS_BILINEAR, nullptr, nullptr, nullptr));
    if (!scaler) return {};
    QImage image(w, h, QImage::Format_RGB32);
    uint8_t* target[1] = {image.bits()};
    const int stride[1] = {int(image.bytesPerLine())};
    sws_scale(scaler.get(), frame->data, frame->linesize, 0, frame->height, target, stride);
    return image;
}

} // namespace mms
