#include "image/jpegtranscode.h"

#include <QImageReader>
#include <condition_variable>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>
#include <limits>
#include <mutex>
#include <thread>
#include <vector>

namespace mms {

namespace {

// Rows handed from the decoder to the encoder at a time (one band of 4:2:0 output), and the bands
// in flight: enough that neither side waits on the other's uneven pace.
constexpr int kBandRows = 16;
constexpr int kBands = 8;

// libjpeg reports fatal errors by calling error_exit, which must not return: it jumps back to the
// stage that started the work, on the thread that runs it. Warnings (data cut short, say) are not
// errors and the work goes on, as TurboJPEG goes on.
struct ErrorManager {
    jpeg_error_mgr pub;
    std::jmp_buf escape;
};

void escape(j_common_ptr info) {
    std::longjmp(reinterpret_cast<ErrorManager*>(info->err)->escape, 1);
}
void quiet(j_common_ptr) {}

// The decoder fills bands on its own thread while the encoder empties them on the caller's: the two
// halves of the work overlap, and a band is still in the cache when it is encoded.
class BandRing {
public:
    explicit BandRing(size_t rowBytes) : rowBytes_(rowBytes), pixels_(rowBytes * kBandRows * kBands) {}

    // Decoder side: the rows of the next free band, or nothing once the encoder has given up.
    JSAMPLE* freeBand() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return stopped_ || produced_ - consumed_ < kBands; });
        return stopped_ ? nullptr : band(produced_);
    }
    void filled(int rows) {
        const std::lock_guard lock(mutex_);
        rows_[produced_ % kBands] = rows;
        ++produced_;
        changed_.notify_all();
    }
    void finish(bool decoded) {
        const std::lock_guard lock(mutex_);
        finished_ = true;
        decoded_ = decoded;
        changed_.notify_all();
    }

    // Encoder side: the next band and its row count, or 0 rows at the end of the decoding.
    JSAMPLE* nextBand(int& rows) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return produced_ > consumed_ || finished_; });
        rows = produced_ > consumed_ ? rows_[consumed_ % kBands] : 0;
        return band(consumed_);
    }
    void consumed() {
        const std::lock_guard lock(mutex_);
        ++consumed_;
        changed_.notify_all();
    }
    void stop() {
        const std::lock_guard lock(mutex_);
        stopped_ = true;
        changed_.notify_all();
    }
    bool decoded() const {
        const std::lock_guard lock(mutex_);
        return decoded_;
    }
    size_t rowBytes() const { return rowBytes_; }

private:
    JSAMPLE* band(qint64 index) { return pixels_.data() + rowBytes_ * kBandRows * size_t(index % kBands); }

    const size_t rowBytes_;
    std::vector<JSAMPLE> pixels_;
    int rows_[kBands] = {};
    qint64 produced_ = 0, consumed_ = 0;
    bool finished_ = false, decoded_ = false, stopped_ = false;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
};

// Both codecs and what they allocate; destroyed however the work ends.
struct Codecs {
    Codecs() {
        decoder.err = jpeg_std_error(&decoderErrors.pub);
        encoder.err = jpeg_std_error(&encoderErrors.pub);
        for (ErrorManager* errors : {&decoderErrors, &encoderErrors}) {
            errors->pub.error_exit = escape;
            errors->pub.output_message = quiet;
        }
    }
    ~Codecs() {
        if (decoderMade) jpeg_destroy_decompress(&decoder);
        if (encoderMade) jpeg_destroy_compress(&encoder);
        std::free(out);
    }
    Codecs(const Codecs&) = delete;
    Codecs& operator=(const Codecs&) = delete;

    jpeg_decompress_struct decoder{};
    jpeg_compress_struct encoder{};
    ErrorManager decoderErrors{};
    ErrorManager encoderErrors{};
    bool decoderMade = false;
    bool encoderMade = false;
    unsigned char* out = nullptr; // the encoder's output, grown by libjpeg with malloc
    unsigned long outSize = 0;
};

// The stages below are where a fatal error jumps back to; they hold nothing that needs destroying.
bool startDecoding(Codecs& k, const unsigned char* data, unsigned long size) {
    if (setjmp(k.decoderErrors.escape)) return false;
    jpeg_create_decompress(&k.decoder);
    k.decoderMade = true;
    jpeg_mem_src(&k.decoder, data, size);
    jpeg_read_header(&k.decoder, TRUE);
    return k.decoder.image_width > 0 && k.decoder.image_height > 0 &&
           k.decoder.jpeg_color_space != JCS_CMYK && k.decoder.jpeg_color_space != JCS_YCCK;
}

// Accurate DCT and smooth upsampling, libjpeg's defaults, as TurboJPEG decodes.
bool decode(Codecs& k, BandRing& ring) {
    if (setjmp(k.decoderErrors.escape)) return false;
    jpeg_decompress_struct& d = k.decoder;
    d.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&d);
    JSAMPROW rows[kBandRows];
    while (d.output_scanline < d.output_height) {
        JSAMPLE* band = ring.freeBand();
        if (!band) return false;
        int got = 0;
        while (got < kBandRows && d.output_scanline < d.output_height) {
            for (int i = got; i < kBandRows; ++i)
                rows[i] = band + ring.rowBytes() * size_t(i);
            got += int(jpeg_read_scanlines(&d, rows + got, JDIMENSION(kBandRows - got)));
        }
        ring.filled(got);
    }
    jpeg_finish_decompress(&d);
    return true;
}

bool encode(Codecs& k, BandRing& ring, JDIMENSION width, JDIMENSION height, int quality) {
    if (setjmp(k.encoderErrors.escape)) return false;
    jpeg_compress_struct& c = k.encoder;
    jpeg_create_compress(&c);
    k.encoderMade = true;
    jpeg_mem_dest(&c, &k.out, &k.outSize);
    c.image_width = width;
    c.image_height = height;
    c.in_color_space = JCS_EXT_BGR;
    c.input_components = 3;
    // encodeJpeg's setting through TurboJPEG: its tables at the quality, the fast DCT below 96,
    // YCbCr with chroma halved both ways, baseline.
    jpeg_set_defaults(&c);
    jpeg_set_quality(&c, quality, TRUE);
    c.dct_method = quality >= 96 ? JDCT_ISLOW : JDCT_IFAST;
    jpeg_set_colorspace(&c, JCS_YCbCr);
    c.comp_info[0].h_samp_factor = 2;
    c.comp_info[0].v_samp_factor = 2;
    for (int i = 1; i < 3; ++i)
        c.comp_info[i].h_samp_factor = c.comp_info[i].v_samp_factor = 1;
    jpeg_start_compress(&c, TRUE);

    JSAMPROW rows[kBandRows];
    int got = 0;
    for (JSAMPLE* band = ring.nextBand(got); got > 0; band = ring.nextBand(got)) {
        for (int i = 0; i < got; ++i)
            rows[i] = band + ring.rowBytes() * size_t(i);
        jpeg_write_scanlines(&c, rows, JDIMENSION(got));
        ring.consumed();
    }
    if (!ring.decoded() || c.next_scanline < c.image_height) return false;
    jpeg_finish_compress(&c);
    return true;
}

} // namespace

Status transcodeJpeg(const QByteArray& bytes, int quality, QByteArray& jpeg) {
    jpeg.clear();
    if (bytes.size() < 4 || quint8(bytes[0]) != 0xFF || quint8(bytes[1]) != 0xD8) return Status::ok();
    if (quality < 1 || quality > 100)
        return Status::failure(QStringLiteral("JPEG quality %1 is outside 1 to 100.").arg(quality));

    Codecs k;
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
    if (!startDecoding(k, data, static_cast<unsigned long>(bytes.size()))) return Status::ok();
    const JDIMENSION width = k.decoder.image_width, height = k.decoder.image_height;
    // The same ceiling as the general reader's, so a hostile header cannot claim gigabytes.
    const qint64 limit = qint64(QImageReader::allocationLimit()) * 1024 * 1024;
    if (limit > 0 && qint64(width) * height * 3 > limit)
        return Status::failure(
            QStringLiteral("the picture is too large to convert (%1 by %2 pixels)").arg(width).arg(height));

    BandRing ring(size_t(width) * 3);
    std::thread decoder([&k, &ring] { ring.finish(decode(k, ring)); });
    const bool encoded = encode(k, ring, width, height, quality);
    ring.stop(); // a decoder still waiting for room gives up
    decoder.join();
    if (!encoded) return Status::ok();
    if (k.outSize >= static_cast<unsigned long>(std::numeric_limits<int>::max()))
        return Status::failure(QStringLiteral("The JPEG is too large to keep in memory."));
    jpeg = QByteArray(reinterpret_cast<const char*>(k.out), qsizetype(k.outSize));
    return Status::ok();
}

} // namespace mms
