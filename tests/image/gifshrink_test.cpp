#include "app/mmscrun.h"
#include "image/gifshrink.h"
#include "picturefiles.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QFileInfo>
#include <cstring>
#include <gif_lib.h>
#include <gtest/gtest.h>
#include <numeric>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

struct Gif {
    QSize size;
    std::vector<int> delays;
    int loops = -1;
};

int fromArray(GifFileType* gif, GifByteType* out, int n) {
    auto* bytes = static_cast<QByteArray*>(gif->UserData);
    n = int(qMin<qsizetype>(n, bytes->size()));
    std::memcpy(out, bytes->constData(), size_t(n));
    bytes->remove(0, n);
    return n;
}

Gif read(QByteArray bytes) {
    Gif result;
    GifFileType* gif = DGifOpen(&bytes, fromArray, nullptr);
    if (!gif || DGifSlurp(gif) != GIF_OK) return result;
    result.size = QSize(gif->SWidth, gif->SHeight);
    for (int i = 0; i < gif->ImageCount; ++i) {
        GraphicsControlBlock gcb;
        DGifSavedExtensionToGCB(gif, i, &gcb);
        result.delays.push_back(gcb.DelayTime);
        const SavedImage& image = gif->SavedImages[i];
        for (int e = 0; e + 1 < image.ExtensionBlockCount; ++e)
            if (image.ExtensionBlocks[e].Function == APPLICATION_EXT_FUNC_CODE)
                result.loops = image.ExtensionBlocks[e + 1].Bytes[1];
    }
    DGifCloseFile(gif, nullptr);
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
        EXPECT_EQ(total(back.delays), total(delays));
        EXPECT_EQ(back.loops, 3);
    }
    const GifShrink still = shrinkGif(test::animatedGif(QSize(400, 400), {0}, -1), u"s.gif"_s);
    ASSERT_TRUE(still.fitted());
    EXPECT_EQ(read(still.gif).delays.size(), 1u);
    EXPECT_EQ(read(still.gif).loops, -1);
}

TEST(GifShrink, MmscGifPrintsTheResultOrSaysWhyAndWritesAllOrNothing) {
    test::TempDir dir;
    const QString in = dir.write(u"in.gif"_s, test::animatedGif(QSize(256, 256), {5, 5, 5}, 0));
    const QString out = dir.file(u"out.gif"_s);
    test::MmscRun run = test::runMmsc({}, u"gif %1 %2"_s.arg(in, out));
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const Gif back = read(test::TempDir::read(out));
    EXPECT_EQ(run.out, u"%1\t3\t%2x%3\t%4\n"_s.arg(out)
                           .arg(back.size.width())
                           .arg(back.size.height())
                           .arg(QFileInfo(out).size()));
    const QString none = dir.file(u"none.gif"_s);
    const QString text = dir.write(u"text.gif"_s, "not a picture");
    const struct {
        QString args;
        int exitCode;
    } cases[] = {{u"gif %1 %2 --max-bytes 10"_s.arg(in, none), 1},
                 {u"gif %1"_s.arg(in), 2},
                 {u"gif %1 %2 --max-bytes 0"_s.arg(in, none), 2},
                 {u"gif %1 %2"_s.arg(text, none), 2}};
    for (const auto& c : cases)
        EXPECT_EQ(test::runMmsc({}, c.args).exitCode, c.exitCode) << c.args.toStdString();
    EXPECT_FALSE(QFile::exists(none));
}
