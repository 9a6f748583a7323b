// Size estimate over long messages, and the export of a 20-slide message against `tar -cf` of the
// same files followed by an fsync.
#include "model/cslide.h"
#include "package/packagewriter.h"
#include "ratioreporter.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

using namespace mms;

namespace {

QString writeFile(const QString& path, qsizetype size, char fill) {
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly)) std::abort();
    f.write(QByteArray(size, fill));
    return path;
}

// A message of `count` slides, each with its own small picture and sound file and a short text.
struct Message {
    QTemporaryDir dir;
    CSlide slides;
    Message(int count, qsizetype pictureSize, qsizetype soundSize) {
        for (int i = 1; i <= count; ++i) {
            const QString pic = writeFile(dir.filePath(QStringLiteral("p%1.jpg").arg(i)), pictureSize, 'p');
            const QString snd = writeFile(dir.filePath(QStringLiteral("s%1.amr").arg(i)), soundSize, 's');
            slides.InsertAtBack(SlideDur::fromText(QStringLiteral("3")), pic, QStringLiteral("Hello there"),
                                snd);
        }
    }
};

void BM_TotalSize(benchmark::State& state) {
    Message message(static_cast<int>(state.range(0)), 2000, 1000);
    for (auto _ : state)
        benchmark::DoNotOptimize(message.slides.getTotalSize({}, {}, QStringLiteral("subject")));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_TotalSize)->Arg(1000)->Arg(32767)->Unit(benchmark::kMillisecond);

// The 20-slide message shared by the two export benchmarks.
struct ExportFixture {
    Message message{20, 60000, 30000};
    QTemporaryDir home;
    QString storedFolder;
    QStringList members;

    ExportFixture() {
        // The members as files on disk, for tar to read: the same package written in store mode.
        message.slides.setfolderpath(QStringLiteral("bench"));
        if (!generateSMIL(message.slides, home.path(), QStringLiteral("subject"))) std::abort();
        storedFolder = home.path() + QStringLiteral("/UserData/MMS/bench");
        members << QStringLiteral("main.smil") << QStringLiteral("texts.xml");
        for (int i = 1; i <= 20; ++i)
            members << QStringLiteral("pic%1.jpg").arg(i) << QStringLiteral("sound%1.amr").arg(i);
        message.slides.setfolderpath(QString());
        message.slides.setfilename(home.path() + QStringLiteral("/upload"));
    }
};

ExportFixture& exportFixture() {
    static ExportFixture fixture;
    return fixture;
}

void BM_Export20Slides(benchmark::State& state) {
    ExportFixture& f = exportFixture();
    for (auto _ : state)
        if (!generateSMIL(f.message.slides, f.home.path(), QStringLiteral("subject")))
            state.SkipWithError("export failed");
}
BENCHMARK(BM_Export20Slides)->Unit(benchmark::kMillisecond)->UseRealTime();

// The peer: `tar -cf` of the same members, then an fsync of the archive, so that both sides end
// with a durable archive.
void BM_TarCfFsync20Slides(benchmark::State& state) {
    ExportFixture& f = exportFixture();
    const QString archive = f.home.path() + QStringLiteral("/tar.tpl");
    for (auto _ : state) {
        QProcess tar;
        tar.setWorkingDirectory(f.storedFolder);
        tar.start(QStringLiteral("tar"), QStringList{QStringLiteral("-cf"), archive} + f.members);
        if (!tar.waitForFinished() || tar.exitCode() != 0) state.SkipWithError("tar -cf failed");
        const int fd = ::open(QFile::encodeName(archive).constData(), O_RDONLY);
        if (fd < 0 || ::fsync(fd) != 0) state.SkipWithError("fsync of the tar archive failed");
        if (fd >= 0) ::close(fd);
    }
}
BENCHMARK(BM_TarCfFsync20Slides)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("ratio export/tar+fsync", "BM_Export20Slides", "BM_TarCfFsync20Slides");
    benchmark::Shutdown();
    return 0;
}
