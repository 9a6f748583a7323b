#include "model/cslide.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

using namespace mms;

namespace {
const SlideDur kThree = SlideDur::fromText(QStringLiteral("3"));
}

TEST(MessageSize, FollowsTheFormulaForEveryKindOfPart) {
    test::TempDir dir;
    const QString pic1000 = dir.write(QStringLiteral("a.gif"), QByteArray(1000, 'p'));
    const QString pic500 = dir.write(QStringLiteral("b.jpg"), QByteArray(500, 'q'));
    const QString sound = dir.write(QStringLiteral("c.amr"), QByteArray(300, 's'));

    CSlide list;
    EXPECT_EQ(list.getTotalSize({}, {}, {}), 0);
    EXPECT_EQ(list.getTotalSlide(), 0);

    list.InsertAtBack(kThree, {}, {}, {});
    EXPECT_EQ(list.getTotalSize({}, {}, {}), 535);
    // The three strings count by their length in characters.
    EXPECT_EQ(list.getTotalSize(QStringLiteral("ab"), QStringLiteral("c"), QStringLiteral("dé")), 540);

    list.firstItem()->DataText = QStringLiteral("Hi");
    EXPECT_EQ(list.getTotalSize({}, {}, {}), 609);
    // Characters, not UTF-8 bytes: accented letters count like plain ones.
    list.firstItem()->DataText = QStringLiteral("Hé");
    EXPECT_EQ(list.getTotalSize({}, {}, {}), 609);

    CSlide pictures;
    pictures.InsertAtBack(kThree, pic1000, {}, {});
    EXPECT_EQ(pictures.getTotalSize({}, {}, {}), 1603);
    pictures.InsertAtBack(kThree, pic500, {}, {});
    EXPECT_EQ(pictures.getTotalSize({}, {}, {}), 1603 + 577);
    // Sounds: file size + 30 each, 37 once; a missing file counts 0 bytes but still costs its overhead.
    pictures.InsertAtBack(kThree, {}, {}, sound);
    EXPECT_EQ(pictures.getTotalSize({}, {}, {}), 1603 + 577 + 36 + 300 + 30 + 37);
    pictures.InsertAtBack(kThree, dir.file(QStringLiteral("gone.gif")), {},
                          dir.file(QStringLiteral("gone.amr")));
    EXPECT_EQ(pictures.getTotalSize({}, {}, {}), 1603 + 577 + 36 + 300 + 30 + 37 + 36 + 41 + 30);
    EXPECT_EQ(pictures.getTotalSlide(), 4);
}

TEST(MessageSize, CountsTheLargestListWithinRange) {
    CSlide list;
    for (int i = 0; i < CSlide::kMaxSlides; ++i)
        list.InsertAtBack(kThree, {}, QStringLiteral("x"), {});
    EXPECT_EQ(list.getTotalSlide(), CSlide::kMaxSlides);
    EXPECT_EQ(list.getTotalSize({}, {}, {}), 499 + 28 + CSlide::kMaxSlides * (36 + 3 + 42));
}
