#include "sound/fakeengine.h"
#include "sound/fluidsynthengine.h"
#include "sound/tempomap.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QFileInfo>
#include <QScopeGuard>
#include <cmath>
#include <gtest/gtest.h>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

TEST(FluidSynthEngine, SoundfontComesFromTheArgumentThenTheEnvironmentThenDebian) {
    const QByteArray saved = qgetenv("MMS_SOUNDFONT");
    auto restore =
        qScopeGuard([&] { saved.isNull() ? qunsetenv("MMS_SOUNDFONT") : qputenv("MMS_SOUNDFONT", saved); });
    qunsetenv("MMS_SOUNDFONT");
    EXPECT_EQ(soundfontPath(), u"/usr/share/sounds/sf2/FluidR3_GM.sf2"_s);
    qputenv("MMS_SOUNDFONT", "/tmp/other.sf2");
    EXPECT_EQ(soundfontPath(), u"/tmp/other.sf2"_s);
    EXPECT_EQ(soundfontPath(u"/x.sf2"_s), u"/x.sf2"_s);
    TempDir dir;
    FluidSynthEngine missing(dir.file(u"none.sf2"_s), FluidSynthEngine::Output::Offline);
    EXPECT_TRUE(missing.unavailableReason().contains(u"none.sf2"_s));
    EXPECT_FALSE(missing.load(threeTempoTune()));
    FluidSynthEngine broken(dir.write(u"broken.sf2"_s, "no soundfont"), FluidSynthEngine::Output::Offline);
    EXPECT_TRUE(broken.unavailableReason().contains(u"could not be loaded"_s));
}

// The real synthesizer and soundfont, rendered offline: it makes sound, and the ticks it reports
// follow the tempo map the player converts with.
TEST(FluidSynthEngine, RendersTheTuneAndItsTicksFollowTheTempoMap) {
    if (!QFileInfo::exists(soundfontPath()))
        GTEST_SKIP() << "no soundfont at " << soundfontPath().toStdString() << " (fluid-soundfont-gm)";
    const QByteArray tune = threeTempoTune();
    TempoMap map;
    ASSERT_TRUE(TempoMap::parse(tune, map).isOk());
    FluidSynthEngine engine(QString(), FluidSynthEngine::Output::Offline);
    ASSERT_EQ(engine.unavailableReason(), QString());
    ASSERT_TRUE(engine.load(tune));
    float peak = 0;
    auto render = [&](int ms) { // 44100 frames a second, in FluidSynth's 64-frame blocks
        float left[64] = {}, right[64] = {};
        for (int frames = 441 * ms / 10; frames > 0; frames -= 64) {
            ASSERT_TRUE(engine.render(left, right, std::min(frames, 64)));
            for (float v : left)
                peak = std::max(peak, std::abs(v));
        }
    };
    auto expectAt = [&](int ms) { // ticks advance once per block: allow a few
        ASSERT_TRUE(engine.currentTick().has_value());
        EXPECT_NEAR(double(*engine.currentTick()), double(map.tickAt(ms)), 4.0) << ms << " ms";
    };
    ASSERT_TRUE(engine.play(0));
    int at = 0;
    for (int step : {500, 750, 500, 1000}) {
        render(step);
        expectAt(at += step);
    }
    EXPECT_GT(peak, 0.01f);
    // A restart at 1.5 s reports the new tick at once, then runs on from there.
    engine.stop();
    ASSERT_TRUE(engine.play(map.tickAt(1500)));
    expectAt(1500);
    render(1000);
    expectAt(2500);
    engine.unload();
    EXPECT_FALSE(engine.currentTick().has_value());
}
