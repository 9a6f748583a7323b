#include "composer/phonescreen.h"
#include "image/picturefiles.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

// The smallest rectangle of `image` holding every pixel that is not white; empty when none is.
QRect inked(const QImage& image) {
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) != qRgb(255, 255, 255)) box |= QRect(x, y, 1, 1);
    return box;
}

QRect region(const QRect& r, int scale) {
    return QRect(r.topLeft() * scale, r.size() * scale);
}

TEST(PhoneScreen, PicturesAndTextsStayInTheirRegions) {
    test::TempDir dir;
    const QString small = dir.write(u"small.png"_s, test::encoded(test::filled(20, 10, Qt::red), "PNG"));
    const QString large = dir.write(u"large.png"_s, test::encoded(test::filled(480, 330, Qt::green), "PNG"));
    const QString longText = u"A text far too long for one line of the small screen, which goes on and on"_s;
    const int s = 2;
    const QRect image = region(kImageRegion, s), text = region(kTextRegion, s);
    const struct {
        ScreenSlide slide;
        QRect ink; // where the drawing lies; for text, within the text region
    } cases[] = {
        {{small, {}}, QRect(70 * s, 50 * s, 20 * s, 10 * s)}, // centred, not enlarged, pixel for pixel
        {{large, {}}, image},                                 // scaled down to fill the region
        {{dir.write(u"broken.jpg"_s, "not a picture"), {}}, image},
        {{dir.file(u"clip.3gp"_s), {}}, image},
        {{{}, u"Hi"_s}, text},
        {{{}, longText}, text},
    };
    for (const auto& c : cases) {
        const QImage screen = renderPhoneScreen(c.slide, s);
        ASSERT_EQ(screen.size(), kPhoneScreenSize * s);
        const QRect ink = inked(screen);
        if (c.slide.text.isEmpty()) {
            EXPECT_EQ(ink, c.ink) << c.slide.picturePath.toStdString();
            continue;
        }
        EXPECT_TRUE(c.ink.contains(ink)) << c.slide.text.toStdString();
        // One line of capitals is about 60 % of the region high; two lines fill it nearly whole.
        const bool twoLines = ink.height() > text.height() * 3 / 4;
        EXPECT_EQ(twoLines, c.slide.text == longText) << c.slide.text.toStdString();
    }
    EXPECT_EQ(renderPhoneScreen({small, {}}, 1).pixel(79, 54), qRgb(255, 0, 0));
}

} // namespace
