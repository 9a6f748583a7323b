#include "package/utf8.h"
#include "support/qtprint.h"

#include <gtest/gtest.h>

using namespace mms;

TEST(Utf8Text, EmptyInEmptyOutAndNoByteOrderMark) {
    EXPECT_TRUE(toUtf8Bytes(QString()).isEmpty());
    EXPECT_TRUE(toUtf8Bytes(QStringLiteral("")).isEmpty());
    EXPECT_TRUE(fromUtf8Bytes(QByteArray()).isEmpty());
    EXPECT_EQ(toUtf8Bytes(QStringLiteral("Hi")), QByteArray("Hi"));
}

TEST(Utf8Text, NonAsciiRoundTripsByteForByte) {
    const QString text = QStringLiteral("Grüße, Привет, 你好 \U0001F600");
    const QByteArray bytes("Gr\xC3\xBC\xC3\x9F"
                           "e, \xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82, "
                           "\xE4\xBD\xA0\xE5\xA5\xBD \xF0\x9F\x98\x80");
    EXPECT_EQ(toUtf8Bytes(text), bytes);
    EXPECT_EQ(fromUtf8Bytes(bytes), text);
}

TEST(Utf8Text, KeepsALeadingMarkAndReplacesWhatUtf8CannotCarry) {
    EXPECT_EQ(fromUtf8Bytes(QByteArray("\xEF\xBB\xBFok")), QString(QChar(0xFEFF)) + QStringLiteral("ok"));
    EXPECT_EQ(fromUtf8Bytes(QByteArray("a\xFF"
                                       "b")),
              QStringLiteral("a\uFFFDb"));
    QString lone = QStringLiteral("a");
    lone += QChar(0xD800);
    EXPECT_EQ(toUtf8Bytes(lone), QByteArray("a\xEF\xBF\xBD"));
}
