#include "model/cslide.h"
#include "model/slideedits.h"
#include "support/qtprint.h"
#include "support/recordingsink.h"
#include "support/tempdir.h"

#include <functional>
#include <gtest/gtest.h>
#include <random>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

const SlideDur kThree = SlideDur::fromText(u"3"_s);

// Slides carry single-letter names as their text.
class CSlideTest : public ::testing::Test {
protected:
    CSlideTest() : list(&sink) {}
    void fill(const QString& names) {
        for (QChar c : names)
            list.InsertAtBack(kThree, {}, QString(c), {});
    }
    // The order read forwards, then the tail's text: a stale tail shows up here.
    QString order() const {
        QString s;
        for (auto n = list.firstItem(); n; n = n->NextNode)
            s += n->DataText;
        return s + u'|' + (list.lastItem() ? list.lastItem()->DataText : QString());
    }
    test::RecordingSink sink;
    CSlide list;
};

} // namespace

TEST_F(CSlideTest, InsertAndRemoveKeepHeadAndTailAndRefuseOutOfBound) {
    fill(u"ABC"_s);
    list.InsertIntoList(1, kThree, {}, u"n"_s, {}); // after the position
    list.InsertIntoList(4, kThree, {}, u"z"_s, {}); // after the tail
    list.InsertIntoList(9, kThree, {}, u"x"_s, {});
    EXPECT_EQ(order(), u"AnBCz|z"_s);
    EXPECT_FALSE(list.RemoveFromList(6).has_value());
    for (auto [pos, expected] : {std::pair{5, "AnBC|C"}, {3, "AnC|C"}, {3, "An|n"}, {2, "A|A"}, {1, "|"}}) {
        ASSERT_TRUE(list.RemoveFromList(pos).has_value());
        EXPECT_EQ(order(), QString::fromLatin1(expected));
    }
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_FALSE(list.RemoveFromList(1).has_value());
    EXPECT_EQ(sink.texts(),
              (QStringList{u"Out of List Bound"_s, u">> Out of List Bound"_s, u"List is empty"_s}));
}

TEST_F(CSlideTest, SwapsAndMovesToAnEndKeepOrderAndTailAndRefuseWithTheirBoundMessage) {
    list.SwapAtFront(2, 3);
    list.SwapAtFront(1, 1);
    list.SwapAtBack(1);
    list.SwapAtBack(2);
    EXPECT_EQ(sink.texts(), (QStringList{u">> Out of List Bound"_s, u"<< Out of List Bound"_s,
                                         u"<< Out of List Bound"_s, u"<< Out of List Bound"_s}));
    EXPECT_TRUE(list.IsEmpty());

    fill(u"ABC"_s);
    const NodePtr c = list.lastItem();
    list.SwapAtFront(3, 3);
    EXPECT_EQ(order(), u"CAB|B"_s);
    EXPECT_NE(list.firstItem(), c); // the slide is copied into a new node
    // F: SwapAtFront(a, b), B: SwapAtBack(a), L/R: SwapTwoNodes(a); refused steps keep the order
    // (F 2 2: a `last` that is not the tail's position).
    const struct {
        char op;
        int a, b;
        const char* order;
        SwapResult result = SwapResult::Swapped;
    } steps[] = {{'F', 2, 3, "ACB|B"}, {'B', 1, 0, "CBA|A"}, {'B', 2, 0, "CAB|B"},
                 {'F', 2, 2, "CAB|B"}, {'B', 4, 0, "CAB|B"}, {'L', 2, 0, "ACB|B"},
                 {'L', 1, 0, "CAB|B"}, {'R', 2, 0, "CBA|A"}, {'R', 3, 0, "CBA|A", SwapResult::OutOfBound}};
    for (const auto& s : steps) {
        if (s.op == 'F') list.SwapAtFront(s.a, s.b);
        if (s.op == 'B') list.SwapAtBack(s.a);
        if (s.op == 'L' || s.op == 'R') {
            EXPECT_EQ(list.SwapTwoNodes(s.a, s.op == 'L' ? u"LEFT"_s : u"RIGHT"_s), s.result) << s.order;
        }
        EXPECT_EQ(order(), QString::fromLatin1(s.order)) << s.op << s.a;
    }
    EXPECT_EQ(sink.texts().size(), 4 + 3); // each refused step above reports once

    CSlide one(&sink);
    one.InsertAtBack(kThree, {}, u"A"_s, {});
    EXPECT_EQ(one.SwapTwoNodes(1, u"RIGHT"_s), SwapResult::Refused);
    EXPECT_EQ(sink.texts().last(), u"Swap two nodes only"_s);
    one.SwapAtFront(1, 1);
    EXPECT_EQ(one.getTotalSlide(), 2);
    EXPECT_EQ(one.lastItem()->DataText, u"A"_s);
}

TEST_F(CSlideTest, MovesToAnyPlaceKeepTheListWhole) {
    // To either end, by one place either way, and further inside the list.
    for (const auto& [from, to, expected] : {std::tuple{4, 1, "DABCE|E"},
                                             {2, 5, "ACDEB|B"},
                                             {3, 2, "ACBDE|E"},
                                             {3, 4, "ABDCE|E"},
                                             {2, 4, "ACDBE|E"},
                                             {4, 2, "ADBCE|E"},
                                             {3, 3, "ABCDE|E"}}) {
        list.Destory();
        fill(u"ABCDE"_s);
        EXPECT_TRUE(moveSlideTo(list, qint16(from), qint16(to), 5));
        EXPECT_EQ(order(), QString::fromLatin1(expected)) << from << "->" << to;
    }
    CSlide empty;
    EXPECT_FALSE(moveSlideTo(empty, 1, 2, 0));
}

TEST(SlideDuration, DigitsUpToTheLongestDisplayTime) {
    for (const auto& [text, seconds] :
         {std::pair{"0", 0}, {"00012", 12}, {"32767", 32767}, {"0000000000000000000000005", 5}})
        EXPECT_EQ(parseSeconds(QString::fromLatin1(text)), std::optional<qint16>(seconds)) << text;
    for (const char* text : {"", "32768", "99999999999999999999", " 5", "5 ", "+5", "-1", "1.5", "3s", "٣"})
        EXPECT_EQ(parseSeconds(QString::fromUtf8(text)), std::nullopt) << text;
}

TEST(CSlidePaths, SplitAtTheLastSeparatorOfEitherKind) {
    const QString win = u"C:\\x\\y.z.amr"_s;
    EXPECT_EQ(QStringList(
                  {CSlide::extractFileName(win), CSlide::extractFileType(win), CSlide::extractFilePath(win)}),
              QStringList({u"y.z.amr"_s, u"amr"_s, u"C:\\x\\"_s}));
    EXPECT_EQ(CSlide::extractFilePath(u"/home/a\\b/c.gif"_s), u"/home/a\\b/"_s);
    EXPECT_EQ(CSlide::extractFileType(u"/a.b/noext"_s), u"b/noext"_s);
    EXPECT_EQ(CSlide::extractFileType(u"plain"_s), u"plain"_s);
    EXPECT_EQ(CSlide::extractFilePath(u"plain"_s), QString());
}

TEST(MessageSize, FollowsTheFormulaUpToTheLongestListWhichClearsWithoutRecursion) {
    test::TempDir dir;
    CSlide list;
    EXPECT_EQ(list.getTotalSize({}, {}, {}), 0);
    list.InsertAtBack(kThree, {}, {}, {});
    EXPECT_EQ(list.getTotalSize({}, {}, {}), 535);
    // Strings and slide text count by characters, not UTF-8 bytes.
    EXPECT_EQ(list.getTotalSize(u"ab"_s, u"c"_s, u"dé"_s), 540);
    list.firstItem()->DataText = u"Hé"_s;
    EXPECT_EQ(list.getTotalSize({}, {}, {}), 609);

    CSlide media;
    media.InsertAtBack(kThree, dir.write(u"a.gif"_s, QByteArray(1000, 'p')), {}, {});
    EXPECT_EQ(media.getTotalSize({}, {}, {}), 1603);
    media.InsertAtBack(kThree, dir.write(u"b.jpg"_s, QByteArray(500, 'q')), {}, {});
    EXPECT_EQ(media.getTotalSize({}, {}, {}), 1603 + 577);
    // Sounds: file size + 30 each, 37 once; a missing file counts 0 bytes but still costs its overhead.
    media.InsertAtBack(kThree, {}, {}, dir.write(u"c.amr"_s, QByteArray(300, 's')));
    EXPECT_EQ(media.getTotalSize({}, {}, {}), 1603 + 577 + 36 + 300 + 30 + 37);
    media.InsertAtBack(kThree, dir.file(u"gone.gif"_s), {}, dir.file(u"gone.amr"_s));
    EXPECT_EQ(media.getTotalSize({}, {}, {}), 1603 + 577 + 36 + 300 + 30 + 37 + 36 + 41 + 30);

    CSlide full;
    for (int i = 0; i < CSlide::kMaxSlides; ++i)
        full.InsertAtBack(kThree, {}, u"x"_s, {});
    EXPECT_EQ(full.getTotalSlide(), CSlide::kMaxSlides);
    EXPECT_EQ(full.getTotalSize({}, {}, {}), 499 + 28 + CSlide::kMaxSlides * (36 + 3 + 42));

    // One slide too many; the long list is cleared and torn down without recursion.
    full.setfolderpath(u"msg"_s);
    full.setfilename(u"msg"_s);
    full.InsertAtBack(kThree, {}, {}, {});
    EXPECT_THROW(full.getTotalSlide(), std::overflow_error);
    EXPECT_FALSE(full.Destory());
    EXPECT_TRUE(full.IsEmpty());
    EXPECT_EQ(full.folderPath(), u"msg"_s); // Destory keeps the folder, not the file name
    EXPECT_EQ(full.fileName(), QString());
}

// Every list command and slide edit, drawn at random: the running total never drifts from the count
// made from scratch; a file changed behind the list's back is caught up by a remeasure.
TEST(MessageSize, RunningTotalEqualsTheCountFromScratchAfterAnyCommands) {
    test::TempDir dir;
    const QString files[] = {dir.write(u"a.gif"_s, QByteArray(1000, 'p')), dir.write(u"b.amr"_s, "sound"),
                             dir.file(u"gone.mid"_s), QString()};
    const QString texts[] = {QString(), u"Hé"_s, u"longer text"_s};
    CSlide list;
    std::mt19937 random(12);
    const auto pick = [&random](int n) { return int(random() % unsigned(n)); };
    int n = 0;
    const auto at = [&] { return qint16(1 + pick(n)); };
    const auto file = [&] { return files[pick(4)]; };
    const auto text = [&] { return texts[pick(3)]; };
    const std::function<void()> commands[] = {
        [&] { list.InsertAtBack(kThree, file(), text(), file()); },
        [&] { list.InsertAtFront(kThree, {}, text(), file()); },
        [&] { list.InsertIntoList(at(), kThree, file(), text(), {}); },
        [&] { list.RemoveFromList(at()); },
        [&] { pick(2) ? list.RemoveFromFront() : list.RemoveFromBack(); },
        [&] { list.SwapTwoNodes(at(), pick(2) ? u"LEFT"_s : u"RIGHT"_s); },
        [&] { list.SwapAtFront(at(), qint16(n)); },
        [&] { list.SwapAtBack(at()); },
        [&] { list.setImgPath(*list.nodeAt(at()), file()); },
        [&] { list.setText(*list.nodeAt(at()), text()); },
        [&] { list.setSoundPath(*list.nodeAt(at()), file()); },
        [&] { pick(20) == 0 && list.Destory(); },
    };
    for (int step = 0; step < 3000; ++step) {
        n = list.IsEmpty() ? 0 : list.getTotalSlide();
        ASSERT_EQ(list.runningSlideCount(), n);
        commands[n == 0 ? pick(2) : pick(std::size(commands))]();
        ASSERT_EQ(list.runningTotalSize({}, u"to"_s, u"subj"_s), list.getTotalSize({}, u"to"_s, u"subj"_s))
            << "step " << step;
    }
    list.InsertAtBack(kThree, files[0], {}, {});
    dir.write(u"a.gif"_s, QByteArray(7, 'p'));
    EXPECT_NE(list.runningTotalSize({}, {}, {}), list.getTotalSize({}, {}, {}));
    list.remeasureAll();
    EXPECT_EQ(list.runningTotalSize({}, {}, {}), list.getTotalSize({}, {}, {}));
}
