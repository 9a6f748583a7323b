#include "package/mmscrun.h"
#include "store/storefixture.h"

#include <QImage>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

class MmscRenderTest : public StoreFixture {
protected:
    MmscRun render(const QString& line) { return runMmsc({u"--home"_s, tmp.path()}, u"render "_s + line); }
};

TEST_F(MmscRenderTest, DrawsEverySlideIntoTheFolderAndRemovesSlidesOfEarlierRenders) {
    QImage blue(40, 20, QImage::Format_RGB32);
    blue.fill(Qt::blue);
    const QString picture = media(u"p.png"_s, {});
    blue.save(picture, "PNG");
    CSlide slides;
    slides.InsertAtBack(SlideDur::fromText(u"3"_s), media(u"p.gif"_s, TempDir::read(picture)), u"Hi"_s, {});
    slides.InsertAtBack(SlideDur::fromNumber(7), {}, {}, {});
    ASSERT_TRUE(store.save(slides, u"card"_s, u"Subject"_s).isOk());
    const QString out = tmp.file(u"out/new"_s);
    tmp.write(u"out/new/slide3.png"_s, "old");
    tmp.write(u"out/new/notes.txt"_s, "kept");

    const MmscRun run = render(u"card "_s + out + u" --scale 2"_s);
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, u"%1/slide1.png\t3\n%1/slide2.png\t7\n"_s.arg(out));
    EXPECT_EQ(QDir(out).entryList(QDir::Files),
              (QStringList{u"notes.txt"_s, u"slide1.png"_s, u"slide2.png"_s}));
    const QImage first(out + u"/slide1.png"_s), second(out + u"/slide2.png"_s);
    EXPECT_EQ(first.size(), QSize(320, 280));
    EXPECT_EQ(first.pixel(160, 110), qRgb(0, 0, 255)); // the picture in the middle of its region
    EXPECT_EQ(second.pixel(160, 110), qRgb(255, 255, 255));
}

TEST_F(MmscRenderTest, BadArgumentsExitWith2AndAMessageThatCannotBeOpenedWith1) {
    const std::pair<QString, int> cases[] = {{u"card"_s, 2},
                                             {u"card out --scale 0"_s, 2},
                                             {u"card out --scale"_s, 2},
                                             {u"a/b out"_s, 2},
                                             {u"nothing out"_s, 1}};
    for (const auto& [line, status] : cases) {
        const MmscRun run = render(line);
        EXPECT_EQ(run.exitCode, status) << line.toStdString();
        EXPECT_TRUE(run.err.startsWith(u"mmsc: "_s)) << run.err.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(tmp.file(u"out"_s)));
}

} // namespace
