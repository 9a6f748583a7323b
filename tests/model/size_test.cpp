#include "model/cslide.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

TEST(MessageSize, FollowsTheFormulaForEveryKindOfPart) {
    const SlideDur three = SlideDur::fromText(u"3"_s);
    test::TempDir dir;
    CSlide list;
    EXPECT_EQ(list.getTotalSize({}, {}, {}), 0);
    list.InsertAtBack(three, {}, {}, {});
    EXPECT_EQ(list.getTotalSize({}, {}, {}), 535);
    // Strings and slide text count by characters, not UTF-8 bytes.
    EXPECT_EQ(list.getTotalSize(u"ab"_s, u"c"_s, u"dé"_s), 540);
    list.firstItem()->DataText = u"Hé"_s;
    EXPECT_EQ(list.getTotalSize({}, {}, {}), 609);

    CSlide media;
    media.InsertAtBack(three, dir.write(u"a.gif"_s, QByteArray(1000, 'p')), {}, {});
    EXPECT_EQ(media.getTotalSize({}, {}, {}), 1603);
    media.InsertAtBack(three, dir.write(u"b.jpg"_s, QByteArray(500, 'q')), {}, {});
    EXPECT_EQ(media.getTotalSize({}, {}, {}), 1603 + 577);
    // Sounds: file size + 30 each, 37 once; a missing file counts 0 bytes but still costs its overhead.
    media.InsertAtBack(three, {}, {}, dir.write(u"c.amr"_s, QByteArray(300, 's')));
    EXPECT_EQ(media.getTotalSize({}, {}, {}), 1603 + 577 + 36 + 300 + 30 + 37);
    media.InsertAtBack(three, dir.file(u"gone.gif"_s), {}, dir.file(u"gone.amr"_s));
    EXPECT_EQ(media.getTotalSize({}, {}, {}), 1603 + 577 + 36 + 300 + 30 + 37 + 36 + 41 + 30);

    CSlide full;
    for (int i = 0; i < CSlide::kMaxSlides; ++i)
        full.InsertAtBack(three, {}, u"x"_s, {});
    EXPECT_EQ(full.getTotalSlide(), CSlide::kMaxSlides);
    EXPECT_EQ(full.getTotalSize({}, {}, {}), 499 + 28 + CSlide::kMaxSlides * (36 + 3 + 42));
}
