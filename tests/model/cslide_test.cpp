#include "model/cslide.h"
#include "support/qtprint.h"
#include "support/recordingsink.h"

#include <gtest/gtest.h>

using namespace mms;

namespace {

// Builds a list whose slides carry the single-letter names as their text.
class CSlideTest : public ::testing::Test {
protected:
    CSlideTest() : list(&sink) {}
    void fill(const QString& names) {
        for (QChar c : names)
            list.InsertAtBack(SlideDur::fromText(QStringLiteral("3")), {}, QString(c), {});
    }
    QString order() const {
        QString s;
        for (auto n = list.firstItem(); n; n = n->NextNode)
            s += n->DataText;
        return s;
    }
    QString tailText() const { return list.lastItem() ? list.lastItem()->DataText : QString(); }
    test::RecordingSink sink;
    CSlide list;
};

} // namespace

TEST_F(CSlideTest, InsertIntoListPutsTheNewSlideAfterThePosition) {
    fill(QStringLiteral("ABC"));
    list.InsertIntoList(1, SlideDur::fromText(QStringLiteral("3")), {}, QStringLiteral("n"), {});
    EXPECT_EQ(order(), QStringLiteral("AnBC"));
    list.InsertIntoList(4, SlideDur::fromText(QStringLiteral("3")), {}, QStringLiteral("z"), {});
    EXPECT_EQ(tailText(), QStringLiteral("z"));
    list.InsertIntoList(9, SlideDur::fromText(QStringLiteral("3")), {}, QStringLiteral("x"), {});
    EXPECT_EQ(order(), QStringLiteral("AnBCz"));
    EXPECT_EQ(sink.texts(), QStringList{QStringLiteral("Out of List Bound")});
}

TEST_F(CSlideTest, RemoveFromListKeepsHeadAndTailRightAndRefusesOutOfBound) {
    fill(QStringLiteral("AB"));
    EXPECT_FALSE(list.RemoveFromList(3).has_value());
    EXPECT_EQ(sink.texts(), QStringList{QStringLiteral(">> Out of List Bound")});
    EXPECT_EQ(order(), QStringLiteral("AB"));
    ASSERT_TRUE(list.RemoveFromList(2).has_value());
    EXPECT_EQ(list.firstItem(), list.lastItem());
    ASSERT_TRUE(list.RemoveFromList(1).has_value());
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_FALSE(list.RemoveFromList(1).has_value());
    EXPECT_EQ(sink.texts().last(), QStringLiteral("List is empty"));

    fill(QStringLiteral("ABCDE"));
    list.RemoveFromList(5);
    EXPECT_EQ(tailText(), QStringLiteral("D"));
    list.RemoveFromList(3);
    EXPECT_EQ(order(), QStringLiteral("ABD"));
}

TEST_F(CSlideTest, SwapTwoNodesMovesOnePlaceAndRepairsTheTail) {
    fill(QStringLiteral("ABC"));
    EXPECT_EQ(list.SwapTwoNodes(2, QStringLiteral("LEFT")), SwapResult::Swapped);
    EXPECT_EQ(order(), QStringLiteral("BAC"));
    EXPECT_EQ(list.SwapTwoNodes(1, QStringLiteral("LEFT")), SwapResult::Swapped);
    EXPECT_EQ(order(), QStringLiteral("ABC"));
    EXPECT_EQ(list.SwapTwoNodes(2, QStringLiteral("RIGHT")), SwapResult::Swapped);
    EXPECT_EQ(order(), QStringLiteral("ACB"));
    EXPECT_EQ(tailText(), QStringLiteral("B"));
    EXPECT_EQ(list.SwapTwoNodes(3, QStringLiteral("RIGHT")), SwapResult::OutOfBound);
    EXPECT_EQ(order(), QStringLiteral("ACB"));

    CSlide one(&sink);
    one.InsertAtBack(SlideDur::fromText(QStringLiteral("3")), {}, {}, {});
    EXPECT_EQ(one.SwapTwoNodes(1, QStringLiteral("RIGHT")), SwapResult::Refused);
    EXPECT_EQ(sink.texts().last(), QStringLiteral("Swap two nodes only"));
}

TEST_F(CSlideTest, MovesToEitherEndCopyTheSlideIntoANewNode) {
    fill(QStringLiteral("ABC"));
    const NodePtr c = list.lastItem();
    list.SwapAtFront(3, 3);
    EXPECT_EQ(order(), QStringLiteral("CAB"));
    EXPECT_NE(list.firstItem(), c);
    EXPECT_EQ(tailText(), QStringLiteral("B"));
    list.SwapAtFront(2, 3);
    EXPECT_EQ(order(), QStringLiteral("ACB"));
    list.SwapAtBack(1);
    EXPECT_EQ(order(), QStringLiteral("CBA"));
    list.SwapAtBack(2);
    EXPECT_EQ(order(), QStringLiteral("CAB"));
    EXPECT_EQ(tailText(), QStringLiteral("B"));
    EXPECT_TRUE(sink.shown.empty());
}

TEST(CSlidePaths, SplitAtTheLastSeparatorOfEitherKind) {
    EXPECT_EQ(CSlide::extractFileName(QStringLiteral("C:\\x\\y.z.amr")), QStringLiteral("y.z.amr"));
    EXPECT_EQ(CSlide::extractFileType(QStringLiteral("C:\\x\\y.z.amr")), QStringLiteral("amr"));
    EXPECT_EQ(CSlide::extractFilePath(QStringLiteral("C:\\x\\y.z.amr")), QStringLiteral("C:\\x\\"));
    EXPECT_EQ(CSlide::extractFilePath(QStringLiteral("/home/a\\b/c.gif")), QStringLiteral("/home/a\\b/"));
    EXPECT_EQ(CSlide::extractFileType(QStringLiteral("/a.b/noext")), QStringLiteral("b/noext"));
    EXPECT_EQ(CSlide::extractFileType(QStringLiteral("plain")), QStringLiteral("plain"));
    EXPECT_EQ(CSlide::extractFilePath(QStringLiteral("plain")), QString());
}

TEST(CSlideLifetime, DestoryKeepsTheFolderPathAndLongListsTearDownWithoutRecursion) {
    CSlide list;
    list.setfolderpath(QStringLiteral("msg"));
    list.setfilename(QStringLiteral("msg"));
    for (int i = 0; i < CSlide::kMaxSlides; ++i)
        list.InsertAtBack(SlideDur::fromText(QStringLiteral("3")), {}, {}, {});
    EXPECT_EQ(list.getTotalSlide(), CSlide::kMaxSlides);
    list.InsertAtBack(SlideDur::fromText(QStringLiteral("3")), {}, {}, {});
    EXPECT_THROW(list.getTotalSlide(), std::overflow_error);
    EXPECT_FALSE(list.Destory());
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.folderPath(), QStringLiteral("msg"));
    EXPECT_EQ(list.fileName(), QString());
}

TEST_F(CSlideTest, MovesToAnEndRefuseWithTheirBoundMessageAndLoseNothing) {
    list.SwapAtFront(2, 3);
    list.SwapAtFront(1, 1);
    list.SwapAtBack(1);
    list.SwapAtBack(2);
    EXPECT_EQ(sink.texts(),
              (QStringList{QStringLiteral(">> Out of List Bound"), QStringLiteral("<< Out of List Bound"),
                           QStringLiteral("<< Out of List Bound"), QStringLiteral("<< Out of List Bound")}));
    EXPECT_TRUE(list.IsEmpty());

    fill(QStringLiteral("ABC"));
    list.SwapAtFront(2, 2); // a `last` that is not the tail's position
    list.SwapAtBack(4);
    EXPECT_EQ(order(), QStringLiteral("ABC"));
    EXPECT_EQ(sink.texts().size(), 6);

    CSlide one(&sink);
    one.InsertAtBack(SlideDur::fromText(QStringLiteral("3")), {}, QStringLiteral("A"), {});
    one.SwapAtFront(1, 1);
    EXPECT_EQ(one.getTotalSlide(), 2);
    EXPECT_EQ(one.lastItem()->DataText, QStringLiteral("A"));
}
