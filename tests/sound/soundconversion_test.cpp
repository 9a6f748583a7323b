// Any sound file to AMR under the limit, through `mmsc audio`, checked by an independent reader
// (ffprobe: container, codec, rate, channels, frame count) against what the command printed.
#include "app/mmscrun.h"
#include "support/outsidetool.h"
#include "support/tempdir.h"

#include <QFileInfo>

using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

// A tone made by ffmpeg; false when ffmpeg is not installed.
bool makeTone(const QString& path, double seconds, const QStringList& codec = {}) {
    const auto run =
        runTool(u"ffmpeg"_s, QStringList{u"-v"_s, u"error"_s, u"-y"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                                         u"sine=frequency=440:duration=%1"_s.arg(seconds), u"-ac"_s, u"2"_s} +
                                 codec + QStringList{path});
    return run && run->exitCode == 0;
}

struct Probed {
    QString format, codec, rate, channels;
    double seconds = 0;
};

Probed probe(const QString& path) {
    const auto run =
        runTool(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-count_packets"_s, u"-show_entries"_s,
                               u"format=format_name:stream=codec_name,sample_rate,channels,nb_read_packets"_s,
                               u"-of"_s, u"default=noprint_wrappers=1"_s, path});
    Probed p;
    if (!run) return p;
    for (const QString& line : QString::fromUtf8(run->out).split(u'\n')) {
        const QString value = line.section(u'=', 1);
        if (line.startsWith(u"format_name=")) p.format = value;
        if (line.startsWith(u"codec_name=")) p.codec = value;
        if (line.startsWith(u"sample_rate=")) p.rate = value;
        if (line.startsWith(u"channels=")) p.channels = value;
        if (line.startsWith(u"nb_read_packets=")) p.seconds = value.toInt() * 0.02; // 20 ms frames
    }
    return p;
}

class AudioCommand : public ::testing::Test {
protected:
    void SetUp() override {
        if (!makeTone(dir.file(u"long.mp3"_s), 180) ||
            !makeTone(dir.file(u"tone.ogg"_s), 20, {u"-c:a"_s, u"libvorbis"_s}) ||
            !makeTone(dir.file(u"tone.wav"_s), 10))
            GTEST_SKIP() << "needs ffmpeg (package ffmpeg)";
    }
    MmscRun audio(const QString& line) { return runMmsc({}, line.arg(dir.path())); }
    TempDir dir;
};

TEST_F(AudioCommand, KeepsTheBestModeThatFitsOrTheLongestStretch) {
    struct Row {
        const char* args;
        const char* out;
        double seconds;
    };
    // 20 s fit at 12.2 kbit/s; three minutes do not fit even at 4.75, so the first 157.52 s are kept.
    for (const Row& row : {Row{"audio %1/tone.ogg %1/a.amr", "20.000", 20},
                           Row{"audio %1/long.mp3 %1/a.amr", "157.520", 157.52},
                           Row{"audio %1/tone.wav %1/a.amr --start 2 --end 5.5", "3.500", 3.5},
                           Row{"audio %1/long.mp3 %1/a.amr --start 170", "10.000", 10},
                           Row{"audio %1/tone.ogg %1/a.amr --max-bytes 1306", "2.000", 2}}) {
        SCOPED_TRACE(row.args);
        const MmscRun r = audio(QString::fromLatin1(row.args));
        const qint64 size = QFileInfo(dir.file(u"a.amr"_s)).size();
        expectRun(r, 0, u"%1/a.amr\t%2\t%3\n"_s.arg(dir.path(), QLatin1String(row.out)).arg(size));
        const qint64 limit = QString::fromLatin1(row.args).contains(u"1306") ? 1306 : 102399;
        EXPECT_LE(size, limit);
        const Probed p = probe(dir.file(u"a.amr"_s));
        EXPECT_EQ(p.format + p.codec + p.rate + p.channels, u"amramr_nb80001"_s);
        EXPECT_NEAR(p.seconds, row.seconds, 0.0201);
    }
}

TEST_F(AudioCommand, RefusesWhatItCannotReadAndKeepsTheTarget) {
    dir.write(u"out.amr"_s, "kept");
    dir.write(u"text.mp3"_s, "this is no sound at all\n");
    dir.write(u"empty.mp3"_s, {});
    // A WAV header (8 kHz, mono, 16 bits) that claims 4 GB of samples before one second of them.
    QByteArray wav("RIFF\xf8\xff\xff\xffWAVEfmt \x10\0\0\0\x01\0\x01\0\x40\x1f\0\0\x80\x3e\0\0\x02\0\x10\0"
                   "data\xf0\xff\xff\xff",
                   44);
    for (int i = 0; i < 8000; ++i)
        wav.append(i % 40 < 20 ? "\0\x20" : "\0\xe0", 2);
    dir.write(u"huge.wav"_s, wav);
    ASSERT_TRUE(runTool(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                                      u"testsrc=size=64x48:duration=1"_s, dir.file(u"silent.mp4"_s)}));
    struct Row {
        const char* args;
        int status;
        const char* errHas;
    };
    for (const Row& row :
         {Row{"audio %1/text.mp3 %1/out.amr", 2, "text.mp3 cannot be read"},
          Row{"audio %1/empty.mp3 %1/out.amr", 2, "empty.mp3"},
          Row{"audio %1/silent.mp4 %1/out.amr", 2, "silent.mp4 holds no sound"},
          Row{"audio %1/none.ogg %1/out.amr", 2, "none.ogg"},
          Row{"audio %1/tone.wav %1/out.amr --start 11", 1, "tone.wav has no sound from 11.000 s"},
          Row{"audio %1/tone.wav %1/out.amr --end 2 --start 3", 2, "--end must come after"},
          Row{"audio %1/tone.wav %1/out.amr --start -1", 2, "--start takes"},
          Row{"audio %1/tone.wav %1/out.amr --max-bytes 18", 1, "Not one frame"},
          Row{"audio %1/tone.wav %1/no/such/folder/out.amr", 2, "out.amr"}}) {
        SCOPED_TRACE(row.args);
        expectRun(audio(QString::fromLatin1(row.args)), row.status, {}, QString::fromLatin1(row.errHas));
        EXPECT_EQ(TempDir::read(dir.file(u"out.amr"_s)), "kept");
    }
    // The header's claim is no reason to read on: the second that is there is converted.
    expectRun(audio(u"audio %1/huge.wav %1/h.amr"_s), 0, u"%1/h.amr\t1.000\t1606\n"_s.arg(dir.path()));
}

} // namespace
