#include "video/clipwriter.h"

#include "sound/mediahandles.h"

#include <cstring>
#include <memory>

namespace mms {

namespace {

// The muxer writes into a byte array, seeking back to fill in sizes as into a file.
struct MemoryFile {
    QByteArray bytes;
    qint64 at = 0;

    static int write(void* opaque, uint8_t* data, int size) {
        auto* f = static_cast<MemoryFile*>(opaque);
        if (f->at + size > f->bytes.size()) f->bytes.resize(qsizetype(f->at + size));
        std::memcpy(f->bytes.data() + f->at, data, size_t(size));
        f->at += size;
        return size;
    }
    static int64_t seek(void* opaque, int64_t offset, int whence) {
        auto* f = static_cast<MemoryFile*>(opaque);
        switch (whence & ~AVSEEK_FORCE) {
        case AVSEEK_SIZE:
            return f->bytes.size();
        case SEEK_SET:
            f->at = offset;
            break;
        case SEEK_CUR:
            f->at += offset;
            break;
        case SEEK_END:
            f->at = f->bytes.size() + offset;
            break;
        default:
            return -1;
        }
        return f->at < 0 ? -1 : f->at;
    }
};

struct OutputCloser {
    void operator()(AVFormatContext* f) const {
        if (f && f->pb) {
            av_freep(&f->pb->buffer);
            avio_context_free(&f->pb);
        }
        avformat_free_context(f);
    }
};

} // namespace

QByteArray writeClip(const ClipEncoding& clip) {
    MemoryFile file;
    AVFormatContext* made = nullptr;
    if (avformat_alloc_output_context2(&made, nullptr, "3gp", nullptr) < 0 || !made) return {};
    const std::unique_ptr<AVFormatContext, OutputCloser> output(made);
    constexpr int kBuffer = 1 << 16;
    auto* buffer = static_cast<unsigned char*>(av_malloc(kBuffer));
    output->pb =
        avio_alloc_context(buffer, kBuffer, 1, &file, nullptr, &MemoryFile::write, &MemoryFile::seek);
    if (!output->pb) {
        av_free(buffer);
        return {};
    }

    const AVCodec* h263 = avcodec_find_encoder(AV_CODEC_ID_H263);
    const media::Codec encoder(h263 ? avcodec_alloc_context3(h263) : nullptr);
    if (!encoder) return {};
    encoder->width = clip.size.width();
    encoder->height = clip.size.height();
    encoder->pix_fmt = AV_PIX_FMT_YUV420P;
    encoder->time_base = AVRational{clip.step, kClipMaxRate};
    encoder->framerate = AVRational{kClipMaxRate, clip.step};
    encoder->gop_size = kClipMaxRate * 5 / clip.step; // a key picture every five seconds
    encoder->max_b_frames = 0;
    encoder->flags |= AV_CODEC_FLAG_QSCALE;
    encoder->global_quality = clip.quantizer * FF_QP2LAMBDA;
    encoder->thread_count = 1;
    if (output->oformat->flags & AVFMT_GLOBALHEADER) encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (avcodec_open2(encoder.get(), h263, nullptr) < 0) return {};
    AVStream* video = avformat_new_stream(output.get(), nullptr);
    if (!video || avcodec_parameters_from_context(video->codecpar, encoder.get()) < 0) return {};
    video->time_base = encoder->time_base;

    AVStream* audio = nullptr;
    if (!clip.amrFrames.isEmpty()) {
        audio = avformat_new_stream(output.get(), nullptr);
        if (!audio) return {};
        audio->codecpar->codec_type = AVMEDIA_TYPE_AUDIO;
        audio->codecpar->codec_id = AV_CODEC_ID_AMR_NB;
        audio->codecpar->sample_rate = 8000;
        av_channel_layout_default(&audio->codecpar->ch_layout, 1);
        audio->codecpar->frame_size = 160;
        audio->time_base = AVRational{1, 8000};
    }
    if (avformat_write_header(output.get(), nullptr) < 0) return {};

    const media::Packet packet(av_packet_alloc());
    const auto drain = [&]() {
        while (avcodec_receive_packet(encoder.get(), packet.get()) == 0) {
            av_packet_rescale_ts(packet.get(), encoder->time_base, video->time_base);
            packet->stream_index = video->index;
            if (av_interleaved_write_frame(output.get(), packet.get()) < 0) return false;
        }
        return true;
    };
    qint64 pts = 0;
    for (qint64 i = 0; i < clip.count; i += clip.step) {
        AVFrame* picture = (*clip.pictures)[size_t(i)].get();
        picture->pts = pts++;
        picture->pict_type = AV_PICTURE_TYPE_NONE;
        picture->quality = encoder->global_quality; // a fixed quantizer is read from each picture
        if (avcodec_send_frame(encoder.get(), picture) < 0 || !drain()) return {};
    }
    if (avcodec_send_frame(encoder.get(), nullptr) < 0 || !drain()) return {};

    if (audio) {
        const qsizetype frames = clip.amrFrames.size() / clip.amrFrameBytes;
        for (qsizetype j = 0; j < frames; ++j) {
            if (av_new_packet(packet.get(), clip.amrFrameBytes) < 0) return {};
            std::memcpy(packet->data, clip.amrFrames.constData() + j * clip.amrFrameBytes,
                        size_t(clip.amrFrameBytes));
            packet->pts = packet->dts = j * 160;
            packet->duration = 160;
            av_packet_rescale_ts(packet.get(), AVRational{1, 8000}, audio->time_base);
            packet->stream_index = audio->index;
            if (av_interleaved_write_frame(output.get(), packet.get()) < 0) return {};
        }
    }
    if (av_write_trailer(output.get()) < 0) return {};
    avio_flush(output->pb);
    return file.bytes;
}

} // namespace mms
