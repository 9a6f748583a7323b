#include "image/jpegtranscode.h"

#include <QImageReader>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>
#include <limits>
#include <vector>

namespace mms {

namespace {

// Rows handed from the decoder to the encoder at a time: one band of 4:2:0 output.
constexpr int kBandRows = 16;

// libjpeg reports fatal errors by calling error_exit, which must not return: it jumps back to the
// stage that started the work. Warnings (data cut short, say) are noted and the work goes on, as
// TurboJPEG goes on.
struct ErrorManager {
    jpeg_error_mgr pub;
    std::jmp_buf escape;
};

void escape(j_common_ptr info) {
    std::longjmp(reinterpret_cast<ErrorManager*>(info->err)->escape, 1);
}
void quiet(j_common_ptr) {}

// Both codecs and what they allocate; destroyed however the work ends.
struct Codecs {
    Codecs() {
        decoder.err = encoder.err = jpeg_std_error(&errors.pub);
        errors.pub.error_exit = escape;
        errors.pub.output_message = quiet;
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
    ErrorManager errors{}; // shared: either codec's failure ends the work
    bool decoderMade = false;
    bool encoderMade = false;
    unsigned char* out = nullptr; // the encoder's output, grown by libjpeg with malloc
    unsigned long outSize = 0;
    std::vector<JSAMPLE> band;
};

// The two stages below jump back here on a fatal error; they hold nothing that needs destroying.
bool readHeader(Codecs& k, const unsigned char* data, unsigned long size) {
    if (setjmp(k.errors.escape)) return false;
    jpeg_create_decompress(&k.decoder);
    k.decoderMade = true;
    jpeg_mem_src(&k.decoder, data, size);
    jpeg_read_header(&k.decoder, TRUE);
    return k.decoder.image_width > 0 && k.decoder.image_height > 0;
}

bool convert(Codecs& k, int quality) {
    if (setjmp(k.errors.escape)) return false;
    jpeg_decompress_struct& d = k.decoder;
    d.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&d);

    jpeg_compress_struct& c = k.encoder;
    jpeg_create_compress(&c);
    k.encoderMade = true;
    jpeg_mem_dest(&c, &k.out, &k.outSize);
    c.image_width = d.output_width;
    c.image_height = d.output_height;
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
    const size_t stride = size_t(d.output_width) * 3;
    for (int i = 0; i < kBandRows; ++i)
        rows[i] = k.band.data() + stride * size_t(i);
    while (d.output_scanline < d.output_height) {
        const JDIMENSION got = jpeg_read_scanlines(&d, rows, kBandRows);
        jpeg_write_scanlines(&c, rows, got);
    }
    jpeg_finish_decompress(&d);
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
    if (!readHeader(k, data, static_cast<unsigned long>(bytes.size()))) return Status::ok();
    const jpeg_decompress_struct& d = k.decoder;
    if (d.jpeg_color_space == JCS_CMYK || d.jpeg_color_space == JCS_YCCK) return Status::ok();
    const qint64 width = d.image_width, height = d.image_height;
    // The same ceiling as the general reader's, so a hostile header cannot claim gigabytes.
    const qint64 limit = qint64(QImageReader::allocationLimit()) * 1024 * 1024;
    if (limit > 0 && width * height * 3 > limit)
        return Status::failure(
            QStringLiteral("the picture is too large to convert (%1 by %2 pixels)").arg(width).arg(height));
    k.band.resize(size_t(width) * 3 * kBandRows);

    if (!convert(k, quality)) return Status::ok();
    if (k.outSize >= static_cast<unsigned long>(std::numeric_limits<int>::max()))
        return Status::failure(QStringLiteral("The JPEG is too large to keep in memory."));
    jpeg = QByteArray(reinterpret_cast<const char*>(k.out), qsizetype(k.outSize));
    return Status::ok();
}

} // namespace mms
