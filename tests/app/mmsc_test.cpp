#include "app/mmscrun.h"
#include "image/picturefiles.h"
#include "package/archivereader.h"
#include "package/mmsencoder.h"
#include "package/packagewriter.h"
#include "sound/midi_testfile.h"
#include "store/appfolder.h"
#include "store/storefixture.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

using namespace mms;
using namespace mms::test;
using namespace mms::test::midifile;
using namespace Qt::StringLiterals;

namespace {

// The mmsc commands but build, on a home with two stored messages; the composer's working copy of one
// of them must survive every command.
class MmscTest : public StoreFixture {
protected:
    void SetUp() override {
        slides.InsertAtBack(SlideDur::fromText(u"3"_s),
                            media(u"p.gif"_s, encoded(filled(40, 20, Qt::blue), "PNG")), u"a\\b\tc\r\nd"_s,
                            {});
        slides.InsertAtBack(SlideDur::fromNumber(7), {}, {}, media(u"s.mid"_s, "MThd-tune"));
        ASSERT_TRUE(store.save(slides, u"beta"_s, u"Hello"_s).isOk());
        ASSERT_TRUE(store.save(CSlide(), u"Alpha"_s, u"Empty"_s).isOk());
        ASSERT_TRUE(store.copyToWorkingCopy(u"Alpha"_s).isOk());
    }
    // %1 in `line` is the home folder, %2 the stored folder of beta.
    MmscRun mmsc(const QString& line) {
        return runMmsc({u"--home"_s, tmp.path()},
                       QString(line).replace(u"%1"_s, tmp.path()).replace(u"%2"_s, folder(u"beta"_s)));
    }
    // The inputs the commands read beside the stored messages.
    void writeInputs() {
        tmp.write(u"a.gif"_s, QByteArray::fromHex("474946383961 2c01 c800 f7"));
        Track meta;
        meta.tempo(500000).timeSig(3, 2);
        Track notes;
        notes.program(1, 19).note(0, 480, 1, 60).note(0, 480, 1, 62).note(0, 480, 1, 64).note(0, 1920, 1, 65);
        tmp.write(u"t.mid"_s, midiFile(480, {meta, notes}));
        tmp.write(u"big.bmp"_s, encoded(noise(600, 600), "BMP"));
        tmp.write(u"text.gif"_s, "no picture");
    }
    CSlide slides;
};

// One command and what it must print; %1 in `line` and `out` is the home folder, %3 and %4 the
// modification times of Alpha and beta. `first` runs before, to make an input of the command's own.
struct CommandRow {
    const char* name;
    const char* line;
    int status;
    QString out = {};
    const char* errHas = "";
    const char* first = nullptr;
};

void PrintTo(const CommandRow& row, std::ostream* os) {
    *os << row.line;
}

const QString kMidiHead = u"decoded: 1\nticks_per_quarter: 480\ntempo_bpm: 120\nsec_per_quarter: 0.500000\n"
                          "time_signature: 3/4\nbar_whole_notes: 0.750000\n"_s;
const char* const kCrop = "crop %1/t.mid 0.5 1.0s %1/c.mid";

const CommandRow kCommandRows[] = {
    {"List", "list", 0, u"Alpha\t%3\nbeta\t%4\n"_s},
    {"Show", "show beta", 0,
     u"subject: Hello\n1\t\"3\"\tpic1.gif\ta\\\\b\\tc\\r\\nd\t\n2\t7\t\t\tsound2.mid\n"_s},
    {"ShowEmpty", "show Alpha", 0, u"subject: Empty\n"_s},
    {"Probe", "probe %1/a.gif %1/none.png", 1, u"1\t1\t300\t200\t8\t%1/a.gif\n0\t0\t0\t0\t0\t%1/none.png\n"_s,
     "none.png"},
    {"Midi", "midi %1/t.mid", 0,
     kMidiHead + u"tune_length: 3.000000\nchannel 1 program 19 bars 2: 4C5 4D5 4E5 | 1F5\n"_s},
    {"Crop", kCrop, 0},
    {"MidiOfCrop", "midi %1/c.mid", 0,
     kMidiHead + u"tune_length: 1.500000\nchannel 1 program 19 bars 1: 4D5\n"_s, "", kCrop},
    {"CropBeyondTheEnd",
     "crop %1/t.mid 0 3.5 %1/d.mid",
     1,
     {},
     "t.mid: The end lies beyond the end of the tune."},
    {"MidiOfNoTune", "midi %1/text.gif", 1, u"decoded: 0\n"_s, "text.gif: "},
    {"JpegOfNoPicture", "jpeg %1/text.gif %1/no.jpg", 2, {}, "text.gif"},
    {"RenderAbsent", "render nothing %1/x", 1},
};

class MmscCommand : public MmscTest, public ::testing::WithParamInterface<CommandRow> {};

TEST_P(MmscCommand, PrintsExactLinesAndChangesNoStoredMessage) {
    const CommandRow& row = GetParam();
    writeInputs();
    if (row.first) {
        ASSERT_EQ(mmsc(QLatin1String(row.first)).exitCode, 0) << row.first;
    }
    const auto stamp = [&](const char* name) {
        return QFileInfo(messages() + u'/' + QLatin1String(name) + u".mmt"_s)
            .lastModified()
            .toString(u"yyyy-MM-dd'T'HH:mm:ss"_s);
    };
    const QString out = QString(row.out)
                            .replace(u"%1"_s, tmp.path())
                            .replace(u"%3"_s, stamp("Alpha"))
                            .replace(u"%4"_s, stamp("beta"));
    const auto before = snapshot();
    expectRun(mmsc(QLatin1String(row.line)), row.status, out, QLatin1String(row.errHas));
    EXPECT_EQ(snapshot(), before);
}

INSTANTIATE_TEST_SUITE_P(Rows, MmscCommand, ::testing::ValuesIn(kCommandRows),
                         [](const ::testing::TestParamInfo<CommandRow>& info) {
                             return std::string(info.param.name);
                         });

TEST_F(MmscTest, BadInputIsRefusedWritingNothing) {
    writeInputs();
    const auto before = snapshot();
    // "mms beta %2/pic1.gif" aims inside the stored message.
    for (const QString& line :
         {u"jpeg %1/big.bmp"_s, u"list extra"_s, u"show"_s, u"show absent"_s, u"show ../MMS"_s,
          u"show temp"_s, u"export absent %1/never.tpl"_s, u"export beta %1"_s,
          u"export beta %1/no/such.tpl"_s, u"mms nothere %1/never.mms"_s,
          u"mms beta %1/never.mms --to nobody"_s, u"mms beta %2/pic1.gif"_s, u"render beta"_s,
          u"render beta %1/x --scale 0"_s, u"render beta %1/x --scale"_s, u"render a/b %1/x"_s}) {
        SCOPED_TRACE(line.toStdString());
        expectRun(mmsc(line), 2);
    }
    EXPECT_EQ(snapshot(), before);
    const MmscRun jpeg = mmsc(u"jpeg %1/big.bmp %1/out.jpg"_s);
    const qint64 size = QFileInfo(tmp.file(u"out.jpg"_s)).size();
    expectRun(jpeg, 0, u"%1\t%2 bytes\n"_s.arg(tmp.file(u"out.jpg"_s)).arg(size));
    EXPECT_GT(size, 102400); // no size limit here
    EXPECT_EQ(QDir(tmp.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList({u"a.gif"_s, u"big.bmp"_s, u"media"_s, u"out.jpg"_s, u"t.mid"_s, u"text.gif"_s,
                           u"UserData"_s}));
}

TEST_F(MmscTest, ExportMmsAndRenderWriteWhatTheLibraryWritesAndDrawsForTheStoredMessage) {
    const auto before = snapshot();
    tmp.write(u"out.tpl"_s, "old");
    expectRun(mmsc(u"export beta %1/out.tpl"_s), 0);
    EXPECT_FALSE(QFileInfo::exists(tmp.file(u"upload.tpl"_s)));
    TempDir reference;
    slides.setfolderpath(QString());
    slides.setfilename(reference.file(u"upload"_s));
    ASSERT_TRUE(generateSMIL(slides, reference.path(), u"Hello"_s).isOk());
    const auto expected = readTar(reference.file(u"upload.tpl"_s));
    ASSERT_EQ(expected.size(), 4u);
    EXPECT_EQ(readTar(tmp.file(u"out.tpl"_s)), expected);

    expectRun(mmsc(u"mms beta %1/beta.mms"_s), 0);
    QBuffer request;
    request.open(QIODevice::ReadWrite);
    ASSERT_TRUE(writeSendRequest(slides, folder(u"beta"_s), u"Hello"_s, request).isOk());
    EXPECT_EQ(TempDir::read(tmp.file(u"beta.mms"_s)), request.data());
    EXPECT_TRUE(request.data().contains("MThd-tune"));

    // render draws every slide and removes the slides of earlier renders.
    tmp.write(u"out/new/slide3.png"_s, "old");
    tmp.write(u"out/new/notes.txt"_s, "kept");
    const QString out = tmp.file(u"out/new"_s);
    expectRun(mmsc(u"render beta %1/out/new --scale 2"_s), 0,
              u"%1/slide1.png\t3\n%1/slide2.png\t7\n"_s.arg(out));
    EXPECT_EQ(QDir(out).entryList(QDir::Files),
              (QStringList{u"notes.txt"_s, u"slide1.png"_s, u"slide2.png"_s}));
    const QImage first(out + u"/slide1.png"_s), second(out + u"/slide2.png"_s);
    EXPECT_EQ(first.size(), QSize(320, 280));
    EXPECT_EQ(first.pixel(160, 110), qRgb(0, 0, 255)); // the picture in the middle of its region
    EXPECT_EQ(second.pixel(160, 110), qRgb(255, 255, 255));
    EXPECT_EQ(snapshot(), before);

    // A part gone from the stored message fails the request, naming it.
    QFile::remove(folder(u"beta"_s) + u"/pic1.gif"_s);
    expectRun(mmsc(u"mms beta %1/lost.mms --to 123"_s), 1, {}, u"pic1.*"_s);
    EXPECT_FALSE(QFile::exists(tmp.file(u"lost.mms"_s)));
}

// mmsc build, on an empty home with its media in a folder of their own.
class MmscBuild : public ::testing::Test {
protected:
    MmscBuild() {
        media.write(u"photo.gif"_s, padded(tinyGif(), 1000));
        media.write(u"voice.amr"_s, QByteArray(300, 'a'));
    }
    // `line` split at spaces; %1 is the media folder, %2 a target archive in it.
    MmscRun mmsc(QString line, std::function<void()> inChild = {}, const QString& command = u"build"_s) {
        line.replace(u"%1"_s, media.path()).replace(u"%2"_s, target);
        return runMmsc({u"--home"_s, home.path(), command}, line, std::move(inChild));
    }
    QStringList homeEntries() const {
        return QDir(home.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    QByteArray stored(const QString& file) const {
        return TempDir::read(home.file(u"UserData/MMS/"_s + file));
    }

    TempDir home;
    TempDir media;
    const QString target = media.file(u"out.tpl"_s);
    const QString twoSlides = u"--subject Hello --slide --pic %1/photo.gif --text Hi "
                              "--slide --dur 5 --sound %1/voice.amr "_s;
};

TEST_F(MmscBuild, SaveStoresTheSlidesAndExportWritesOnlyTheChosenFile) {
    expectRun(mmsc(twoSlides + u"--save msg"_s), 0);
    EXPECT_EQ(QDir(home.file(u"UserData/MMS/msg"_s)).entryList(QDir::Files, QDir::Name).join(u' '),
              u"main.smil pic1.gif sound2.amr text1.txt texts.xml"_s);
    // The edited duration is a number and goes into the index bare; the new slide's stays quoted.
    EXPECT_EQ(stored(u"msg.mmt"_s),
              QByteArray("Hello\r\n\"3\",\"I\",\"T\",\"N\"\r\n5,\"N\",\"N\",\"S\"\r\n"));

    media.write(u"out.tpl"_s, "old contents");
    expectRun(mmsc(twoSlides + u"--export %2"_s), 0);
    EXPECT_EQ(tarNames(target), u"main.smil texts.xml pic1.gif sound2.amr"_s);
    EXPECT_EQ(homeEntries(), QStringList(u"UserData"_s));
}

TEST_F(MmscBuild, PicturesAndSoundsFollowTheComposersRulesAndBadInputWritesNothing) {
    media.write(u"text.jpg"_s, "not a picture");
    media.write(u"empty.gif"_s, "");
    media.write(u"big.gif"_s, padded(tinyGif(), 102400));
    media.write(u"noise.bmp"_s, encoded(noise(600, 600), "BMP"));
    media.write(u"long.amr"_s, QByteArray(102400, 'a'));
    for (const QString& line : {u"--slide --pic %1/photo.gif --slide --pic %1/text.jpg --save m"_s,
                                u"--slide --pic %1/empty.gif --save m"_s,
                                u"--slide --pic %1/big.gif --save m"_s,
                                u"--slide --pic %1/noise.bmp --export %2"_s,
                                u"--slide --sound %1/long.amr --save m"_s,
                                u"--slide --sound %1/photo.gif --save m"_s,
                                u"--subject Hello,world --slide --save m"_s,
                                u"--slide --pic %1/missing.gif --save m"_s,
                                u"--slide --sound %1 --export %2"_s,
                                u"--slide --dur 32768 --save m"_s,
                                u"--slide --dur -1"_s,
                                u"--slide --dur"_s,
                                u"--text early --save m"_s,
                                u"--slide --colour red"_s,
                                u"--slide extra"_s,
                                u"--slide --save a/b"_s,
                                u"--slide --save m --export %2"_s,
                                u"--slide --export %1"_s,
                                u"--slide --export %1/no/dir/x.tpl"_s,
                                u"--subject two\nlines --save m"_s}) {
        SCOPED_TRACE(line.toStdString());
        expectRun(mmsc(line), 2);
    }
    // --info writes nothing either.
    const int size = 499 + 5 + 2 * 36 + (1000 + 41 + 27) + (2 + 2 + 42 + 28) + (300 + 30 + 37);
    expectRun(mmsc(twoSlides + u"--info"_s), 0, u"slides: 2\nsize: %1\n"_s.arg(size));
    expectRun(mmsc(u"--info"_s), 0, u"slides: 0\nsize: 0\n"_s);
    EXPECT_TRUE(homeEntries().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(target));
    // A large picture is re-encoded as a JPEG of its size, --fit shrinks the one its JPEG could not fit
    // keeping its shape, and the scratch copies are gone.
    media.write(u"large.bmp"_s, encoded(filled(300, 200, Qt::green), "BMP"));
    expectRun(mmsc(u"--slide --pic %1/large.bmp --save m"_s), 0);
    EXPECT_EQ(QImage::fromData(stored(u"m/pic1.jpg"_s), "JPEG").size(), QSize(300, 200));
    expectRun(mmsc(u"--fit --slide --pic %1/noise.bmp --save f"_s), 0);
    const QImage fitted = QImage::fromData(stored(u"f/pic1.jpg"_s), "JPEG");
    EXPECT_TRUE(stored(u"f/pic1.jpg"_s).size() < 102400 && fitted.width() == fitted.height());
    EXPECT_EQ(homeEntries(), QStringList(u"UserData"_s));
    // --raw takes any file as it is.
    expectRun(mmsc(u"--raw --slide --pic %1/text.jpg --sound %1/photo.gif --save r"_s), 0);
    EXPECT_EQ(stored(u"r/pic1.jpg"_s), QByteArray("not a picture"));
}

// Writes stop at 20000 bytes, as on a full disk, and mmsc says so in the system's words.
TEST_F(MmscBuild, AFullDiskAndAReadOnlyFolderAreNamed) {
    media.write(u"voice.amr"_s, QByteArray(60000, 'a'));
    const auto fullDisk = [] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{20000, 20000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    };
    for (const char* line :
         {"--slide --sound %1/voice.amr --save m", "--slide --sound %1/voice.amr --export %2"}) {
        const MmscRun r = mmsc(QString::fromLatin1(line), fullDisk);
        expectRun(r, 2, {}, u"File too large"_s);
        EXPECT_TRUE(r.err.contains(u"sound1.amr"_s)) << r.err.toStdString();
    }
    expectRun(mmsc(u"--slide --sound %1/voice.amr --save m"_s), 0);
    expectRun(mmsc(u"m %2"_s, fullDisk, u"mms"_s), 1, {}, u"File too large"_s);
    EXPECT_FALSE(QFileInfo::exists(target));

    // Without the power to override permissions, in a home folder that cannot be written.
    TempDir readOnly;
    QFile::setPermissions(readOnly.path(), QFileDevice::Permissions(0x5555));
    QFile::setPermissions(media.path(), QFileDevice::Permissions(0x7755));
    const MmscRun denied = runMmsc({u"--home"_s, readOnly.path(), u"build"_s}, u"--slide --save m"_s, [] {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(3);
    });
    expectRun(denied, 2, {}, u"Permission denied"_s);
}

TEST(CommandLineTest, OptionsAndExitStatuses) {
    const QString version = programVersion();
    const TempDir dir;
    const QString home = dir.file(u"new/home"_s);
    const struct {
        QString program;
        QStringList args;
        int status;
        QString output; // a line the output holds
    } cases[] = {
        {u"mmsc"_s, {u"--version"_s}, 0, u"mmsc "_s + version + u"\n"_s},
        {u"mmsc"_s, {u"--bogus"_s, u"list"_s}, 2, u"mmsc: Unknown option 'bogus' (see mmsc --help)"_s},
        // Options after the command are the command's own.
        {u"mmsc"_s, {u"list"_s, u"--version"_s}, 2, u"mmsc: list takes no arguments"_s},
        {u"mms-composer"_s, {u"--version"_s}, 0, u"mms-composer "_s + version + u"\n"_s},
        {u"mms-composer"_s, {u"--language"_s, u"xx"_s}, 2, u"mms-composer: unknown language \"xx\""_s},
        {u"mms-composer"_s, {u"--quit-after"_s, u"-1"_s}, 2, u"mms-composer: --quit-after needs"_s},
        {u"mms-composer"_s, {u"extra"_s}, 2, u"mms-composer: unknown argument \"extra\""_s},
        // The composer starts on a new home folder and quits on its own.
        {u"mms-composer"_s, {u"--home"_s, home, u"--quit-after"_s, u"0"_s}, 0, {}},
    };
    for (const auto& c : cases) {
        const auto r = runProgram(c.program, c.args);
        EXPECT_EQ(r.exitCode, c.status) << qPrintable(c.args.join(u' '));
        EXPECT_TRUE((r.out + r.err).contains(c.output)) << qPrintable(r.out + r.err);
    }
    EXPECT_TRUE(QFileInfo(home + u"/UserData/MMS"_s).isDir());
}

} // namespace
