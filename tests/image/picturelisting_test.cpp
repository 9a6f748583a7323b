#include "common/folderpaths.h"
#include "image/imageprobe.h"
#include "image/thumbnailloader.h"
#include "picturefiles.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSignalSpy>
#include <gtest/gtest.h>
#include <initializer_list>
#include <tuple>

using namespace mms;
using mms::test::near;
using namespace Qt::StringLiterals;

namespace {

QByteArray encode(QImage::Format format, int w, int h, const char* type, bool progressive = false) {
    return test::encoded(test::filled(w, h, Qt::red).convertToFormat(format), type, -1, progressive);
}

QByteArray bytes(std::initializer_list<int> values) {
    QByteArray out;
    for (int v : values)
        out.append(char(v));
    return out;
}

QByteArray segment(int marker, const QByteArray& body) {
    const int n = int(body.size()) + 2;
    return bytes({0xFF, marker, n >> 8, n & 0xFF}) + body;
}

QByteArray frame(int h, int w, int components) {
    return bytes({8, h >> 8, h & 0xFF, w >> 8, w & 0xFF, components});
}

// A 4 by 4 PNG whose header claims `colourType` at `bitDepth`.
QByteArray png(int colourType, int bitDepth) {
    QByteArray b = encode(QImage::Format_Indexed8, 4, 4, "png");
    b[25] = char(colourType);
    b[24] = char(bitDepth);
    return b;
}

// What a listing reports: rows in order, each once, until it finishes.
struct Listing {
    explicit Listing(ThumbnailLoader& loader)
        : ready(&loader, &ThumbnailLoader::thumbnailReady), done(&loader, &ThumbnailLoader::finished) {}
    QStringList names() const {
        QStringList out;
        for (const QList<QVariant>& args : ready) {
            EXPECT_EQ(args[0].toInt(), out.size());
            out << args[1].toString();
        }
        return out;
    }
    QColor colour(int row) const { return ready[row][2].value<QImage>().pixelColor(20, 20); }
    QSignalSpy ready, done;
};

} // namespace

TEST(FolderPaths, BrowseStartsAtRootsWithTheirSlashAndAtFoldersWithout) {
    const QStringList roots{QStringLiteral("/"), QStringLiteral("/media/USB/")};
    EXPECT_EQ(browseStartPath(QString(), roots), QDir::rootPath());
    EXPECT_EQ(browseStartPath(QStringLiteral("/"), roots), QStringLiteral("/"));
    EXPECT_EQ(browseStartPath(QStringLiteral("/media/usb/"), roots), QStringLiteral("/media/usb/"));
    EXPECT_EQ(browseStartPath(QStringLiteral("/home/ann/"), roots), QStringLiteral("/home/ann"));
    EXPECT_EQ(browseStartPath(QStringLiteral("/home//"), roots), QStringLiteral("/home/")); // one slash only
    EXPECT_EQ(addTrailingSlash(QStringLiteral("/a")), QStringLiteral("/a/"));
    EXPECT_EQ(addTrailingSlash(QStringLiteral("/a/")), QStringLiteral("/a/"));

    const QStringList mounted = driveRoots();
    EXPECT_TRUE(mounted.contains(QStringLiteral("/")));
    EXPECT_EQ(mounted.filter(QRegularExpression(QStringLiteral("[^/]$"))), QStringList());
}

TEST(ImageProbe, HeadersAndHostileBytes) {
    QByteArray bmp(54, '\0');
    bmp[0] = 'B', bmp[1] = 'M', bmp[18] = char(0x70), bmp[19] = char(0x11), bmp[20] = 1, bmp[22] = 5,
    bmp[28] = 32;
    const QByteArray soi("\xFF\xD8", 2), app1("\xFF\xD8\xFF\xE1", 4);
    const struct {
        const char* what;
        QByteArray bytes;
        bool answer = false;
        int type = 0, w = 0, h = 0, depth = 0;
    } cases[] = {
        {"gif", QByteArray::fromHex("474946383961 2c01 c800 f7 0000"), true, 1, 300, 200, 8},
        {"bmp", encode(QImage::Format_RGB888, 321, 17, "bmp"), true, 4, 321, 17, 24},
        {"bmp wider than 65535", bmp, true, 4, 0x1170, 5, 32},
        {"png rgb", encode(QImage::Format_RGB888, 40, 30, "png"), true, 3, 40, 30, 24},
        {"png rgba", encode(QImage::Format_ARGB32, 40, 30, "png"), true, 3, 40, 30, 32},
        {"png grey", encode(QImage::Format_Grayscale8, 40, 30, "png"), true, 3, 40, 30, 8},
        {"png grey 16", encode(QImage::Format_Grayscale16, 40, 30, "png"), true, 3, 40, 30, 16},
        // A palette image is 8 bits deep whatever its bit depth.
        {"palette", png(3, 4), true, 3, 4, 4, 8},
        {"grey with alpha", png(4, 16), true, 3, 4, 4, 32},
        // An unknown colour type falls through to the JPEG scan.
        {"unknown colour type", png(5, 16)},
        {"unknown colour type with a frame", png(5, 16) + soi + segment(0xC0, frame(9, 7, 3)), true, 2, 7, 9,
         24},
        {"jpeg baseline", encode(QImage::Format_RGB32, 640, 480, "jpeg"), true, 2, 640, 480, 24},
        {"jpeg grey", encode(QImage::Format_Grayscale8, 64, 48, "jpeg"), true, 2, 64, 48, 8},
        {"jpeg progressive", encode(QImage::Format_RGB32, 90, 70, "jpeg", true), true, 2, 90, 70, 24},
        // Segments before the frame are skipped, DHT (C4) is not a frame; any prefix before SOI is fine.
        {"skipped segments",
         "junk" + soi + segment(0xE0, "JFIF\0") + segment(0xC4, QByteArray(20, 1)) + segment(0xC8, {}) +
             segment(0xC2, frame(100, 200, 1)),
         true, 2, 200, 100, 8},
        {"empty", {}},
        {"all 0xFF", QByteArray(70000, char(0xFF))},
        // A segment length that jumps past the limit, one that lands on the limit, and a zero length.
        {"jump past the end", app1 + QByteArray("\xFF\xFF", 2)},
        {"jump to the limit", app1 + QByteArray::fromHex("fff8") + QByteArray(65540, '\0')},
        {"zero length", app1 + QByteArray(2, '\0') + segment(0xC1, frame(3, 4, 3)), true, 2, 4, 3, 24},
        // A frame beyond the first 64 KiB is found by the chain; a start of image beyond them is not.
        {"frame beyond 64 KiB",
         soi + segment(0xFE, QByteArray(65000, 'c')) + segment(0xFE, QByteArray(600, 'c')) +
             segment(0xC0, frame(1, 1, 3)),
         true, 2, 1, 1, 24},
    };
    for (const auto& c : cases) {
        const ImageProbe r = checkValidImg(QByteArrayView(c.bytes));
        EXPECT_EQ(std::tuple(r.answer, r.imgType, r.imgWidth, r.imgHeight, r.imgDepth),
                  std::tuple(c.answer, c.type, c.w, c.h, c.depth))
            << c.what;
    }
    for (int at : {65520, 65522, 65523, 65524, 65525, 65530}) {
        const QByteArray b =
            QByteArray(at, 'x') + soi + QByteArray("\xFF\xC0\x00\x11", 4) + QByteArray(20, char(0xFF));
        EXPECT_EQ(checkValidImg(QByteArrayView(b)).imgType, at <= 65522 ? 2 : 0) << at;
    }
}

TEST(ImageProbe, FilesAreReadAndUnreadableOnesReported) {
    test::TempDir dir;
    ImageProbe r;
    ASSERT_TRUE(checkValidImg(
        dir.write(QStringLiteral("a.gif"), QByteArray::fromHex("474946 383761 0a00 0b00 00")), r));
    EXPECT_EQ(r.imgType, 1);
    EXPECT_EQ(r.imgDepth, 1);
    r.imgType = 7;
    const Status s = checkValidImg(dir.file(QStringLiteral("missing.png")), r);
    EXPECT_FALSE(s.isOk());
    EXPECT_TRUE(s.message().contains(QStringLiteral("missing.png")));
    EXPECT_EQ(r.imgType, 0);
    EXPECT_FALSE(checkValidImg(dir.path(), r).isOk()); // a folder is not a file
}

TEST(ThumbnailLoader, ListsProbesKeepsThumbnailsInPlaceAndDropsWorkOnARestart) {
    test::TempDir dir;
    dir.write(u"a.gif"_s, test::encoded(test::filled(20, 10, Qt::green), "PNG"));
    dir.write(u"b.GIF"_s, test::tinyGif());
    dir.write(u"c.jpg"_s, "a text file, not a picture");
    // A header the probe accepts with nothing behind it: dropped once decoding fails, without a gap.
    dir.write(u"d.jpg"_s, QByteArray::fromHex("ffd8ffc00011080010001003012200021101031101ffd9"));
    dir.write(u"e.jpg"_s, test::encoded(test::filled(30, 60, Qt::blue), "JPG", 95));
    dir.write(u"f.bmp"_s, test::encoded(test::filled(80, 20, Qt::yellow), "BMP"));
    dir.write(u"g.png"_s, test::encoded(test::filled(8, 8, Qt::red), "PNG"));

    EXPECT_EQ(pictureCandidates(dir.path(), 0).join(u' '), u"a.gif b.GIF c.jpg d.jpg e.jpg f.bmp"_s);
    EXPECT_EQ(pictureCandidates(dir.path(), 3).join(u' '), u"f.bmp"_s);
    EXPECT_TRUE(pictureCandidates(dir.path(), 4).isEmpty());
    // The text file fails the probe; the PNG named .gif passes it.
    EXPECT_EQ(listPictureFiles(dir.path(), 0).join(u' '), u"a.gif b.GIF d.jpg e.jpg f.bmp"_s);
    test::TempDir numbered;
    for (const char* name : {"img10.jpg", "IMG9.jpg", "img1.jpg"})
        numbered.write(QLatin1String(name), "x");
    EXPECT_EQ(pictureCandidates(numbered.path(), 2).join(u' '), u"img1.jpg IMG9.jpg img10.jpg"_s);

    ThumbnailLoader loader;
    Listing listing(loader);
    loader.start(dir.path(), 0);
    ASSERT_TRUE(listing.done.wait(20000));
    ASSERT_EQ(listing.names().join(u' '), u"a.gif b.GIF e.jpg f.bmp"_s);
    const QColor colours[] = {Qt::green, Qt::red, Qt::blue, Qt::yellow};
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(near(listing.colour(i), colours[i])) << i;
    // The shape is kept: background above a wide picture, beside a tall one.
    const QImage wide = slideThumbnail(dir.file(u"f.bmp"_s));
    EXPECT_EQ(wide.pixelColor(35, 10), thumbnailBackground());
    EXPECT_TRUE(near(wide.pixelColor(35, 35), Qt::yellow));
    EXPECT_EQ(loadFittedPicture(dir.file(u"e.jpg"_s), {40, 40}).pixelColor(3, 20), thumbnailBackground());
    EXPECT_EQ(slideThumbnail(dir.file(u"c.jpg"_s)), blankThumbnail(70));

    // A restart or a cancel drops the work in flight.
    Listing restarted(loader);
    loader.start(dir.path(), 0);
    loader.start(dir.path(), 3);
    ASSERT_TRUE(restarted.done.wait(20000));
    EXPECT_EQ(restarted.names(), QStringList{u"f.bmp"_s});
    Listing cancelled(loader);
    loader.start(dir.path(), 0);
    loader.cancel();
    EXPECT_FALSE(cancelled.done.wait(300));
    EXPECT_TRUE(cancelled.ready.isEmpty());
    EXPECT_FALSE(loader.isRunning());
}

TEST(ThumbnailLoader, KeepsTheOrderWhateverTheWorkersDo) {
    test::TempDir dir;
    const auto colour = [](int i) { return QColor::fromHsv(i * 9, 255, 255); };
    const auto number = [](const QString& path) { return QFileInfo(path).baseName().mid(1).toInt(); };
    for (int i = 0; i < 40; ++i)
        dir.write(u"p%1.bmp"_s.arg(i), test::encoded(test::filled(60, 45, colour(i)), "BMP"));
    ThumbnailLoader loader(nullptr, [&](const QString& path) { return number(path) % 3 != 1; });
    loader.setMaxThreads(4);
    Listing listing(loader);
    loader.start(dir.path(), 0);
    ASSERT_TRUE(listing.done.wait(20000));
    const QStringList names = listing.names();
    ASSERT_EQ(names.size(), 27);
    for (int r = 0; r < 27; ++r) {
        EXPECT_EQ(number(names[r]), r / 2 * 3 + (r % 2 ? 2 : 0));
        EXPECT_TRUE(near(listing.colour(r), colour(number(names[r])))) << r;
    }
}

// A header claiming a huge picture is answered with a stand-in at once, without decoding; a turned
// photograph is shown upright.
TEST(ThumbnailLoader, BombsGetAStandInAndTurnedPicturesStandUpright) {
    test::TempDir dir;
    const QByteArray small = test::encoded(test::filled(16, 16, Qt::green), "JPG", 90);
    const auto claiming = [&small](int width, int height) {
        QByteArray bomb = small;
        const qsizetype frame = bomb.indexOf("\xFF\xC0");
        bomb[frame + 5] = char(height >> 8), bomb[frame + 6] = char(height);
        bomb[frame + 7] = char(width >> 8), bomb[frame + 8] = char(width);
        return bomb;
    };
    QImage wide = test::filled(80, 20, Qt::red);
    for (int x = 40; x < 80; ++x)
        for (int y = 0; y < 20; ++y)
            wide.setPixelColor(x, y, Qt::blue);
    dir.write(u"a.jpg"_s, claiming(25200, 33300));
    dir.write(u"b.jpg"_s, claiming(64250, 64250));
    dir.write(u"c.jpg"_s, test::withOrientation(test::encoded(wide, "JPG", 95), 6));
    EXPECT_TRUE(declaresImplausibleSize(dir.file(u"a.jpg"_s)));
    EXPECT_FALSE(declaresImplausibleSize(dir.file(u"c.jpg"_s)));

    ThumbnailLoader loader;
    Listing listing(loader);
    loader.start(dir.path(), 0);
    ASSERT_TRUE(listing.done.wait(10000));
    ASSERT_EQ(listing.names().join(u' '), u"a.jpg b.jpg c.jpg"_s);
    EXPECT_EQ(listing.colour(0), oversizedThumbnail(40).pixelColor(20, 20));
    const QImage upright = loadFittedPicture(dir.file(u"c.jpg"_s), {40, 40});
    EXPECT_TRUE(near(upright.pixelColor(20, 2), Qt::red) && near(upright.pixelColor(20, 37), Qt::blue));
    EXPECT_EQ(upright.pixelColor(2, 20), thumbnailBackground());
}
