#include "sound/amr_testfile.h"
#include "sound/amrdecoder.h"
#include "sound/sounddevice.h"
#include "support/qtprint.h"
#include "support/recordingdevice.h"
#include "support/tempdir.h"

#include <QStringList>
#include <gtest/gtest.h>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

TEST(AmrDecoder, DecodesTheEncodersToneAtItsPitch) {
    std::vector<qint16> samples;
    ASSERT_TRUE(decodeAmr(amrTone(50), samples).isOk());
    ASSERT_EQ(samples.size(), 50u * 160);
    // A 440 Hz tone crosses zero 880 times a second; the last 0.8 s (past the codec's start-up) do so.
    int crossings = 0;
    double energy = 0;
    for (std::size_t i = 1601; i < samples.size(); ++i) {
        crossings += (samples[i - 1] < 0) != (samples[i] < 0);
        energy += double(samples[i]) * samples[i];
    }
    EXPECT_NEAR(crossings, 704, 30);
    EXPECT_GT(std::sqrt(energy / 6400), 2000.0);
}

TEST(AmrDecoder, RefusesAnythingButNarrowBandFramesAndSaysWhy) {
    const QByteArray tone = amrTone(3);
    const struct {
        QByteArray bytes;
        const char* reason;
    } cases[] = {
        {"#!AMR-WB\n" + tone.mid(6), "wide band"},
        {"RIFF\0\0\0\0WAVEfmt ", "not an AMR sound"},
        {"#!AMR\n", "holds no sound"},
        {tone.chopped(1), "frame 3 is cut short"},
        {tone + char(9 << 3), "frame 4 has type 9"},
    };
    for (const auto& c : cases) {
        std::vector<qint16> samples(10);
        const Status s = decodeAmr(c.bytes, samples);
        EXPECT_TRUE(!s && s.message().contains(QLatin1String(c.reason)))
            << c.reason << ": " << s.message().toStdString();
        EXPECT_TRUE(samples.empty()) << c.reason;
    }
    TempDir dir;
    std::vector<qint16> samples;
    EXPECT_TRUE(
        decodeAmrFile(dir.write(u"v.amr"_s, "#!AMR\n"), samples).message().contains(dir.file(u"v.amr"_s)));
}

struct ScriptedPcm final : PcmOutput {
    QString unavailableReason() override { return unavailable; }
    bool start(std::vector<qint16> samples, int rate, std::function<void()> done) override {
        log << u"start %1 samples at %2 Hz"_s.arg(samples.size()).arg(rate);
        finished = std::move(done);
        return true;
    }
    void pause() override { log << u"pause"_s; }
    void resume() override { log << u"resume"_s; }
    void stop() override {
        log << u"stop"_s;
        finished = nullptr;
    }
    qint64 positionMs() const override { return finished ? played : 0; }
    QString unavailable;
    QStringList log;
    std::function<void()> finished;
    qint64 played = 0;
};

using Notify = MultimediaDevice::Notify;
using Result = MultimediaDevice::Result;

class SoundDeviceTest : public ::testing::Test {
protected:
    SoundDeviceTest() {
        QObject::connect(&device, &MultimediaDevice::playbackEnded, &device,
                         [this](Notify n) { notes.push_back(n); });
    }

    TempDir dir;
    RecordingDevice* midi = new RecordingDevice; // both owned by the device
    ScriptedPcm* pcm = new ScriptedPcm;
    SoundDevice device{std::unique_ptr<MultimediaDevice>(midi), std::unique_ptr<PcmOutput>(pcm)};
    std::vector<Notify> notes;
};

// A name with quotes, spaces and non-ASCII letters opens either kind of sound. An AMR sound's
// position is the output's while it plays, its length once heard, kept by a stop, 0 once closed.
TEST_F(SoundDeviceTest, MidiGoesToTheSynthesizerAndAmrIsDecodedOntoThePcmOutput) {
    const QString name = u"\"Salut\" d’été ♪"_s;
    const QStringList midiCalls{u"open /x/"_s + name + u".MID"_s, u"play"_s, u"stop"_s, u"close"_s};
    EXPECT_EQ(device.open(u"/x/"_s + name + u".MID"_s), Result::Ok);
    EXPECT_EQ(device.play(), Result::Ok);
    device.stop();
    device.close();
    midi->emitPlaybackEnded(Notify::Successful);
    EXPECT_EQ(midi->calls, midiCalls);

    ASSERT_EQ(device.open(dir.write(name + u".amr"_s, amrTone(25))), Result::Ok);
    EXPECT_EQ(device.open(u"/x/t.mid"_s), Result::AlreadyOpen);
    EXPECT_EQ(device.position(), 0);
    ASSERT_EQ(device.play(), Result::Ok);
    pcm->played = 120;
    EXPECT_EQ(device.position(), 120);
    device.pause();
    device.resume();
    pcm->finished(); // heard to its end
    EXPECT_EQ(device.position(), 500) << "25 frames of 20 ms";
    device.play();
    pcm->played = 260;
    device.stop();
    EXPECT_EQ(device.position(), 260);
    device.close();
    EXPECT_EQ(device.position(), 0);
    EXPECT_EQ(midi->calls, midiCalls) << "the synthesizer never hears of the AMR sound";
    EXPECT_EQ(pcm->log, (QStringList{u"start 4000 samples at 8000 Hz"_s, u"pause"_s, u"resume"_s,
                                     u"start 4000 samples at 8000 Hz"_s, u"stop"_s, u"stop"_s}))
        << "the stop and the close each stop the output";
    EXPECT_EQ(notes, (std::vector<Notify>{Notify::Successful, Notify::Successful, Notify::Aborted}));
}

TEST_F(SoundDeviceTest, AnAmrSoundThatCannotBeDecodedOrHeardIsNotOpened) {
    EXPECT_EQ(device.open(dir.write(u"fake.amr"_s, "MThd")), Result::CannotOpen);
    pcm->unavailable = u"no audio output"_s;
    EXPECT_EQ(device.open(dir.write(u"v.amr"_s, amrTone(2))), Result::NoSound);
    EXPECT_TRUE(pcm->log.isEmpty());
    EXPECT_FALSE(device.isOpen());
    EXPECT_EQ(device.open(u"/x/t.mid"_s), Result::Ok) << "nothing was left open";
}

} // namespace
