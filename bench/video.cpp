// Fitting a phone video into a clip against one pass of the peer tool, on a 30-second 720p H.264
// video with sound made once with ffmpeg into the build folder (bench_data/video, or
// $MMS_BENCH_DATA/video):
//   fit/ours              the whole video into a clip under 102399 bytes: read once, then the frame
//                         rate, size and quantizer searched by measuring each encoding
//   fit/ffmpeg-one-pass   `ffmpeg -i IN -an -vf scale=W:H -r RATE -c:v h263 -q:v Q OUT.3gp` writing the
//                         video track of the size, rate and quantizer ours chose, once
// The last line is our time over ffmpeg's, from the same run: at most 2 is the aim.
#include "benchdata.h"
#include "ratioreporter.h"
#include "video/clipconversion.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <benchmark/benchmark.h>

namespace {

QString dataFolder() {
    return bench::dataFolder(QStringLiteral("video"));
}

QString phoneVideo() {
    return dataFolder() + QStringLiteral("/phone.mp4");
}

bool ensureVideo() {
    if (QFileInfo::exists(phoneVideo())) return true;
    QDir().mkpath(dataFolder());
    return bench::runTool(
        QStringLiteral("ffmpeg"),
        QStringLiteral("-v error -y -f lavfi -i testsrc2=size=1280x720:rate=30:duration=30 -f lavfi -i "
                       "sine=frequency=440:duration=30 -c:v libx264 -preset fast -pix_fmt yuv420p -c:a aac "
                       "-shortest %1")
            .arg(phoneVideo())
            .split(QLatin1Char(' ')));
}

mms::ClipConversion chosen;

void ours(benchmark::State& state) {
    const QString out = dataFolder() + QStringLiteral("/ours.3gp");
    for (auto _ : state) {
        chosen = mms::convertVideoToClipFile(phoneVideo(), out, 0, std::nullopt, 102399);
        if (!chosen.fitted()) return state.SkipWithError(qPrintable(chosen.message));
    }
    state.counters["seconds"] = chosen.seconds;
    state.counters["bytes"] = double(chosen.clip.size());
    state.counters["fps"] = chosen.rate;
    state.counters["q"] = chosen.quantizer;
}

void ffmpegOnePass(benchmark::State& state) {
    if (!chosen.fitted()) return state.SkipWithError("ours did not run first");
    const QString out = dataFolder() + QStringLiteral("/ffmpeg.3gp");
    const QStringList args =
        QStringLiteral("-v error -y -i %1 -an -t %2 -vf scale=%3:%4 -r %5 -c:v h263 -q:v %6 %7")
            .arg(phoneVideo())
            .arg(chosen.seconds)
            .arg(chosen.size.width())
            .arg(chosen.size.height())
            .arg(chosen.rate)
            .arg(chosen.quantizer)
            .arg(out)
            .split(QLatin1Char(' '));
    for (auto _ : state)
        if (!bench::runTool(QStringLiteral("ffmpeg"), args)) return state.SkipWithError("ffmpeg failed");
    state.counters["bytes"] = double(QFileInfo(out).size());
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (!ensureVideo()) {
        std::fprintf(stderr, "bench_video: cannot make %s (needs ffmpeg)\n", qPrintable(phoneVideo()));
        return 1;
    }
    benchmark::RegisterBenchmark("fit/ours", ours)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(3);
    benchmark::RegisterBenchmark("fit/ffmpeg-one-pass", ffmpegOnePass)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(3);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("\nratio fitting a 30 s 720p video, ours / one ffmpeg pass", "fit/ours",
                        "fit/ffmpeg-one-pass");
    benchmark::Shutdown();
    return 0;
}
