// Sound conversion against the peer tool, on a three-minute stereo MP3 made once with ffmpeg into the
// build folder (bench_data/sound, or $MMS_BENCH_DATA/sound):
//   mp3-to-amr/ours          the whole file to AMR at 12.2 kbit/s (decode, resample to 8 kHz mono, encode)
//   mp3-to-amr/gst-launch    `gst-launch-1.0 filesrc ! decodebin ! audioconvert ! audioresample !
//                            audio/x-raw,rate=8000,channels=1 ! amrnbenc ! filesink`, the same work
//   fit/ours                 the same file under the 102399-byte limit (the first 157.5 s at 4.75 kbit/s)
// The last line is our time over gst-launch's, from the same run: at most 1 is the aim.
#include "benchdata.h"
#include "ratioreporter.h"
#include "sound/soundconversion.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <benchmark/benchmark.h>

namespace {

QString dataFolder() {
    return bench::dataFolder(QStringLiteral("sound"));
}

QString song() {
    return dataFolder() + QStringLiteral("/song.mp3");
}

// Two voices that move, so the encoders see a changing signal rather than one steady tone.
bool ensureSong() {
    if (QFileInfo::exists(song())) return true;
    QDir().mkpath(dataFolder());
    return bench::runTool(
        QStringLiteral("ffmpeg"),
        {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y"), QStringLiteral("-f"),
         QStringLiteral("lavfi"), QStringLiteral("-i"),
         QStringLiteral("aevalsrc=0.4*sin(2*PI*(220+40*sin(t))*t)+0.2*sin(2*PI*(330+3*t)*t)|"
                        "0.3*sin(2*PI*440*t)*sin(PI*t/3):s=44100:d=180"),
         QStringLiteral("-b:a"), QStringLiteral("192k"), song()});
}

void ours(benchmark::State& state, qint64 maxBytes, const char* name) {
    const QString out = dataFolder() + QLatin1Char('/') + QLatin1String(name);
    mms::SoundConversion sound;
    for (auto _ : state) {
        sound = mms::convertSoundToAmrFile(song(), out, 0, std::nullopt, maxBytes);
        if (!sound.fitted()) return state.SkipWithError(qPrintable(sound.message));
    }
    state.counters["seconds"] = sound.seconds;
    state.counters["bytes"] = double(sound.amr.size());
}

void gstLaunch(benchmark::State& state) {
    const QString gst = QStandardPaths::findExecutable(QStringLiteral("gst-launch-1.0"));
    if (gst.isEmpty()) return state.SkipWithError("gst-launch-1.0 is not installed (gstreamer1.0-tools)");
    const QString out = dataFolder() + QStringLiteral("/gst.amr");
    const QStringList pipeline =
        QStringLiteral("-q filesrc location=%1 ! decodebin ! audioconvert ! audioresample ! "
                       "audio/x-raw,rate=8000,channels=1 ! amrnbenc ! filesink location=%2")
            .arg(song(), out)
            .split(QLatin1Char(' '));
    for (auto _ : state)
        if (!bench::runTool(gst, pipeline))
            return state.SkipWithError("the pipeline failed (needs gstreamer1.0-plugins-good and -ugly)");
    state.counters["bytes"] = double(QFileInfo(out).size());
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (!ensureSong()) {
        std::fprintf(stderr, "bench_sound: cannot make %s (needs ffmpeg)\n", qPrintable(song()));
        return 1;
    }
    benchmark::RegisterBenchmark("mp3-to-amr/ours", ours, qint64(1) << 30, "whole.amr")
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(5);
    benchmark::RegisterBenchmark("mp3-to-amr/gst-launch", gstLaunch)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(5);
    benchmark::RegisterBenchmark("fit/ours", ours, qint64(102399), "fit.amr")
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(5);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("\nratio 3-minute MP3 to AMR, ours / gst-launch", "mp3-to-amr/ours",
                        "mp3-to-amr/gst-launch");
    benchmark::Shutdown();
    return 0;
}
