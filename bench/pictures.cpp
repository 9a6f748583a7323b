// Picture panel listing and JPEG re-encoding against the usual command-line tools, on camera-sized
// pictures generated once into the build folder (bench_data/pictures, or $MMS_BENCH_DATA).
//
//   panel/ours             the panel's thumbnail loader over 100 pictures of 3000 by 2000
//   panel/imagemagick      `convert FILE -thumbnail 40x40 OUT.png` for each of the same files
//   reencode/ours          one 4000 by 3000 photograph re-encoded at quality 35 (rows streamed from
//                          the decoder, on a thread of its own, to the encoder)
//   reencode/djpeg_cjpeg   `djpeg IN | cjpeg -quality 35 > OUT` on the same photograph
//   fit/reencode           a 13 MP phone photograph (3120 by 4208 upright, stored turned with an EXIF
//                          orientation, about 3.2 MB) re-encoded at quality 35 at its own size
//   fit/ours               the same photograph fitted under 102400 bytes
//
// The fit's time against the same-size re-encode's is printed at the end (the fit must stay within
// twice that), then the ratios against the tools (tool time / our time), the re-encode's last.

#include "benchdata.h"
#include "image/jpegwriter.h"
#include "image/picturefit.h"
#include "image/thumbnailloader.h"
#include "ratioreporter.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <atomic>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <map>
#include <thread>
#include <vector>

namespace {

constexpr int kPictures = 100;
const QSize kCameraSize(3000, 2000);
const QSize kPhotographSize(4000, 3000);

using bench::dataFolder;
using bench::runTool;

QString pictureFolder() {
    return dataFolder() + QStringLiteral("/pictures");
}
QString photograph() {
    return dataFolder() + QStringLiteral("/photograph.jpg");
}
QString phonePhotograph() {
    return dataFolder() + QStringLiteral("/phone.jpg");
}
QString scratchFolder() {
    return dataFolder() + QStringLiteral("/scratch");
}

// Smooth colour fields with sensor-like noise: compresses like a photograph, not like a flat fill.
QImage cameraPicture(QSize size, quint32 seed) {
    QImage image(size, QImage::Format_RGB32);
    quint32 state = seed * 2654435761u + 1;
    const int w = size.width(), h = size.height();
    for (int y = 0; y < h; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < w; ++x) {
            state = state * 1664525u + 1013904223u;
            const int n = int(state >> 28) - 8;
            const int r = (x * 255 / w + int(seed * 37)) % 256;
            const int g = (y * 255 / h + int(seed * 11)) % 256;
            const int b = ((x + y) * 255 / (w + h) + int(seed * 53)) % 256;
            line[x] = qRgb(qBound(0, r + n, 255), qBound(0, g + n, 255), qBound(0, b + n, 255));
        }
    }
    return image;
}

// Detail at every scale, as in a photograph: value noise whose octaves weaken as they get finer,
// a few sharp-edged shapes, and sensor noise.
QImage phonePicture(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    const int w = size.width(), h = size.height();
    std::vector<float> value(size_t(w) * h, 0.f);
    quint32 state = 12345;
    const auto next = [&state] {
        state = state * 1664525u + 1013904223u;
        return float(state >> 8) / float(1 << 24);
    };
    for (int cell = 512; cell >= 4; cell /= 2) {
        const int gw = w / cell + 2, gh = h / cell + 2;
        std::vector<float> grid(size_t(gw) * gh);
        for (float& g : grid)
            g = next() - 0.5f;
        const float amplitude = 160.f * std::pow(float(cell) / 512.f, 0.55f);
        for (int y = 0; y < h; ++y) {
            const float fy = float(y) / cell;
            const int gy = int(fy);
            const float ty = fy - gy;
            for (int x = 0; x < w; ++x) {
                const float fx = float(x) / cell;
                const int gx = int(fx);
                const float tx = fx - gx;
                const float* g0 = &grid[size_t(gy) * gw + gx];
                const float* g1 = g0 + gw;
                const float top = g0[0] + (g0[1] - g0[0]) * tx, bottom = g1[0] + (g1[1] - g1[0]) * tx;
                value[size_t(y) * w + x] += amplitude * (top + (bottom - top) * ty);
            }
        }
    }
    for (int y = 0; y < h; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < w; ++x) {
            const float v = 128.f + value[size_t(y) * w + x] + (next() - 0.5f) * 6.f;
            line[x] = qRgb(qBound(0, int(v + 20), 255), qBound(0, int(v), 255),
                           qBound(0, int(v * 0.7f + float(y) * 60.f / h), 255));
        }
    }
    QPainter painter(&image);
    for (int i = 0; i < 40; ++i) {
        painter.setBrush(QColor::fromHsv(int(next() * 359), 120, 80 + int(next() * 150)));
        painter.setPen(Qt::NoPen);
        const QRect r(int(next() * w), int(next() * h), 50 + int(next() * w / 5), 50 + int(next() * h / 5));
        i % 2 ? painter.drawEllipse(r) : painter.drawRect(r);
    }
    return image;
}

// An EXIF block that says the stored pixels are to be turned a quarter clockwise (orientation 6).
QByteArray withTurnedOrientation(const QByteArray& jpeg) {
    const QByteArray exif = QByteArray::fromHex("ffe10022"
                                                "457869660000"
                                                "49492a0008000000"
                                                "0100"
                                                "120103000100000006000000"
                                                "00000000");
    return jpeg.left(2) + exif + jpeg.mid(2);
}

void ensureData() {
    QDir().mkpath(pictureFolder());
    QDir().mkpath(scratchFolder());
    std::atomic<int> next{0};
    auto work = [&next] {
        for (int i = next++; i < kPictures; i = next++) {
            const QString path =
                pictureFolder() + QStringLiteral("/camera%1.jpg").arg(i, 3, 10, QLatin1Char('0'));
            if (!QFileInfo::exists(path)) cameraPicture(kCameraSize, quint32(i)).save(path, "JPG", 90);
        }
    };
    std::vector<std::thread> workers;
    for (int t = 0; t < 2; ++t)
        workers.emplace_back(work);
    for (auto& worker : workers)
        worker.join();
    if (!QFileInfo::exists(photograph())) cameraPicture(kPhotographSize, 1000).save(photograph(), "JPG", 92);
    if (!QFileInfo::exists(phonePhotograph())) {
        QByteArray jpeg;
        QBuffer buffer(&jpeg);
        buffer.open(QIODevice::WriteOnly);
        phonePicture(QSize(4208, 3120)).save(&buffer, "JPG", 97);
        QFile out(phonePhotograph());
        if (out.open(QIODevice::WriteOnly)) out.write(withTurnedOrientation(jpeg));
    }
}

QString tool(const char* name) {
    // The real ImageMagick binary, not a wrapper earlier in PATH.
    const QString system = QStringLiteral("/usr/bin/") + QLatin1String(name);
    return QFileInfo::exists(system) ? system : QStandardPaths::findExecutable(QLatin1String(name));
}

void panelOurs(benchmark::State& state) {
    mms::ThumbnailLoader loader;
    int delivered = 0;
    QObject context;
    QObject::connect(&loader, &mms::ThumbnailLoader::finished, &context,
                     [&delivered](int n) { delivered = n; });
    for (auto _ : state) {
        QEventLoop loop;
        QObject::connect(&loader, &mms::ThumbnailLoader::finished, &loop, &QEventLoop::quit);
        loader.start(pictureFolder(), 0);
        loop.exec();
    }
    if (delivered != kPictures) state.SkipWithError("not every picture was listed");
    state.counters["pictures"] = delivered;
}

void panelImageMagick(benchmark::State& state) {
    const QString convert = tool("convert");
    if (convert.isEmpty()) return state.SkipWithError("ImageMagick's convert is not installed");
    const QStringList files =
        QDir(pictureFolder()).entryList({QStringLiteral("*.jpg")}, QDir::Files, QDir::Name);
    for (auto _ : state) {
        for (int i = 0; i < files.size(); ++i) {
            const QString out = scratchFolder() + QStringLiteral("/thumb%1.png").arg(i);
            if (!runTool(convert, {QDir(pictureFolder()).filePath(files[i]), QStringLiteral("-thumbnail"),
                                   QStringLiteral("40x40"), out}))
                return state.SkipWithError("convert failed");
        }
    }
    state.counters["pictures"] = double(files.size());
}

void reencodeOurs(benchmark::State& state) {
    const QString out = scratchFolder() + QStringLiteral("/ours.jpg");
    for (auto _ : state)
        if (!mms::reencodeAsJpeg(photograph(), out, mms::kJpegQuality).isOk())
            return state.SkipWithError("re-encoding failed");
    state.counters["bytes"] = double(QFileInfo(out).size());
}

void reencodeDjpegCjpeg(benchmark::State& state) {
    const QString djpeg = tool("djpeg"), cjpeg = tool("cjpeg");
    if (djpeg.isEmpty() || cjpeg.isEmpty())
        return state.SkipWithError("libjpeg-turbo-progs is not installed");
    const QString out = scratchFolder() + QStringLiteral("/tools.jpg");
    const QString pipeline =
        QStringLiteral("'%1' '%2' | '%3' -quality 35 > '%4'").arg(djpeg, photograph(), cjpeg, out);
    for (auto _ : state)
        if (!runTool(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), pipeline}))
            return state.SkipWithError("djpeg | cjpeg failed");
    state.counters["bytes"] = double(QFileInfo(out).size());
}

void fitReencode(benchmark::State& state) {
    const QString out = scratchFolder() + QStringLiteral("/same-size.jpg");
    for (auto _ : state)
        if (!mms::reencodeAsJpeg(phonePhotograph(), out, mms::kJpegQuality).isOk())
            return state.SkipWithError("re-encoding failed");
    state.counters["bytes"] = double(QFileInfo(out).size());
}

void fitOurs(benchmark::State& state) {
    const QString out = scratchFolder() + QStringLiteral("/fitted.jpg");
    mms::FitResult fit;
    for (auto _ : state)
        if (!(fit = mms::fitPictureToFile(phonePhotograph(), out)).fitted())
            return state.SkipWithError("fitting failed");
    state.counters["bytes"] = double(fit.jpeg.size());
    state.counters["width"] = fit.size.width();
    state.counters["height"] = fit.size.height();
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ensureData();
    benchmark::RegisterBenchmark("panel/ours", panelOurs)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(5);
    benchmark::RegisterBenchmark("panel/imagemagick", panelImageMagick)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(1);
    benchmark::RegisterBenchmark("reencode/ours", reencodeOurs)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(5);
    benchmark::RegisterBenchmark("reencode/djpeg_cjpeg", reencodeDjpegCjpeg)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(5);
    benchmark::RegisterBenchmark("fit/reencode", fitReencode)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(10);
    benchmark::RegisterBenchmark("fit/ours", fitOurs)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(10);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("\nratio fit/same-size re-encode of a 13 MP phone JPEG", "fit/ours", "fit/reencode");
    std::printf("\nRatios (tool time / our time; above 1 means we are faster):\n");
    reporter.printRatio("100 thumbnails, convert -thumbnail 40x40 / ours", "panel/imagemagick", "panel/ours");
    reporter.printRatio("re-encode, djpeg | cjpeg -quality 35 / ours", "reencode/djpeg_cjpeg",
                        "reencode/ours");
    benchmark::Shutdown();
    return 0;
}
