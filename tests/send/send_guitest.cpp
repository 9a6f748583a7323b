// The Send and Sent Messages windows, driven through the fake dialogs; the last tests hand a message
// to the real mmsd-tng on private buses (tests/send/mmsdharness.h).

#include "composer/composerfixture.h"
#include "send/messagesender.h"
#include "send/mmsdharness.h"

#include <QCheckBox>
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
    // Opens File > Send and runs `drive` in it.
    void inSendWindow(std::function<void(QDialog&)> drive) {
        fake.dialogs.modalHooks.push_back(std::move(drive));
        w->mnu_send_Click();
    }
    void inSentWindow(std::function<void(QDialog&)> drive) {
        fake.dialogs.modalHooks.push_back(std::move(drive));
        w->mnu_sent_Click();
    }
    static QStringList rows(QDialog& d, int column) {
        QStringList out;
        auto* list = ctl<QTreeWidget>(d, "lstSent");
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            out << list->topLevelItem(i)->text(column);
        return out;
    }
    void logEntries(std::initializer_list<std::pair<const char*, const char*>> nameAndStatus) {
        SentLog log(home.path());
        int n = 0;
        for (const auto& [name, status] : nameAndStatus)
            ASSERT_TRUE(log.add({QLatin1String(name),
                                 QDateTime::currentDateTimeUtc(),
                                 {u"+1555"_s},
                                 u"/m/%1"_s.arg(++n),
                                 QLatin1String(status),
                                 u"gone"_s,
                                 {},
                                 false})
                            .isOk());
    }
};

TEST_F(SendTest, UnsavedMessageIsSavedFirstOrNotSentAtAll) {
    compose();
    fake.dialogs.answers.push_back(Answer::No);
    w->mnu_send_Click();
    EXPECT_EQ(fake.dialogs.texts(), QStringList({u"P20"_s}));
    EXPECT_EQ(fake.dialogs.modalRuns, 0);

    composeStored(u"hello"_s);
    inSendWindow([](QDialog& d) {
        EXPECT_EQ(ctl<QLineEdit>(d, "txtSubject")->text(), QString());
        EXPECT_TRUE(ctl<QLabel>(d, "lblSize")->text().startsWith(u"I135"_s));
        d.reject();
    });
    EXPECT_FALSE(w->isModified());
    EXPECT_TRUE(exists(u"UserData/MMS/hello.mmt"_s));
    EXPECT_EQ(fake.dialogs.modalRuns, 2); // the name dialog, then the Send window
}

// Each refusal is said in words, the window stays open and nothing reaches the service.
TEST_F(SendTest, RefusalsAreShownAndTheWindowStays) {
    composeStored(u"hello"_s);
    inSendWindow([this](QDialog& d) {
        const struct {
            const char16_t* typed;
            const char16_t* shown;
        } rows[] = {{u"", u"E58"}, {u"+4412, bob@example.com", u"E60"}, {u"call me", u"E59"}};
        for (const auto& row : rows) {
            fake.dialogs.shown.clear();
            ctl<QLineEdit>(d, "txtRecipients")->setText(QString::fromUtf16(row.typed));
            ctl<QPushButton>(d, "cmdSend")->click();
            EXPECT_EQ(fake.dialogs.texts(), QStringList(QString::fromUtf16(row.shown)));
            EXPECT_TRUE(ctl<QPushButton>(d, "cmdSend")->isEnabled());
        }
        // The service answers with a limit the message exceeds.
        emit w->sender().serviceFound(ServiceLimits{100, 25});
        EXPECT_FALSE(ctl<QLabel>(d, "lblSize")->styleSheet().isEmpty()); // marked as too large
        fake.dialogs.shown.clear();
        ctl<QLineEdit>(d, "txtRecipients")->setText(u"+4412"_s);
        ctl<QPushButton>(d, "cmdSend")->click();
        EXPECT_EQ(fake.dialogs.texts(), QStringList(u"E61"_s));
        EXPECT_EQ(d.result(), QDialog::Rejected);
        d.reject();
    });
    EXPECT_TRUE(w->sender().log().entries().empty());
}

TEST_F(SendTest, WithoutServiceSendSaysHowToGetOneAndCloses) {
    composeStored(u"hello"_s);
    EXPECT_TRUE(ctl<QAction>(w, "mnu_send")->isEnabled());
    bool closed = false;
    inSendWindow([&](QDialog& d) {
        QObject::connect(&d, &QDialog::finished, &d, [&] { closed = true; });
        ctl<QLineEdit>(d, "txtRecipients")->setText(u"+4412"_s);
        // The service is asked once the window runs; the answer comes without a wait.
        EXPECT_TRUE(QTest::qWaitFor([&] { return closed; }, 2000));
    });
    EXPECT_EQ(fake.dialogs.texts(), QStringList({u"P20"_s, u"P8"_s, u"E55"_s}));
}

TEST_F(SendTest, SentListShowsRemovesAndSendsAFailedOneAgain) {
    logEntries({{"hello", "sent"}, {"tune", "failed"}, {"hi", "draft"}});
    w->sender().refresh(); // as at start-up, without a service
    inSentWindow([this](QDialog& d) {
        EXPECT_EQ(rows(d, 0), QStringList({u"hello"_s, u"tune"_s, u"hi"_s}));
        EXPECT_EQ(rows(d, 2), QStringList({u"+1555"_s, u"+1555"_s, u"+1555"_s}));
        EXPECT_EQ(rows(d, 3), QStringList({u"I145"_s, u"I147"_s, u"I144"_s}));
        auto* list = ctl<QTreeWidget>(d, "lstSent");
        list->setCurrentItem(list->topLevelItem(0));
        EXPECT_FALSE(ctl<QPushButton>(d, "cmdSendAgain")->isEnabled());

        // Again of the failed one, whose stored message has gone since: refused in words.
        list->setCurrentItem(list->topLevelItem(1));
        ASSERT_TRUE(ctl<QPushButton>(d, "cmdSendAgain")->isEnabled());
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
    QString statusOf(std::size_t entry) {
        const auto& entries = w->sender().log().entries();
        return entry < entries.size() ? entries[entry].status : QString();
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
    EXPECT_TRUE(QTest::qWaitFor([&] { return statusOf(0) == u"sent"_s; }, 30000))
        << harness.daemonLog().toStdString();
    EXPECT_EQ(harness.requests().size(), 1);
    EXPECT_EQ(QSettings(options.settingsFile, QSettings::IniFormat).value(u"RecentNumbers"_s).toStringList(),
              QStringList(u"+441234999000"_s));

    // A failed hand-off of the same message, sent again from the list.
    SentLog log(home.path());
    ASSERT_TRUE(log.load().isOk());
    ASSERT_TRUE(log.add({u"hello"_s,
                         QDateTime::currentDateTimeUtc(),
                         {u"+4412"_s},
                         u"/gone"_s,
                         u"failed"_s,
                         u"no route"_s,
                         {},
                         false})
                    .isOk());
    inSentWindow([this](QDialog& d) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return rows(d, 0).size() == 2; }, 5000));
        EXPECT_EQ(rows(d, 3).value(0), u"sent"_s);
        auto* list = ctl<QTreeWidget>(d, "lstSent");
        list->setCurrentItem(list->topLevelItem(1));
        ctl<QPushButton>(d, "cmdSendAgain")->click();
        EXPECT_TRUE(QTest::qWaitFor([&] { return rows(d, 3).value(2) == u"sent"_s; }, 30000))
            << rows(d, 3).join(u' ').toStdString();
    });
    EXPECT_EQ(harness.requests().size(), 2);
    EXPECT_EQ(fake.dialogs.shown.size(), 2u)
        << fake.dialogs.texts().join(u'\n').toStdString(); // the save question and notice
}

} // namespace
} // namespace mms::test
