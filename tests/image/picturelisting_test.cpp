#include "common/folderpaths.h"
#include "image/thumbnailloader.h"
#include "picturefiles.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QDir>
#include <QFileInfo>
#include <QPainter>
#include <QRegularExpression>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace mms;
using mms::test::near;
using namespace Qt::StringLiterals;

namespace {

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
    const QStringList roots{u"/"_s, u"/media/USB/"_s};
    const std::pair<QString, QString> starts[] = {{{}, QDir::rootPath()},
                                                  {u"/"_s, u"/"_s},
                                                  {u"/media/usb/"_s, u"/media/usb/"_s},
                                                  {u"/home/ann/"_s, u"/home/ann"_s},
                                                  {u"/home//"_s, u"/home/"_s}}; // one slash only
    for (const auto& [given, start] : starts)
        EXPECT_EQ(browseStartPath(given, roots), start) << given.toStdString();
    EXPECT_EQ(addTrailingSlash(u"/a"_s), u"/a/"_s);
    EXPECT_EQ(addTrailingSlash(u"/a/"_s), u"/a/"_s);
    const QStringList mounted = driveRoots();
    EXPECT_TRUE(mounted.contains(u"/"_s));
    EXPECT_EQ(mounted.filter(QRegularExpression(u"[^/]$"_s)), QStringList());
}

TEST(ThumbnailLoader, ListsProbesKeepsThumbnailsInPlaceAndDropsWorkOnARestart) {
    test::TempDir dir;
    dir.write(u"a.gif"_s, test::solid("PNG", 20, 10, Qt::green));
    dir.write(u"b.GIF"_s, test::tinyGif());
    dir.write(u"c.jpg"_s, "a text file, not a picture");
    // A header the probe accepts with nothing behind it: dropped once decoding fails, without a gap.
    dir.write(u"d.jpg"_s, QByteArray::fromHex("ffd8ffc00011080010001003012200021101031101ffd9"));
    dir.write(u"e.jpg"_s, test::encoded(test::filled(30, 60, Qt::blue), "JPG", 95));
    dir.write(u"f.bmp"_s, test::solid("BMP", 80, 20, Qt::yellow));
    dir.write(u"g.png"_s, test::solid("PNG", 8, 8, Qt::red));

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
        dir.write(u"p%1.bmp"_s.arg(i), test::solid("BMP", 60, 45, colour(i)));
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
    QImage wide = test::filled(80, 20, Qt::red);
    QPainter(&wide).fillRect(40, 0, 40, 20, Qt::blue);
    dir.write(u"a.jpg"_s, test::claiming(small, 25200, 33300));
    dir.write(u"b.jpg"_s, test::claiming(small, 64250, 64250));
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
