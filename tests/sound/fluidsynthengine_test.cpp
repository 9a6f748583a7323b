#include "sound/fluidsynthengine.h"
#include "sound/midibuild.h"
#include "sound/tempomap.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QFileInfo>
#include <QScopeGuard>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

using namespace mms;
using namespace mms::test;
using namespace mms::test::smf;

namespace {

constexpr int kRate = 44100; // FluidSynth's default sample rate

// Renders `ms` milliseconds offline; returns the loudest sample.
float renderMs(FluidSynthEngine& engine, int ms) {
    std::vector<float> left(64), right(64);
    float peak = 0.0f;
    for (int frames = kRate * ms / 1000; frames > 0; frames -= 64) {
        EXPECT_TRUE(engine.render(left.data(), right.data(), std::min(frames, 64)));
        for (float v : left)
            peak = std::max(peak, std::abs(v));
    }
    return peak;
}

} // namespace

TEST(FluidSynthEngine, SoundfontComesFromTheArgumentThenTheEnvironmentThenDebian) {
    const QByteArray saved = qgetenv("MMS_SOUNDFONT");
    auto restore =
        qScopeGuard([&] { saved.isNull() ? qunsetenv("MMS_SOUNDFONT") : qputenv("MMS_SOUNDFONT", saved); });
    qunsetenv("MMS_SOUNDFONT");
    EXPECT_EQ(soundfontPath(), QStringLiteral("/usr/share/sounds/sf2/FluidR3_GM.sf2"));
    qputenv("MMS_SOUNDFONT", "/tmp/other.sf2");
    EXPECT_EQ(soundfontPath(), QStringLiteral("/tmp/other.sf2"));
    EXPECT_EQ(soundfontPath(QStringLiteral("/x.sf2")), QStringLiteral("/x.sf2"));

    TempDir dir;
    FluidSynthEngine missing(dir.file(QStringLiteral("none.sf2")), FluidSynthEngine::Output::Offline);
    EXPECT_TRUE(missing.unavailableReason().contains(QStringLiteral("none.sf2")));
    EXPECT_FALSE(missing.load(threeTempoTune()));
    FluidSynthEngine broken(dir.write(QStringLiteral("broken.sf2"), "this is no soundfont"),
                            FluidSynthEngine::Output::Offline);
    EXPECT_TRUE(broken.unavailableReason().contains(QStringLiteral("could not be loaded")));
}

// The real synthesizer with the real soundfont, rendered offline: it makes sound, and the ticks it
// reports follow the tempo map the player converts with.
TEST(FluidSynthEngine, RendersTheTuneAndItsTicksFollowTheTempoMap) {
    if (!QFileInfo::exists(soundfontPath()))
        GTEST_SKIP() << "no soundfont at " << soundfontPath().toStdString();
    const QByteArray tune = threeTempoTune();
    TempoMap map;
    ASSERT_TRUE(TempoMap::parse(tune, map).isOk());

    FluidSynthEngine engine(QString(), FluidSynthEngine::Output::Offline);
    ASSERT_EQ(engine.unavailableReason(), QString());
    ASSERT_TRUE(engine.load(tune));
    ASSERT_TRUE(engine.play(0));
    EXPECT_GT(renderMs(engine, 500), 0.01f) << "the first note is heard";
    // FluidSynth advances its ticks once per 64-frame block: allow a few ticks.
    int at = 500;
    for (int step : {0, 750, 500, 1000}) {
        renderMs(engine, step);
        at += step;
        ASSERT_TRUE(engine.currentTick().has_value());
        EXPECT_NEAR(double(*engine.currentTick()), double(map.tickAt(at)), 4.0) << at << " ms";
    }

    // A restart at 1.5 s: the tick reported at once is the new one, then time runs on from there.
    engine.stop();
    ASSERT_TRUE(engine.play(map.tickAt(1500)));
    EXPECT_EQ(engine.currentTick(), map.tickAt(1500));
    renderMs(engine, 1000);
    EXPECT_NEAR(double(*engine.currentTick()), double(map.tickAt(2500)), 4.0);
    engine.unload();
    EXPECT_FALSE(engine.currentTick().has_value());
}
