#include "sound/amrencoder.h"

#include <algorithm>
#include <array>
#include <memory>

extern "C" {
#include <opencore-amrnb/interf_enc.h>
}

namespace mms {

namespace {

constexpr std::array<int, kAmrModes> kFrameBytes{13, 14, 16, 18, 20, 21, 27, 32};
constexpr std::array<double, kAmrModes> kKbps{4.75, 5.15, 5.9, 6.7, 7.4, 7.95, 10.2, 12.2};

struct EncoderCloser {
    void operator()(void* state) const { Encoder_Interface_exit(state); }
};

} // namespace

int amrFrameBytes(int mode) {
    return kFrameBytes[size_t(std::clamp(mode, 0, kAmrModes - 1))];
}

double amrKbps(int mode) {
    return kKbps[size_t(std::clamp(mode, 0, kAmrModes - 1))];
}

std::optional<AmrPlan> planAmr(qint64 samples, qint64 maxBytes) {
    const qint64 frames = (samples + kAmrFrameSamples - 1) / kAmrFrameSamples;
    if (frames <= 0) return std::nullopt;
    for (int mode = kAmrModes - 1; mode >= 0; --mode) {
        const qint64 bytes = kAmrHeaderBytes + frames * amrFrameBytes(mode);
        if (bytes <= maxBytes) return AmrPlan{mode, frames, bytes, false};
    }
    const qint64 fit = (maxBytes - kAmrHeaderBytes) / amrFrameBytes(0);
    if (fit <= 0) return std::nullopt;
    return AmrPlan{0, fit, kAmrHeaderBytes + fit * amrFrameBytes(0), true};
}

QByteArray encodeAmr(const std::vector<qint16>& samples, const AmrPlan& plan) {
    const std::unique_ptr<void, EncoderCloser> encoder(Encoder_Interface_init(0));
    if (!encoder) return {};
    QByteArray out("#!AMR\n");
    out.reserve(qsizetype(plan.bytes));
    std::array<short, kAmrFrameSamples> speech{};
    std::array<unsigned char, 64> frame{};
    for (qint64 f = 0; f < plan.frames; ++f) {
        const size_t from = size_t(f) * kAmrFrameSamples;
        const size_t count =
            from < samples.size() ? std::min<size_t>(kAmrFrameSamples, samples.size() - from) : 0;
        speech.fill(0);
        if (count > 0) std::copy_n(samples.data() + from, count, speech.begin());
        const int bytes = Encoder_Interface_Encode(encoder.get(), static_cast<Mode>(plan.mode), speech.data(),
                                                   frame.data(), 0);
        if (bytes != amrFrameBytes(plan.mode)) return {};
        out.append(reinterpret_cast<const char*>(frame.data()), bytes);
    }
    return out;
}

} // namespace mms
