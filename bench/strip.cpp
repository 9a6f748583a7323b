// The composer window with a large message: adding, removing and moving a slide in the middle of
// the strip, showing a slide, and one keystroke in the text box (its commit and the size counter),
// at 2,000 slides. Argument 0: slides without media. Argument 1: every slide carries a picture and a
// sound file. The counter comes from the list's running total, so a keystroke reads no file length;
// BM_SizeRecount shows what counting from scratch would cost (4,000 file lengths), and
// BM_RemeasureLongest the measuring of every media file of a 32,767-slide message that Save, Export
// and the window's return to the front do. Each window figure includes the window's own event
// processing (strip layout and repaint) after the command; the window is shown on the offscreen
// platform. The last line is the keystroke's time with media against without, from the same run.
#include "common/localisation.h"
#include "composer/widgets/frmmmsmain.h"
#include "model/cslide.h"
#include "ratioreporter.h"
#include "sound/multimediadevice.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <ctime>
#include <memory>

namespace {

class SilentDialogs final : public mms::Dialogs {
public:
    mms::Answer show(const mms::Message& m) override { return m.defaultAnswer; }
    QString chooseFolder(QWidget*, const QString&, const QString&) override { return {}; }
    QString chooseSaveFile(QWidget*, const QString&, const QString&, const QString&) override { return {}; }
    void runModal(QDialog&) override {}
};

class NullDevice final : public mms::MultimediaDevice {
public:
    Result open(const QString&) override { return Result::Ok; }
    Result play() override { return Result::Ok; }
    void pause() override {}
    void resume() override {}
    void stop() override {}
    void close() override {}
    qint64 position() const override { return 0; }
    bool isOpen() const override { return false; }
};

struct Composer {
    QTemporaryDir home;
    SilentDialogs dialogs;
    mms::SystemClock clock;
    mms::SystemRandom random;
    NullDevice device;
    mms::Platform platform{dialogs, clock, random, device};
    mms::Localisation loc;
    std::unique_ptr<mms::frmMMSMain> window;

    Composer(int slides, bool media) {
        // A text for every entry the program uses.
        mms::LanguageTexts texts;
        const auto fill = [](QStringList& list, const QList<int>& used, const char* text) {
            const int count = *std::max_element(used.begin(), used.end()) + 1;
            for (int i = 0; i < count; ++i)
                list << QStringLiteral("%1 %2").arg(QLatin1String(text)).arg(i);
        };
        fill(texts.prompts, mms::usedPromptNumbers(), "prompt");
        fill(texts.errors, mms::usedErrorNumbers(), "error");
        fill(texts.interface, mms::usedInterfaceNumbers(), "text");
        loc.setTexts(texts);
        mms::frmMMSMain::Options options;
        options.appFolder = home.path();
        window = std::make_unique<mms::frmMMSMain>(platform, loc, options);
        (void)window->Form_Load();

        QStringList pictures;
        for (int i = 0; i < 10; ++i) {
            QImage image(64, 48, QImage::Format_RGB32);
            image.fill(QColor::fromHsv(i * 36, 160, 220));
            pictures << home.filePath(QStringLiteral("pic%1.png").arg(i));
            image.save(pictures.back());
        }
        const QString sound = home.filePath(QStringLiteral("tune.mid"));
        QFile f(sound);
        f.open(QIODevice::WriteOnly);
        f.write(QByteArray(2000, 'x'));
        f.close();
        for (int i = 0; i < slides; ++i) {
            window->addCmd_Click();
            if (!media) continue;
            window->updateCurrentSlide(QStringLiteral("imgPath"), pictures.at(i % pictures.size()));
            window->updateCurrentSlide(QStringLiteral("soundPath"), sound);
        }
        window->show();
        QApplication::processEvents();
    }
    void pick(int position) {
        window->selectSlide(static_cast<qint16>(position));
        window->lstSlide_ItemClick();
    }
};

constexpr int kSlides = 2000;
constexpr int kMiddle = kSlides / 2;

double threadCpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

// Times one call plus the event processing it causes: wall time as the figure, and the window
// thread's own CPU time for the same stretch in the counter "cmd_cpu_ms" (on a busy machine the
// wall time includes waiting for a processor).
template <typename F> double timed(benchmark::State& state, F&& f) {
    QElapsedTimer timer;
    const double cpuStart = threadCpuSeconds();
    timer.start();
    f();
    QApplication::processEvents();
    const double wall = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    state.counters["cmd_cpu_ms"] += (threadCpuSeconds() - cpuStart) * 1e3;
    return wall;
}

void finish(benchmark::State& state) {
    state.counters["cmd_cpu_ms"] =
        benchmark::Counter(state.counters["cmd_cpu_ms"], benchmark::Counter::kAvgIterations);
}

// One window of each kind for all figures: filling it takes seconds, and every figure leaves
// 2,000 slides behind. They close before the application does.
std::unique_ptr<Composer> plainWindow, mediaWindow;
Composer& composer(const benchmark::State& state) {
    std::unique_ptr<Composer>& window = state.range(0) == 0 ? plainWindow : mediaWindow;
    if (!window) window = std::make_unique<Composer>(kSlides, state.range(0) != 0);
    return *window;
}

void BM_AddSlideInTheMiddle(benchmark::State& state) {
    Composer& c = composer(state);
    for (auto _ : state) {
        c.pick(kMiddle);
        state.SetIterationTime(timed(state, [&] { c.window->addCmd_Click(); }));
        c.window->removeCmd_Click();
    }
    finish(state);
}

void BM_RemoveSlideInTheMiddle(benchmark::State& state) {
    Composer& c = composer(state);
    for (auto _ : state) {
        c.pick(kMiddle);
        state.SetIterationTime(timed(state, [&] { c.window->removeCmd_Click(); }));
        c.pick(kMiddle - 1);
        c.window->addCmd_Click();
    }
    finish(state);
}

void BM_MoveForwardAndBackward(benchmark::State& state) {
    Composer& c = composer(state);
    c.pick(kMiddle);
    bool forward = true;
    for (auto _ : state) {
        state.SetIterationTime(
            timed(state, [&] { forward ? c.window->fCmd_Click() : c.window->rCmd_Click(); }));
        forward = !forward;
    }
    finish(state);
}

void BM_MoveToTheFrontAndTheBack(benchmark::State& state) {
    Composer& c = composer(state);
    bool front = true;
    for (auto _ : state) {
        c.pick(kMiddle);
        state.SetIterationTime(
            timed(state, [&] { front ? c.window->ffCmd_Click() : c.window->rrCmd_Click(); }));
        front = !front;
    }
    finish(state);
}

void BM_KeystrokeInTheTextBox(benchmark::State& state) {
    Composer& c = composer(state);
    c.pick(kMiddle);
    c.window->txtText_Click();
    auto* txtText = c.window->findChild<QPlainTextEdit*>(QStringLiteral("txtText"));
    int typed = 0;
    for (auto _ : state) {
        // Forty characters typed, then erased: the text stays the length of a slide's text however
        // many iterations run, so the figure does not grow with their number.
        const bool erase = typed++ / 40 % 2 == 1;
        QKeyEvent key(QEvent::KeyPress, erase ? Qt::Key_Backspace : Qt::Key_A, Qt::NoModifier,
                      erase ? QString() : QStringLiteral("a"));
        state.SetIterationTime(timed(state, [&] { QApplication::sendEvent(txtText, &key); }));
    }
    finish(state);
}

void BM_ShowAnotherSlide(benchmark::State& state) {
    Composer& c = composer(state);
    int position = 1;
    for (auto _ : state) {
        position = position % kSlides + 997;
        if (position > kSlides) position -= kSlides;
        c.window->selectSlide(static_cast<qint16>(position));
        state.SetIterationTime(timed(state, [&] { c.window->lstSlide_ItemClick(); }));
    }
    finish(state);
}

// The part of every commit that reads the disk: the size estimate over all slides.
void BM_SizeRecount(benchmark::State& state) {
    Composer& c = composer(state);
    for (auto _ : state) {
        state.SetIterationTime(
            timed(state, [&] { benchmark::DoNotOptimize(c.window->message().getTotalSize({}, {}, {})); }));
    }
    finish(state);
}

// Every slide of the longest message with a picture and a sound, measured again.
void BM_RemeasureLongest(benchmark::State& state) {
    Composer& c = composer(state);
    static mms::CSlide longest;
    if (longest.IsEmpty()) {
        const mms::NodePtr media = c.window->message().firstItem();
        for (int i = 0; i < mms::CSlide::kMaxSlides; ++i)
            longest.InsertAtBack(media->DataSlideDur, media->DataImgPath, QStringLiteral("text"),
                                 media->DataSoundPath);
    }
    for (auto _ : state)
        state.SetIterationTime(timed(state, [&] { longest.remeasureAll(); }));
    finish(state);
}

BENCHMARK(BM_RemeasureLongest)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SizeRecount)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AddSlideInTheMiddle)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RemoveSlideInTheMiddle)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MoveForwardAndBackward)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MoveToTheFrontAndTheBack)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ShowAnotherSlide)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    // The keystroke with and without media under names of their own, for the closing ratio.
    for (const auto& [name, media] :
         {std::pair{"BM_KeystrokeInTheTextBox/no-media", 0}, std::pair{"BM_KeystrokeInTheTextBox/media", 1}})
        benchmark::RegisterBenchmark(name, BM_KeystrokeInTheTextBox)
            ->Arg(media)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("ratio keystroke media/no-media", "BM_KeystrokeInTheTextBox/media",
                        "BM_KeystrokeInTheTextBox/no-media");
    benchmark::Shutdown();
    plainWindow.reset();
    mediaWindow.reset();
    return 0;
}
