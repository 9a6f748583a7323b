#include "package/utf8.h"
#include "support/qtprint.h"

#include <gtest/gtest.h>

using namespace mms;

TEST(Utf8Text, NeitherAddsNorDropsAMarkAndReplacesWhatItCannotCarry) {
    EXPECT_TRUE(toUtf8Bytes(QString()).isEmpty());
    EXPECT_TRUE(fromUtf8Bytes(QByteArray()).isEmpty());
    EXPECT_EQ(fromUtf8Bytes(QByteArray("\xEF\xBB\xBFok")), QString(QChar(0xFEFF)) + QStringLiteral("ok"));
    // What UTF-8 cannot carry becomes U+FFFD either way.
    EXPECT_EQ(fromUtf8Bytes(QByteArray("a\xFF")), QStringLiteral("a\uFFFD"));
    EXPECT_EQ(toUtf8Bytes(QStringLiteral("a") + QChar(0xD800)), QByteArray("a\xEF\xBF\xBD"));
}
