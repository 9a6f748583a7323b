#include "package/utf8.h"
#include "support/qtprint.h"

#include <gtest/gtest.h>

using namespace mms;

TEST(Utf8Text, RoundTripsByteForByteWithoutAddingOrDroppingAMark) {
    EXPECT_TRUE(toUtf8Bytes(QString()).isEmpty());
    EXPECT_TRUE(fromUtf8Bytes(QByteArray()).isEmpty());
    const QString text = QStringLiteral("Grüße, Привет, 你好 \U0001F600");
    const QByteArray bytes("Gr\xC3\xBC\xC3\x9F"
                           "e, \xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82, "
                           "\xE4\xBD\xA0\xE5\xA5\xBD \xF0\x9F\x98\x80");
    EXPECT_EQ(toUtf8Bytes(text), bytes);
    EXPECT_EQ(fromUtf8Bytes(bytes), text);
    EXPECT_EQ(fromUtf8Bytes(QByteArray("\xEF\xBB\xBFok")), QString(QChar(0xFEFF)) + QStringLiteral("ok"));
    // What UTF-8 cannot carry becomes U+FFFD either way.
    EXPECT_EQ(fromUtf8Bytes(QByteArray("a\xFF")), QStringLiteral("a\uFFFD"));
    EXPECT_EQ(toUtf8Bytes(QStringLiteral("a") + QChar(0xD800)), QByteArray("a\xEF\xBF\xBD"));
}
