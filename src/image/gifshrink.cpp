// GIF shrinking: giflib decodes and encodes (its LZW coder and its median-cut colour quantiser);
// the frames are composed onto a canvas first, so every output frame is whole and any disposal of
// the source is already applied.

#include "image/gifshrink.h"

#include "common/fileio.h"
#include "image/picturecheck.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <cstring>
#include <gif_lib.h>
#include <memory>
#include <vector>

namespace mms {

namespace {

using Outcome = GifShrink::Outcome;

// Below this long side a picture says little on a phone: frames are dropped before going smaller.
constexpr int kSmallestUsefulSide = 48;
constexpr int kColourCounts[] = {256, 64, 16};

struct Frame {
    QImage canvas; // ARGB32, the whole screen as shown
    int delay = 0; // hundredths of a second
};

struct Animation {
    QSize size;
    std::vector<Frame> frames;
    int loops = -1; // the NETSCAPE loop count; -1 when there is none
};

struct ReadSource {
    const QByteArray* bytes;
    qsizetype at = 0;
};

int readBytes(GifFileType* gif, GifByteType* out, int n) {
    auto* source = static_cast<ReadSource*>(gif->UserData);
    const int count = int(qMin<qsizetype>(n, source->bytes->size() - source->at));
    std::memcpy(out, source->bytes->constData() + source->at, size_t(count));
    source->at += count;
    return count;
}

int writeBytes(GifFileType* gif, const GifByteType* data, int n) {
    static_cast<QByteArray*>(gif->UserData)->append(reinterpret_cast<const char*>(data), n);
    return n;
}

struct DecoderCloser {
    void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};

int loopCount(const ExtensionBlock* blocks, int count) {
    for (int i = 0; i + 1 < count; ++i) {
        const ExtensionBlock& app = blocks[i];
        const ExtensionBlock& data = blocks[i + 1];
        if (app.Function == APPLICATION_EXT_FUNC_CODE && app.ByteCount == 11 &&
            std::memcmp(app.Bytes, "NETSCAPE2.0", 11) == 0 && data.Function == CONTINUE_EXT_FUNC_CODE &&
            data.ByteCount >= 3 && data.Bytes[0] == 1)
            return data.Bytes[1] | (data.Bytes[2] << 8);
    }
    return -1;
}

// Draws each image onto the screen as a viewer does and keeps the screen after each one.
bool compose(GifFileType* gif, Animation& out, QString& why) {
    out.size = QSize(gif->SWidth, gif->SHeight);
    const qint64 limit = qint64(QImageReader::allocationLimit()) * 1024 * 1024;
    if (out.size.isEmpty() ||
        (limit > 0 && qint64(out.size.width()) * out.size.height() * 4 * gif->ImageCount > limit)) {
        PictureTrouble t;
        t.kind = PictureTrouble::Kind::TooLarge;
        t.size = out.size;
        why = plainReason(t);
        return false;
    }
    QImage screen(out.size, QImage::Format_ARGB32);
    screen.fill(Qt::transparent);
    for (int i = 0; i < gif->ImageCount; ++i) {
        const SavedImage& image = gif->SavedImages[i];
        if (out.loops < 0) out.loops = loopCount(image.ExtensionBlocks, image.ExtensionBlockCount);
        GraphicsControlBlock gcb{DISPOSAL_UNSPECIFIED, false, 0, NO_TRANSPARENT_COLOR};
        DGifSavedExtensionToGCB(gif, i, &gcb);
        const ColorMapObject* map = image.ImageDesc.ColorMap ? image.ImageDesc.ColorMap : gif->SColorMap;
        // A frame whose pixels giflib could not read leaves them null.
        if (!map || !image.RasterBits) {
            why = QStringLiteral("is cut short or damaged");
            return false;
        }
        const QImage before = screen;
        const GifImageDesc& d = image.ImageDesc;
        const QRect area = QRect(d.Left, d.Top, d.Width, d.Height) & screen.rect();
        for (int y = area.top(); y <= area.bottom(); ++y) {
            auto* row = reinterpret_cast<QRgb*>(screen.scanLine(y));
            for (int x = area.left(); x <= area.right(); ++x) {
                const int index = image.RasterBits[qsizetype(y - d.Top) * d.Width + (x - d.Left)];
                if (index == gcb.TransparentColor || index >= map->ColorCount) continue;
                const GifColorType c = map->Colors[index];
                row[x] = qRgb(c.Red, c.Green, c.Blue);
            }
        }
        out.frames.push_back({screen, gcb.DelayTime});
        if (gcb.DisposalMode == DISPOSE_BACKGROUND) {
            for (int y = area.top(); y <= area.bottom(); ++y)
                std::fill_n(reinterpret_cast<QRgb*>(screen.scanLine(y)) + area.left(), area.width(), 0u);
        } else if (gcb.DisposalMode == DISPOSE_PREVIOUS) {
            screen = before;
        }
    }
    if (out.loops < 0) out.loops = loopCount(gif->ExtensionBlocks, gif->ExtensionBlockCount);
    if (out.frames.empty()) why = QStringLiteral("is cut short or damaged");
    return !out.frames.empty();
}

bool decode(const QByteArray& bytes, Animation& out, QString& why) {
    ReadSource source{&bytes};
    int error = 0;
    std::unique_ptr<GifFileType, DecoderCloser> gif(DGifOpen(&source, readBytes, &error));
    if (!gif) {
        why = QStringLiteral("is not a GIF picture");
        return false;
    }
    if (DGifSlurp(gif.get()) != GIF_OK && gif->ImageCount == 0) {
        why = QStringLiteral("is cut short or damaged");
        return false;
    }
    return compose(gif.get(), out, why);
}

// Every k-th frame, each shown for the frames it stands for.
std::vector<Frame> everyKth(const std::vector<Frame>& frames, size_t k) {
    std::vector<Frame> kept;
    for (size_t i = 0; i < frames.size(); ++i) {
        if (i % k == 0) kept.push_back({frames[i].canvas, 0});
        kept.back().delay += frames[i].delay;
    }
    return kept;
}

struct EncoderCloser {
    void operator()(GifFileType* gif) const { EGifCloseFile(gif, nullptr); }
};

// One frame quantised to `colours` (one of them kept for transparency when the frame has any).
bool putFrame(GifFileType* gif, const QImage& frame, int colours, int delay) {
    const int w = frame.width(), h = frame.height();
    const size_t n = size_t(w) * size_t(h);
    std::vector<GifByteType> r(n), g(n), b(n), indices(n);
    bool transparent = false;
    for (int y = 0; y < h; ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(frame.constScanLine(y));
        for (int x = 0; x < w; ++x) {
            const size_t i = size_t(y) * size_t(w) + size_t(x);
            r[i] = GifByteType(qRed(row[x])), g[i] = GifByteType(qGreen(row[x])),
            b[i] = GifByteType(qBlue(row[x]));
            transparent |= qAlpha(row[x]) < 128;
        }
    }
    int size = transparent ? colours - 1 : colours;
    GifColorType palette[256] = {};
    if (GifQuantizeBuffer(unsigned(w), unsigned(h), &size, r.data(), g.data(), b.data(), indices.data(),
                          palette) != GIF_OK)
        return false;
    GraphicsControlBlock gcb{DISPOSE_BACKGROUND, false, delay, NO_TRANSPARENT_COLOR};
    if (transparent) {
        gcb.TransparentColor = colours - 1;
        for (int y = 0; y < h; ++y) {
            const auto* row = reinterpret_cast<const QRgb*>(frame.constScanLine(y));
            for (int x = 0; x < w; ++x)
                if (qAlpha(row[x]) < 128)
                    indices[size_t(y) * size_t(w) + size_t(x)] = GifByteType(colours - 1);
        }
    }
    GifByteType extension[4];
    const size_t length = EGifGCBToExtension(&gcb, extension);
    std::unique_ptr<ColorMapObject, decltype(&GifFreeMapObject)> map(GifMakeMapObject(colours, palette),
                                                                     GifFreeMapObject);
    if (!map || EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, int(length), extension) != GIF_OK ||
        EGifPutImageDesc(gif, 0, 0, w, h, false, map.get()) != GIF_OK)
        return false;
    for (int y = 0; y < h; ++y)
        if (EGifPutLine(gif, indices.data() + size_t(y) * size_t(w), w) != GIF_OK) return false;
    return true;
}

bool encode(const std::vector<Frame>& frames, QSize size, int colours, int loops, QByteArray& out) {
    out.clear();
    int error = 0;
    std::unique_ptr<GifFileType, EncoderCloser> gif(EGifOpen(&out, writeBytes, &error));
    if (!gif) return false;
    EGifSetGifVersion(gif.get(), true);
    if (EGifPutScreenDesc(gif.get(), size.width(), size.height(), 8, 0, nullptr) != GIF_OK) return false;
    if (loops >= 0) {
        const GifByteType loop[3] = {1, GifByteType(loops & 0xFF), GifByteType(loops >> 8)};
        if (EGifPutExtensionLeader(gif.get(), APPLICATION_EXT_FUNC_CODE) != GIF_OK ||
            EGifPutExtensionBlock(gif.get(), 11, "NETSCAPE2.0") != GIF_OK ||
            EGifPutExtensionBlock(gif.get(), 3, loop) != GIF_OK ||
            EGifPutExtensionTrailer(gif.get()) != GIF_OK)
            return false;
    }
    for (const Frame& frame : frames) {
        const QImage scaled = frame.canvas.size() == size
                                  ? frame.canvas
                                  : frame.canvas.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                                        .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                        .convertToFormat(QImage::Format_ARGB32);
        if (scaled.isNull() || !putFrame(gif.get(), scaled, colours, frame.delay)) return false;
    }
    return EGifCloseFile(gif.release(), &error) == GIF_OK;
}

class Shrinker {
public:
    Shrinker(const Animation& animation, QString name, qint64 maxBytes, const std::atomic<bool>* cancel)
        : a_(animation), name_(std::move(name)), maxBytes_(maxBytes), cancel_(cancel),
          long_(qMax(a_.size.width(), a_.size.height())), short_(qMin(a_.size.width(), a_.size.height())) {}

    GifShrink run() {
        GifShrink result;
        const size_t count = a_.frames.size();
        for (size_t k = 1; k <= count; ++k) {
            // Only steps that change the number of frames kept are worth a try.
            if (k > 1 && (count + k - 1) / k == (count + k - 2) / (k - 1)) continue;
            const std::vector<Frame> frames = everyKth(a_.frames, k);
            const int floor = (k < count) ? qMin(long_, kSmallestUsefulSide) : 1;
            for (int colours : kColourCounts) {
                if (Outcome o = largestFit(frames, colours, floor, result); o != Outcome::NoFit)
                    return result;
            }
        }
        result.outcome = Outcome::NoFit;
        result.message =
            QStringLiteral("%1: even one frame of 1 pixel in 16 colours takes more than %2 bytes")
                .arg(name_)
                .arg(maxBytes_);
        return result;
    }

private:
    QSize sizeFor(int longSide) const {
        if (longSide >= long_) return a_.size;
        const int shortSide = qMax(1, qRound(double(short_) * longSide / long_));
        return a_.size.width() >= a_.size.height() ? QSize(longSide, shortSide) : QSize(shortSide, longSide);
    }

    // Halves the range of long sides from floor to the full side; the largest that fits wins.
    Outcome largestFit(const std::vector<Frame>& frames, int colours, int floor, GifShrink& result) {
        int lo = floor - 1, hi = long_ + 1;
        QByteArray best, trial;
        while (hi - lo > 1) {
            if (cancel_ && cancel_->load()) return result.outcome = Outcome::Cancelled;
            const int side = lo + (hi - lo + 1) / 2;
            if (!encode(frames, sizeFor(side), colours, a_.loops, trial)) {
                result.message = QStringLiteral("%1: the GIF could not be encoded").arg(name_);
                return result.outcome = Outcome::Failed;
            }
            if (trial.size() <= maxBytes_) {
                lo = side;
                best = trial;
            } else {
                hi = side;
            }
        }
        if (best.isEmpty()) return Outcome::NoFit;
        result.outcome = Outcome::Fitted;
        result.gif = best;
        result.size = sizeFor(lo);
        result.frames = int(frames.size());
        return result.outcome;
    }

    const Animation& a_;
    const QString name_;
    const qint64 maxBytes_;
    const std::atomic<bool>* cancel_;
    const int long_, short_;
};

} // namespace

GifShrink shrinkGif(const QByteArray& bytes, const QString& name, qint64 maxBytes,
                    const std::atomic<bool>* cancel) {
    GifShrink result;
    Animation animation;
    QString why;
    if (!decode(bytes, animation, why)) {
        result.message = QStringLiteral("'%1' %2").arg(QDir::toNativeSeparators(name), why);
        return result;
    }
    return Shrinker(animation, QDir::toNativeSeparators(name), maxBytes, cancel).run();
}

GifShrink shrinkGifToFile(const QString& source, const QString& target, qint64 maxBytes,
                          const std::atomic<bool>* cancel) {
    GifShrink result;
    QFile file(source);
    if (!QFileInfo(source).isFile() || !file.open(QIODevice::ReadOnly)) {
        result.message =
            QStringLiteral("'%1' cannot be read (%2)")
                .arg(QDir::toNativeSeparators(source),
                     QFileInfo::exists(source) ? file.errorString() : QStringLiteral("no such file"));
        return result;
    }
    result = shrinkGif(file.readAll(), source, maxBytes, cancel);
    if (!result.fitted()) return result;
    if (Status written = fileio::writeFileSafely(target, result.gif); !written) {
        result.outcome = Outcome::Failed;
        result.message = written.message();
    }
    return result;
}

} // namespace mms
