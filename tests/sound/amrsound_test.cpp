#include "sound/amr_testfile.h"
#include "sound/amrdecoder.h"
#include "sound/sounddevice.h"
#include "support/qtprint.h"
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
    QString unavailable;
    QStringList log;
    std::function<void()> finished;
};

struct LoggingDevice final : MultimediaDevice {
    int sendString(const QString& command) override {
        sent << command;
        return kOk;
    }
    void emitNotify(Notify how) { notify(how); }
    QStringList sent;
};

class SoundDeviceTest : public ::testing::Test {
protected:
    SoundDeviceTest() {
        device.setNotifyHandler([this](MultimediaDevice::Notify n) { notes.push_back(n); });
    }
    static QString open(const QString& path) { return u"open \"%1\" Alias music"_s.arg(path); }
    int send(const QString& command) { return device.sendString(command); }

    TempDir dir;
    LoggingDevice* midi = new LoggingDevice; // both owned by the device
    ScriptedPcm* pcm = new ScriptedPcm;
    SoundDevice device{std::unique_ptr<MultimediaDevice>(midi), std::unique_ptr<PcmOutput>(pcm)};
    std::vector<MultimediaDevice::Notify> notes;
};

TEST_F(SoundDeviceTest, MidiGoesToTheSynthesizerAndAmrIsDecodedOntoThePcmOutput) {
    using Notify = MultimediaDevice::Notify;
    const QStringList midiCommands{open(u"/x/Tune.MID"_s), u"play music from 0 notify"_s, u"stop music"_s,
                                   u"close music"_s};
    for (const QString& c : midiCommands)
        EXPECT_EQ(send(c), MultimediaDevice::kOk);
    midi->emitNotify(Notify::Successful);
    EXPECT_EQ(midi->sent, midiCommands);

    ASSERT_EQ(send(open(dir.write(u"v.amr"_s, amrTone(25)))), MultimediaDevice::kOk);
    EXPECT_EQ(send(open(u"/x/t.mid"_s)), MultimediaDevice::kAlreadyOpen);
    for (const char* c : {"play music from 0 notify", "pause music", "resume music"})
        send(QString::fromLatin1(c));
    pcm->finished(); // heard to its end
    send(u"play music from 0 notify"_s);
    send(u"close music"_s);
    EXPECT_EQ(midi->sent, midiCommands) << "the synthesizer never hears of the AMR sound";
    EXPECT_EQ(pcm->log, (QStringList{u"start 4000 samples at 8000 Hz"_s, u"pause"_s, u"resume"_s,
                                     u"start 4000 samples at 8000 Hz"_s, u"stop"_s}));
    EXPECT_EQ(notes, (std::vector<Notify>{Notify::Successful, Notify::Successful, Notify::Aborted}));
}

TEST_F(SoundDeviceTest, AnAmrSoundThatCannotBeDecodedOrHeardIsNotOpened) {
    EXPECT_EQ(send(open(dir.write(u"fake.amr"_s, "MThd"))), MultimediaDevice::kCannotOpen);
    pcm->unavailable = u"no audio output"_s;
    EXPECT_EQ(send(open(dir.write(u"v.amr"_s, amrTone(2)))), MultimediaDevice::kNoSound);
    EXPECT_TRUE(pcm->log.isEmpty());
    EXPECT_EQ(send(open(u"/x/t.mid"_s)), MultimediaDevice::kOk) << "nothing was left open";
}

} // namespace
