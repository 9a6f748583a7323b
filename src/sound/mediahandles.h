#pragma once

// Owning handles for the media library's objects, each freed by the library's own call. For the
// sources that read and write sounds and videos; never included by a header others see.

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

namespace mms::media {

struct InputCloser {
    void operator()(AVFormatContext* f) const { avformat_close_input(&f); }
};
struct CodecFreer {
    void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
};
struct PacketFreer {
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};
struct FrameFreer {
    void operator()(AVFrame* f) const { av_frame_free(&f); }
};
struct ResamplerFreer {
    void operator()(SwrContext* s) const { swr_free(&s); }
};
struct ScalerFreer {
    void operator()(SwsContext* s) const { sws_freeContext(s); }
};

using Input = std::unique_ptr<AVFormatContext, InputCloser>;
using Codec = std::unique_ptr<AVCodecContext, CodecFreer>;
using Packet = std::unique_ptr<AVPacket, PacketFreer>;
using Frame = std::unique_ptr<AVFrame, FrameFreer>;
using Resampler = std::unique_ptr<SwrContext, ResamplerFreer>;
using Scaler = std::unique_ptr<SwsContext, ScalerFreer>;

} // namespace mms::media
