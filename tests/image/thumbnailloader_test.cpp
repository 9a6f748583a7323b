#include "image/thumbnailloader.h"
#include "picturefiles.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>
#include <gtest/gtest.h>
#include <vector>

using namespace mms;

namespace {

// A JPEG header the probe accepts (start of image, then a baseline frame) with no picture behind it.
const QByteArray
    kHeaderOnlyJpeg("\xFF\xD8\xFF\xC0\x00\x11\x08\x00\x10\x00\x10\x03\x01\x22\x00\x02\x11\x01\x03\x11"
                    "\x01\xFF\xD9",
                    23);

struct Row {
    int row;
    QString name;
    QImage thumbnail;
};

// Collects what a listing delivers until it finishes (or a generous time limit passes).
class Listing {
public:
    explicit Listing(ThumbnailLoader& loader) : loader_(loader) {
        QObject::connect(&loader, &ThumbnailLoader::thumbnailReady, &context_,
                         [this](int row, const QString& name, const QImage& t) {
                             rows.push_back({row, name, t});
                         });
        QObject::connect(&loader, &ThumbnailLoader::finished, &context_,
                         [this](int count) { finished = count; });
    }
    void wait(int msecs = 20000) {
        QEventLoop loop;
        QObject::connect(&loader_, &ThumbnailLoader::finished, &loop, &QEventLoop::quit);
        QTimer::singleShot(msecs, &loop, &QEventLoop::quit);
        loop.exec();
    }
    QStringList names() const {
        QStringList out;
        for (const Row& r : rows)
            out << r.name;
        return out;
    }
    std::vector<Row> rows;
    int finished = -1;

private:
    ThumbnailLoader& loader_;
    QObject context_;
};

class ThumbnailTest : public ::testing::Test {
protected:
    ThumbnailTest() {
        dir.write(QStringLiteral("a.gif"), test::encoded(test::filled(20, 10, Qt::green), "PNG"));
        dir.write(QStringLiteral("b.GIF"), test::tinyGif());
        dir.write(QStringLiteral("c.jpg"), "just some text, not a picture");
        dir.write(QStringLiteral("d.JPG"), kHeaderOnlyJpeg);
        dir.write(QStringLiteral("e.jpg"), test::encoded(test::filled(30, 60, Qt::blue), "JPG", 95));
        dir.write(QStringLiteral("f.bmp"), test::encoded(test::filled(80, 20, Qt::yellow), "BMP"));
        dir.write(QStringLiteral("g.png"), test::encoded(test::filled(8, 8, Qt::red), "PNG"));
    }
    test::TempDir dir;
};

bool near(QColor a, QColor b) {
    return qAbs(a.red() - b.red()) < 40 && qAbs(a.green() - b.green()) < 40 && qAbs(a.blue() - b.blue()) < 40;
}

} // namespace

TEST_F(ThumbnailTest, ListsGifThenJpegThenBmpSortedAndProbed) {
    EXPECT_EQ(pictureCandidates(dir.path(), 0),
              QStringList({QStringLiteral("a.gif"), QStringLiteral("b.GIF"), QStringLiteral("c.jpg"),
                           QStringLiteral("d.JPG"), QStringLiteral("e.jpg"), QStringLiteral("f.bmp")}));
    EXPECT_EQ(pictureCandidates(dir.path(), 3), QStringList{QStringLiteral("f.bmp")});
    EXPECT_TRUE(pictureCandidates(dir.path(), 4).isEmpty());
    EXPECT_TRUE(pictureCandidates(dir.file(QStringLiteral("missing")), 0).isEmpty());
    // The text file is rejected by the probe; the PNG named .gif and the header-only JPEG pass it.
    EXPECT_EQ(listPictureFiles(dir.path(), 2),
              QStringList({QStringLiteral("d.JPG"), QStringLiteral("e.jpg")}));
    EXPECT_EQ(listPictureFiles(dir.path(), 1),
              QStringList({QStringLiteral("a.gif"), QStringLiteral("b.GIF")}));

    test::TempDir numbered;
    for (const char* name : {"img10.jpg", "IMG9.jpg", "img1.jpg"})
        numbered.write(QString::fromLatin1(name), "x");
    EXPECT_EQ(
        pictureCandidates(numbered.path(), 2),
        QStringList({QStringLiteral("img1.jpg"), QStringLiteral("IMG9.jpg"), QStringLiteral("img10.jpg")}));
}

TEST_F(ThumbnailTest, SkippedFilesDoNotShiftTheThumbnailsAfterThem) {
    ThumbnailLoader loader;
    Listing listing(loader);
    loader.start(dir.path(), 0);
    listing.wait();
    ASSERT_EQ(listing.finished, 4);
    EXPECT_FALSE(loader.isRunning());
    EXPECT_EQ(listing.names(), QStringList({QStringLiteral("a.gif"), QStringLiteral("b.GIF"),
                                            QStringLiteral("e.jpg"), QStringLiteral("f.bmp")}));
    const QColor expected[] = {Qt::green, Qt::red, Qt::blue, Qt::yellow};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(listing.rows[i].row, i);
        EXPECT_EQ(listing.rows[i].thumbnail.size(), QSize(40, 40));
        EXPECT_TRUE(near(listing.rows[i].thumbnail.pixelColor(20, 20), expected[i])) << i;
    }
    // Aspect ratio kept: the wide picture has background above it, the tall one beside it.
    EXPECT_EQ(listing.rows[0].thumbnail.pixelColor(20, 3), thumbnailBackground());
    EXPECT_EQ(listing.rows[2].thumbnail.pixelColor(3, 20), thumbnailBackground());
}

TEST(ThumbnailLoader, DeliversManyFilesInOrderWhateverTheThreadsDo) {
    test::TempDir dir;
    QStringList expected;
    for (int i = 0; i < 40; ++i) {
        const QString name = QStringLiteral("p%1.bmp").arg(i);
        dir.write(name, test::encoded(test::filled(60, 45, QColor::fromHsv(i * 9, 255, 255)), "BMP"));
        if (i % 3 != 1) expected << name;
    }
    // Every third file rejected, as if its header were not recognised.
    ThumbnailLoader loader(nullptr, [](const QString& path) {
        return QFileInfo(path).fileName().mid(1).chopped(4).toInt() % 3 != 1;
    });
    loader.setMaxThreads(4);
    Listing listing(loader);
    loader.start(dir.path(), 3);
    listing.wait();
    ASSERT_EQ(listing.names(), expected);
    for (size_t r = 0; r < listing.rows.size(); ++r) {
        const int i = listing.rows[r].name.mid(1).chopped(4).toInt();
        EXPECT_TRUE(near(listing.rows[r].thumbnail.pixelColor(20, 20), QColor::fromHsv(i * 9, 255, 255)))
            << r;
    }
}

TEST_F(ThumbnailTest, ARestartOrCancelDropsTheWorkInFlight) {
    ThumbnailLoader loader;
    Listing listing(loader);
    loader.start(dir.path(), 0);
    loader.start(dir.path(), 3);
    listing.wait();
    EXPECT_EQ(listing.names(), QStringList{QStringLiteral("f.bmp")});
    EXPECT_EQ(listing.finished, 1);

    listing.rows.clear();
    listing.finished = -1;
    loader.start(dir.path(), 0);
    loader.cancel();
    QEventLoop loop;
    QTimer::singleShot(300, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_TRUE(listing.rows.empty());
    EXPECT_EQ(listing.finished, -1);
    EXPECT_FALSE(loader.isRunning());
}

TEST_F(ThumbnailTest, SlideThumbnailsKeepTheShapeOrAreBlank) {
    const QImage wide = slideThumbnail(dir.file(QStringLiteral("f.bmp")));
    EXPECT_EQ(wide.size(), QSize(70, 70));
    EXPECT_TRUE(near(wide.pixelColor(35, 35), Qt::yellow));
    EXPECT_EQ(wide.pixelColor(35, 10), thumbnailBackground());
    EXPECT_EQ(slideThumbnail(dir.file(QStringLiteral("c.jpg"))), blankThumbnail(70));
    EXPECT_EQ(slideThumbnail(QString()), blankThumbnail(70));
    EXPECT_EQ(loadFittedPicture(dir.file(QStringLiteral("e.jpg")), kImageRegion).size(), kImageRegion);
}
