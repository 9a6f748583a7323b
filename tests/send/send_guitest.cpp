// The Send and Sent Messages windows, driven through the fake dialogs; the last tests hand a message
// to the real mmsd-tng on private buses (tests/send/mmsdharness.h).

#include "composer/composerfixture.h"
#include "send/messagesender.h"
#include "send/mmsdharness.h"

#include <QLabel>
#include <QSettings>
#include <QTreeWidget>
#include <QtTest/QTest>

namespace mms::test {
namespace {

class SendTest : public ComposerTest {
protected:
    void SetUp() override {
        // No MMS service: a bus that is not there.
        options.mmsBus = QDBusConnection::connectToBus(u"unix:path=/nonexistent/mms-test-bus"_s, u"none"_s);
        ComposerTest::SetUp();
    }
    void TearDown() override { w.reset(); }

    // The message composed and stored as `name`, nothing left unsaved.
    void composeStored(const QString& name) {
        compose();
        fake.dialogs.answers.push_back(Answer::Yes); // save it first
        fake.dialogs.modalHooks.push_back([name](QDialog& d) {
            ctl<QLineEdit>(d, "txtName")->setText(name);
            ctl<QPushButton>(d, "cmdSave")->click();
        });
    }
    // Opens File > Send or File > Sent Messages and runs `drive` in it.
    void inSendWindow(std::function<void(QDialog&)> drive) { inWindow(&frmMMSMain::mnu_send_Click, drive); }
    void inSentWindow(std::function<void(QDialog&)> drive) { inWindow(&frmMMSMain::mnu_sent_Click, drive); }
    void inWindow(void (frmMMSMain::*open)(), std::function<void(QDialog&)> drive) {
        fake.dialogs.modalHooks.push_back(std::move(drive));
        (w.get()->*open)();
    }
    static QStringList rows(QDialog& d, int column) {
        QStringList out;
        auto* list = ctl<QTreeWidget>(d, "lstSent");
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            out << list->topLevelItem(i)->text(column);
        return out;
    }
    static void select(QDialog& d, int row) {
        auto* list = ctl<QTreeWidget>(d, "lstSent");
        list->setCurrentItem(list->topLevelItem(row));
    }
    // Hand-offs to +1555 added to the workspace's log, each as (message name, status).
    void logEntries(std::initializer_list<std::pair<QString, QString>> nameAndStatus) {
        SentLog log(home.path());
        ASSERT_TRUE(log.load().isOk());
        for (const auto& [name, status] : nameAndStatus) {
            SentEntry e{
                name, QDateTime::currentDateTimeUtc(), {u"+1555"_s}, u"/m/"_s + name, status, u"gone"_s, {}};
            ASSERT_TRUE(log.add(e).isOk());
        }
    }
};

// A refusal is said in words, the window stays open and nothing reaches the service: a recipient it
// cannot take (every wording is a row of SendWordingTest), then a size over the limit it answers with.
TEST_F(SendTest, RefusalsAreShownAndTheWindowStays) {
    composeStored(u"hello"_s);
    inSendWindow([this](QDialog& d) {
        for (const auto& [limit, typed, shown] :
             {std::tuple{0, u"+4412, bob@example.com"_s, u"E60"_s}, std::tuple{100, u"+4412"_s, u"E61"_s}}) {
            if (limit) emit w->sender().serviceFound(ServiceLimits{limit, 25});
            fake.dialogs.shown.clear();
            ctl<QLineEdit>(d, "txtRecipients")->setText(typed);
            ctl<QPushButton>(d, "cmdSend")->click();
            EXPECT_EQ(fake.dialogs.texts(), QStringList(shown));
            EXPECT_TRUE(ctl<QPushButton>(d, "cmdSend")->isEnabled());
        }
        EXPECT_FALSE(ctl<QLabel>(d, "lblSize")->styleSheet().isEmpty()); // marked as too large
        EXPECT_EQ(d.result(), QDialog::Rejected);
        d.reject();
    });
    EXPECT_TRUE(w->sender().log().entries().empty());
}

// An unsaved message is saved first or not sent at all; without a service the window says how to get
// one and closes.
TEST_F(SendTest, UnsavedMessageIsSavedFirstAndWithoutServiceSendSaysHowToGetOne) {
    compose();
    fake.dialogs.answers.push_back(Answer::No);
    w->mnu_send_Click();
    EXPECT_EQ(fake.dialogs.modalRuns, 0);

    composeStored(u"hello"_s);
    EXPECT_TRUE(ctl<QAction>(w, "mnu_send")->isEnabled());
    bool closed = false;
    inSendWindow([&](QDialog& d) {
        EXPECT_TRUE(ctl<QLabel>(d, "lblSize")->text().startsWith(u"I135"_s));
        QObject::connect(&d, &QDialog::finished, &d, [&] { closed = true; });
        ctl<QLineEdit>(d, "txtRecipients")->setText(u"+4412"_s);
        // The service is asked once the window runs; the answer comes without a wait.
        EXPECT_TRUE(QTest::qWaitFor([&] { return closed; }, 2000));
    });
    EXPECT_EQ(fake.dialogs.texts(), QStringList({u"P20"_s, u"P20"_s, u"P8"_s, u"E55"_s}));
    EXPECT_FALSE(w->isModified());
    EXPECT_TRUE(exists(u"UserData/MMS/hello.mmt"_s));
    EXPECT_EQ(fake.dialogs.modalRuns, 2); // the name dialog, then the Send window
}

TEST_F(SendTest, SentListShowsRemovesAndSendsAFailedOneAgain) {
    logEntries({{u"hello"_s, u"sent"_s}, {u"tune"_s, u"failed"_s}, {u"hi"_s, u"draft"_s}});
    w->sender().refresh(); // as at start-up, without a service
    inSentWindow([this](QDialog& d) {
        EXPECT_EQ(rows(d, 0), QStringList({u"hello"_s, u"tune"_s, u"hi"_s}));
        EXPECT_EQ(rows(d, 2), QStringList({u"+1555"_s, u"+1555"_s, u"+1555"_s}));
        EXPECT_EQ(rows(d, 3), QStringList({u"I145"_s, u"I147"_s, u"I144"_s}));
        select(d, 0);
        EXPECT_FALSE(ctl<QPushButton>(d, "cmdSendAgain")->isEnabled());

        // Again of the failed one, whose stored message has gone since: refused in words.
        select(d, 1);
        ctl<QPushButton>(d, "cmdSendAgain")->click();
        EXPECT_EQ(fake.dialogs.texts(), QStringList(u"E57"_s));
        EXPECT_EQ(rows(d, 0).size(), 3);

        fake.dialogs.shown.clear();
        fake.dialogs.answers = {Answer::No, Answer::Yes};
        ctl<QPushButton>(d, "cmdRemove")->click();
        EXPECT_EQ(rows(d, 0).size(), 3);
        ctl<QPushButton>(d, "cmdRemove")->click();
        EXPECT_EQ(rows(d, 0), QStringList({u"hello"_s, u"hi"_s}));
        EXPECT_EQ(fake.dialogs.texts(), QStringList({u"P21"_s, u"P21"_s}));
    });
    SentLog reread(home.path());
    ASSERT_TRUE(reread.load().isOk());
    EXPECT_EQ(reread.entries().size(), 2u);
}

// The real daemon: the message goes from the Send window to the loopback MMS centre, the Sent list
// shows it sent, and a failed one sent again goes too.
class RealDaemonSendTest : public SendTest {
protected:
    void SetUp() override {
        if (const QString missing = MmsdHarness::missingPackages(); !missing.isEmpty())
            GTEST_SKIP() << "needs the packages " << missing.toStdString();
        const QString problem = harness.start();
        ASSERT_TRUE(problem.isEmpty()) << problem.toStdString();
        options.mmsBus = harness.session();
        // English, so that the size label tells whether the service has answered.
        options.languageCode = u"en"_s;
        options.languageFolder = QStringLiteral(MMS_BIN_DIR);
        ComposerTest::SetUp();
    }
    MmsdHarness harness;
};

TEST_F(RealDaemonSendTest, MessageFromTheSendWindowReachesTheMmsCentre) {
    composeStored(u"hello"_s);
    inSendWindow([this](QDialog& d) {
        // The size and the limit are known once the service has answered.
        EXPECT_TRUE(QTest::qWaitFor([&] { return !ctl<QLabel>(d, "lblSize")->text().contains(u"unknown"_s); },
                                    10000));
        ctl<QLineEdit>(d, "txtRecipients")->setText(u"+44 1234 999 000"_s);
        ctl<QPushButton>(d, "cmdSend")->click();
        EXPECT_FALSE(ctl<QPushButton>(d, "cmdSend")->isEnabled());
        EXPECT_TRUE(QTest::qWaitFor([&] { return d.result() == QDialog::Accepted; }, 15000));
    });
    const auto& entries = w->sender().log().entries();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !entries.empty() && entries[0].status == u"sent"_s; }, 60000))
        << harness.daemonLog().toStdString();
    EXPECT_EQ(harness.requests().size(), 1);
    EXPECT_EQ(QSettings(options.settingsFile, QSettings::IniFormat).value(u"RecentNumbers"_s).toStringList(),
              QStringList(u"+441234999000"_s));

    // A failed hand-off of the same message, sent again from the list.
    logEntries({{u"hello"_s, u"failed"_s}});
    inSentWindow([this](QDialog& d) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return rows(d, 0).size() == 2; }, 5000));
        EXPECT_EQ(rows(d, 3).value(0), u"sent"_s);
        select(d, 1);
        ctl<QPushButton>(d, "cmdSendAgain")->click();
        EXPECT_TRUE(QTest::qWaitFor([&] { return rows(d, 3).value(2) == u"sent"_s; }, 60000))
            << rows(d, 3).join(u' ').toStdString();
    });
    EXPECT_EQ(harness.requests().size(), 2);
    EXPECT_EQ(fake.dialogs.shown.size(), 2u)
        << fake.dialogs.texts().join(u'\n').toStdString(); // the save question and notice
}

} // namespace
} // namespace mms::test
