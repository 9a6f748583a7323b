// What the next start does with what a crash left: scratch of programs that ended goes, scratch of
// programs still running stays, and a swap cut short is undone or finished.

#include "common/scratchfolder.h"
#include "store/storefixture.h"

using namespace mms;
using namespace Qt::StringLiterals;
using namespace mms::test;

namespace {

class RecoveryTest : public StoreFixture {
protected:
    QString temp() const { return workspace::temp(tmp.path()); }
    QStringList tempEntries() const {
        return QDir(temp()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
};

TEST_F(RecoveryTest, RemovesOnlyScratchWhoseProgramEndedAndTheOldHiddenStagingNames) {
    ScratchFolder live;
    ASSERT_TRUE(live.create(temp(), u"saving-"_s).isOk());
    tmp.write(u"Temp/saving-7/UserData/MMS/x/main.smil"_s, "half"); // a crash before its lock was kept
    tmp.write(u"Temp/mms-2/part"_s, "scratch");
    tmp.write(u"Temp/send-123456/part"_s, "the daemon still reads it");
    tmp.write(u"UserData/MMS/.saving-1/main.smil"_s, "debris");
    tmp.write(u"UserData/MMS/.saving-1.mmt"_s, "debris");

    ASSERT_TRUE(store.recover().isOk());
    EXPECT_EQ(tempEntries(), QStringList({u"saving-1"_s, u"saving-1.lock"_s, u"send-123456"_s}));
    EXPECT_TRUE(snapshot().isEmpty());
}

// A save stopped between its renames, rebuilt by hand in each state the swap passes through.
TEST_F(RecoveryTest, ASwapCutShortIsUndoneUntilTheNewIndexIsInAndFinishedAfter) {
    CSlide v1, v2;
    v1.InsertAtBack(SlideDur::fromNumber(1), {}, u"old"_s, {});
    v2.InsertAtBack(SlideDur::fromNumber(2), {}, u"new"_s, {});
    ASSERT_TRUE(store.save(v2, u"m"_s, u"S"_s).isOk());
    const auto newState = snapshot();
    ASSERT_TRUE(store.save(v1, u"m"_s, u"S"_s).isOk());
    const auto oldState = snapshot();

    const QString staged = temp() + u"/saving-1/UserData/MMS"_s, aside = temp() + u"/saving-1/replaced"_s;
    const auto stage = [&] {
        for (const auto& [name, bytes] : newState.asKeyValueRange())
            tmp.write(u"Temp/saving-1/UserData/MMS/"_s + name, bytes);
        QDir().mkpath(aside);
    };
    const auto move = [](const QString& from, const QString& to) { ASSERT_TRUE(QDir().rename(from, to)); };
    for (int done = 0; done <= 4; ++done) {
        SCOPED_TRACE(done);
        ASSERT_TRUE(store.save(v1, u"m"_s, u"S"_s).isOk());
        stage();
        if (done > 0) move(messages() + u"/m.mmt"_s, aside + u"/m.mmt"_s);
        if (done > 1) move(folder(u"m"_s), aside + u"/m"_s);
        if (done > 2) move(staged + u"/m"_s, folder(u"m"_s));
        if (done > 3) move(staged + u"/m.mmt"_s, messages() + u"/m.mmt"_s);
        ASSERT_TRUE(store.recover().isOk());
        EXPECT_EQ(snapshot(), done == 4 ? newState : oldState);
        EXPECT_TRUE(tempEntries().isEmpty());
    }
}

} // namespace
