// Any video to a phone clip under the limit, through `mmsc video`, checked by an independent reader
// (ffprobe: container, codecs, picture size, duration) against what the command printed.
#include "app/mmscrun.h"
#include "support/outsidetool.h"
#include "support/tempdir.h"
#include "video/clipthumbnail.h"

#include <QFileInfo>

using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

bool ffmpeg(const QStringList& args) {
    const auto run = runTool(u"ffmpeg"_s, QStringList{u"-v"_s, u"error"_s, u"-y"_s} + args);
    return run && run->exitCode == 0;
}

QString probeField(const QString& path, const QStringList& select) {
    const auto run = runTool(u"ffprobe"_s, QStringList{u"-v"_s, u"error"_s} + select +
                                               QStringList{u"-of"_s, u"csv=p=0"_s, path});
    return run ? QString::fromUtf8(run->out).trimmed() : QString();
}

struct Probed {
    QString format, video, audio; // "h263,176,144", "amr_nb"
    double seconds = 0;
};

Probed probe(const QString& path) {
    const QString format = probeField(path, {u"-show_entries"_s, u"format=format_name,duration"_s});
    return {format.section(u',', 0, -2).contains(u"3gp") ? u"3gp"_s : format,
            probeField(path, {u"-select_streams"_s, u"v"_s, u"-show_entries"_s,
                              u"stream=codec_name,width,height"_s}),
            probeField(path, {u"-select_streams"_s, u"a"_s, u"-show_entries"_s, u"stream=codec_name"_s}),
            format.section(u',', -1).toDouble()};
}

class VideoCommand : public ::testing::Test {
protected:
    void SetUp() override {
        // A phone's wide video with sound, and a silent one.
        if (!ffmpeg({u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc2=size=640x360:rate=30:duration=12"_s, u"-f"_s,
                     u"lavfi"_s, u"-i"_s, u"sine=frequency=440:duration=12"_s, u"-c:v"_s, u"libx264"_s,
                     u"-preset"_s, u"ultrafast"_s, u"-pix_fmt"_s, u"yuv420p"_s, u"-c:a"_s, u"aac"_s,
                     u"-shortest"_s, dir.file(u"phone.mp4"_s)}) ||
            !ffmpeg({u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc=size=320x240:rate=25:duration=3"_s,
                     dir.file(u"silent.mkv"_s)}))
            GTEST_SKIP() << "needs ffmpeg (package ffmpeg)";
    }
    MmscRun video(const QString& line) { return runMmsc({}, line.arg(dir.path())); }
    TempDir dir;
};

TEST_F(VideoCommand, MakesAClipUnderTheLimitThatAnotherReaderAgreesWith) {
    struct Row {
        const char* args;
        const char* seconds;
        bool sound;
    };
    for (const Row& row : {Row{"video %1/phone.mp4 %1/c.3gp --max-bytes 200000", "12.000", true},
                           Row{"video %1/phone.mp4 %1/c.3gp --start 3 --end 5.5", "2.467", true},
                           Row{"video %1/silent.mkv %1/c.3gp", "3.000", false},
                           Row{"video %1/phone.mp4 %1/c.3gp --max-bytes 20000", nullptr, true}}) {
        SCOPED_TRACE(row.args);
        const QString args = QString::fromLatin1(row.args);
        const MmscRun r = video(args);
        ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
        const QStringList printed = r.out.trimmed().split(u'\t');
        ASSERT_EQ(printed.size(), 4);
        EXPECT_EQ(printed[0], dir.file(u"c.3gp"_s));
        if (row.seconds) {
            EXPECT_EQ(printed[1], QLatin1String(row.seconds));
        }
        const qint64 size = QFileInfo(dir.file(u"c.3gp"_s)).size();
        EXPECT_EQ(printed[3].toLongLong(), size);
        EXPECT_LE(size, args.contains(u"200000") ? 200000 : args.contains(u"20000") ? 20000 : 102399);
        const Probed p = probe(dir.file(u"c.3gp"_s));
        EXPECT_EQ(p.format + u' ' + p.video + u' ' + p.audio,
                  u"3gp h263,%1 %2"_s.arg(QString(printed[2]).replace(u'x', u','),
                                          row.sound ? u"amr_nb"_s : QString()));
        EXPECT_NEAR(p.seconds, printed[1].toDouble(), 0.1);
    }
    // A clip that fits, holding H.263, is taken as it is.
    const QByteArray clip = TempDir::read(dir.file(u"c.3gp"_s));
    dir.write(u"fits.3gp"_s, clip);
    const MmscRun same = video(u"video %1/fits.3gp %1/same.3gp"_s);
    EXPECT_EQ(same.exitCode, 0);
    EXPECT_TRUE(same.out.startsWith(dir.file(u"same.3gp"_s) + u'\t') &&
                same.out.endsWith(u"\t%1\n"_s.arg(clip.size())));
    EXPECT_EQ(TempDir::read(dir.file(u"same.3gp"_s)), clip);
}

TEST_F(VideoCommand, RefusesWhatItCannotReadAndKeepsTheTarget) {
    dir.write(u"out.3gp"_s, "kept");
    dir.write(u"text.mp4"_s, "this is no video\n");
    ASSERT_TRUE(ffmpeg({u"-f"_s, u"lavfi"_s, u"-i"_s, u"sine=duration=1"_s, dir.file(u"tone.mp3"_s)}));
    // A 16K video: its header alone, which is all that is read before it is refused.
    dir.write(u"huge.y4m"_s,
              "YUV4MPEG2 W15360 H8640 F30:1 Ip A1:1 C420jpeg\nFRAME\n" + QByteArray(1000, '\x10'));
    struct Row {
        const char* args;
        int status;
        const char* errHas;
    };
    for (const Row& row :
         {Row{"video %1/text.mp4 %1/out.3gp", 2, "text.mp4 cannot be read"},
          Row{"video %1/tone.mp3 %1/out.3gp", 2, "tone.mp3 holds no video"},
          Row{"video %1/huge.y4m %1/out.3gp", 2, "huge.y4m is a video too large to convert (15360x8640)"},
          Row{"video %1/phone.mp4 %1/out.3gp --start 20", 2, "phone.mp4 has no picture from 20.000 s"},
          Row{"video %1/phone.mp4 %1/out.3gp --max-bytes 500", 1, "Not one picture"},
          Row{"video %1/phone.mp4 %1/out.3gp --end 1 --start 1", 2, "--end must come after"},
          Row{"video %1/phone.mp4 %1/no/such/folder/out.3gp --end 1", 2, "out.3gp"}}) {
        SCOPED_TRACE(row.args);
        expectRun(video(QString::fromLatin1(row.args)), row.status, {}, QString::fromLatin1(row.errHas));
        EXPECT_EQ(TempDir::read(dir.file(u"out.3gp"_s)), "kept");
    }
}

TEST_F(VideoCommand, ShowsAClipByItsFirstPictureInItsShape) {
    ASSERT_TRUE(ffmpeg({u"-f"_s, u"lavfi"_s, u"-i"_s, u"color=c=red:size=320x180:duration=1"_s, u"-c:v"_s,
                        u"mpeg4"_s, dir.file(u"red.mp4"_s)}));
    const QImage first = mms::firstVideoFrame(dir.file(u"red.mp4"_s));
    ASSERT_EQ(first.size(), QSize(320, 180));
    const QColor centre = first.pixelColor(160, 90);
    EXPECT_TRUE(centre.red() > 200 && centre.green() < 60 && centre.blue() < 60)
        << centre.name().toStdString();
    EXPECT_TRUE(mms::firstVideoFrame(dir.file(u"text.mp4"_s)).isNull());
    dir.write(u"text.mp4"_s, "no video");
    EXPECT_TRUE(mms::firstVideoFrame(dir.file(u"text.mp4"_s)).isNull());
}

TEST_F(VideoCommand, BuildTakesVideosAndAnySoundOnlyWhenAskedToFitThem) {
    ASSERT_TRUE(ffmpeg({u"-f"_s, u"lavfi"_s, u"-i"_s, u"sine=duration=2"_s, dir.file(u"tone.mp3"_s)}));
    const QString slide =
        u"--home %1/home build --slide --pic %1/phone.mp4 --sound %1/tone.mp3 --save trip"_s;
    expectRun(video(slide), 2, {},
              u"phone.mp4' is not a 3GP clip under 102400 bytes (--fit converts it to one)"_s);
    const MmscRun fitted = video(slide + u" --fit"_s);
    ASSERT_EQ(fitted.exitCode, 0) << fitted.err.toStdString();
    const QString stored = dir.file(u"home/UserData/MMS/trip/"_s);
    EXPECT_EQ(probe(stored + u"vdo1.3gp"_s).video.section(u',', 0, 0), u"h263"_s);
    EXPECT_EQ(probe(stored + u"sound1.amr"_s).audio, u"amr_nb"_s);
}

} // namespace
