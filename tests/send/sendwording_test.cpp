#include "common/localisation.h"
#include "send/sendwording.h"
#include "support/qtprint.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace mms::test {
namespace {

// Texts that keep their placeholders, so a test sees which entry was filled with what.
Localisation placeholderTexts() {
    LanguageTexts t;
    for (int i = 0; i < 160; ++i) {
        t.prompts << u"P%1"_s.arg(i);
        t.errors << u"E"_s + QString::number(i) + u" [%1] [%2]"_s;
        t.interface << u"I"_s + QString::number(i) + u" [%1] [%2]"_s;
    }
    t.interface[100] = u"%1 KB"_s;
    Localisation loc;
    loc.setTexts(t);
    return loc;
}

// The recipients box: the first piece the service cannot take is named, with the reason in words.
TEST(SendWordingTest, RecipientsAreCheckedPieceByPiece) {
    const Localisation loc = placeholderTexts();
    const struct {
        const char16_t* field;
        QStringList numbers;
        const char16_t* problem;
    } rows[] = {
        {u"+44 1234 999 000; 0171-555, +441234999000", {u"+441234999000"_s, u"0171555"_s}, u""},
        {u" , ;", {}, u"E58 [%1] [%2]"},
        {u"0171, bob@example.com", {}, u"E60 [bob@example.com] [%2]"},
        {u"0171; call me", {}, u"E59 [call me] [%2]"},
    };
    for (const auto& row : rows) {
        QString problem;
        const auto numbers = typedNumbers(loc, QString::fromUtf16(row.field), problem);
        EXPECT_EQ(numbers.value_or(QStringList()), row.numbers)
            << QString::fromUtf16(row.field).toStdString();
        EXPECT_EQ(problem, QString::fromUtf16(row.problem));
    }
}

TEST(SendWordingTest, SizeReadsUnknownUntilTheServiceAnswers) {
    const Localisation loc = placeholderTexts();
    EXPECT_EQ(sizeAgainstLimit(loc, 2048, std::nullopt), u"I135 [2 KB] [I136 [%1] [%2]]"_s);
    EXPECT_EQ(sizeAgainstLimit(loc, std::nullopt, ServiceLimits{10240, 25}),
              u"I135 [I136 [%1] [%2]] [10 KB]"_s);
    EXPECT_EQ(sizeAgainstLimit(loc, 2048, ServiceLimits{}), u"I135 [2 KB] [I137 [%1] [%2]]"_s);
    EXPECT_TRUE(isOverServiceLimit(10241, {10240, 25}));
    EXPECT_FALSE(isOverServiceLimit(10240, {10240, 25}));
    EXPECT_FALSE(isOverServiceLimit(1 << 30, {}));
    EXPECT_EQ(tooLargeText(loc, 20480, {10240, 25}), u"E61 [20 KB] [10 KB]"_s);
}

TEST(SendWordingTest, StatusesInWordsAndTheDaemonsOwnAsTheyAre) {
    const Localisation loc = placeholderTexts();
    for (const auto& [status, reason, shown] : {std::tuple{u"draft"_s, QString(), u"I144 [%1] [%2]"_s},
                                                {u"delivered"_s, QString(), u"I146 [%1] [%2]"_s},
                                                {u"expired"_s, QString(), u"expired"_s},
                                                {u"failed"_s, u"no route"_s, u"I147 [no route] [%2]"_s}})
        EXPECT_EQ(statusText(loc, SentEntry{{}, {}, {}, {}, status, reason, {}}), shown);
}

TEST(SendWordingTest, RecentNumbersLastUsedFirstAndBounded) {
    QStringList recent;
    for (int i = 0; i < kRecentNumbersLimit; ++i)
        recent << QString::number(100 + i);
    recent = withRecentNumbers(recent, {u"105"_s, u"999"_s});
    EXPECT_EQ(recent.size(), kRecentNumbersLimit);
    EXPECT_EQ(recent.mid(0, 3), QStringList({u"105"_s, u"999"_s, u"100"_s}));
    EXPECT_EQ(recent.count(u"105"_s), 1);
}

} // namespace
} // namespace mms::test
