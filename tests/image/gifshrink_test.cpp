#include "image/gifshrink.h"
#include "picturefiles.h"
#include "support/qtprint.h"

#include <QBuffer>
#include <QImageReader>
#include <gtest/gtest.h>
#include <numeric>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

// As Qt's reader gives it back: delays in milliseconds, loops 0 for none and -1 for ever.
struct Gif {
    QSize size;
    std::vector<int> delays;
    int loops = 0;
};

Gif read(QByteArray bytes) {
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer, "gif");
    Gif result{reader.size(), {}, reader.loopCount()};
    while (!reader.read().isNull())
        result.delays.push_back(reader.nextImageDelay());
    return result;
}

int total(const std::vector<int>& delays) {
    return std::accumulate(delays.begin(), delays.end(), 0);
}

} // namespace

TEST(GifShrink, KeepsTheAnimationItsTimeAndLoopsDroppingFramesOnlyWhenNeeded) {
    const std::vector<int> delays{10, 20, 10, 30, 10, 10, 40, 10};
    const QByteArray source = test::animatedGif(QSize(300, 200), delays, 3);
    ASSERT_GT(source.size(), 400000);
    const struct {
        qint64 maxBytes;
        bool allFrames;
    } cases[] = {{102399, true}, {5000, false}};
    for (const auto& c : cases) {
        const GifShrink shrunk = shrinkGif(source, u"a.gif"_s, c.maxBytes);
        ASSERT_TRUE(shrunk.fitted()) << shrunk.message.toStdString();
        EXPECT_LE(shrunk.gif.size(), c.maxBytes);
        const Gif back = read(shrunk.gif);
        EXPECT_EQ(back.size, shrunk.size);
        EXPECT_NEAR(back.size.width() * 2.0 / 3.0, back.size.height(), 1.0); // the shape within a pixel
        EXPECT_EQ(int(back.delays.size()), shrunk.frames);
        EXPECT_EQ(shrunk.frames == int(delays.size()), c.allFrames) << c.maxBytes;
        EXPECT_GT(shrunk.frames, 1);
        EXPECT_EQ(total(back.delays), total(delays) * 10);
        EXPECT_EQ(back.loops, 3);
    }
    const GifShrink still = shrinkGif(test::animatedGif(QSize(400, 400), {0}, -1), u"s.gif"_s);
    ASSERT_TRUE(still.fitted());
    EXPECT_EQ(read(still.gif).delays.size(), 1u);
    EXPECT_EQ(read(still.gif).loops, 0);
}
