#include "send/sendrequest.h"
#include "send/sentlog.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace mms::test {
namespace {

// The log follows the daemon but keeps what the user needs: a failure is not turned back into a
// draft by a later refresh, and the snapshot goes once the status is final.
TEST(SentLogTest, StatusesFollowTheDaemonAndAFinalOneDropsTheSnapshot) {
    TempDir dir;
    const QString snapshot = dir.write(u"Temp/send-1/message/pic1.gif"_s, "GIF8").section(u'/', 0, -3);
    SentLog log(dir.path());
    SentEntry e{u"hello"_s, QDateTime::currentDateTimeUtc(), {u"+1555"_s}, u"/m/1"_s, u"draft"_s, {},
                snapshot};
    ASSERT_TRUE(log.add(e).isOk());
    EXPECT_FALSE(log.update(u"/m/2"_s, u"sent"_s));
    EXPECT_TRUE(log.update(u"/m/1"_s, u"failed"_s, u"gone"_s));
    EXPECT_FALSE(QFileInfo::exists(snapshot));
    EXPECT_FALSE(log.update(u"/m/1"_s, u"draft"_s));
    EXPECT_TRUE(log.update(u"/m/1"_s, u"sent"_s)); // the daemon retried it later
    ASSERT_TRUE(log.save().isOk());

    SentLog reread(dir.path());
    ASSERT_TRUE(reread.load().isOk());
    ASSERT_EQ(reread.entries().size(), 1u);
    EXPECT_EQ(reread.entries()[0].status, u"sent"_s);
    EXPECT_TRUE(SentLog::line(reread.entries()[0]).endsWith(u"\thello\t+1555\tsent\t/m/1"_s));

    dir.write(u"UserData/sent.json"_s, "{not json");
    EXPECT_FALSE(reread.load().isOk());
    EXPECT_EQ(reread.entries().size(), 1u);
}

TEST(SendRequestTest, PresentationLinksMembersByContentIdAndRecipientsArePhoneNumbers) {
    EXPECT_EQ(
        smilWithContentIds(u"<img src=\"pic1.gif\"/><audio src = \"sound1.mid\"/><text src=\"cid:t\"/>"_s),
        u"<img src=\"cid:pic1.gif\"/><audio src=\"cid:sound1.mid\"/><text src=\"cid:t\"/>"_s);
    QString problem;
    EXPECT_EQ(phoneNumbers({u"+1 (555) 12"_s, u"+155512"_s, u"0171"_s}, problem),
              QStringList({u"+155512"_s, u"0171"_s}));
    EXPECT_EQ(phoneNumbers({}, problem), std::nullopt);
    EXPECT_EQ(problem, u"no recipient was given"_s);
}

} // namespace
} // namespace mms::test
