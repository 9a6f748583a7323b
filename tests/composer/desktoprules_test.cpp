// The window-free rules behind the composer's history, drafts, recent list, mnemonics and drops.
#include "composer/draftstore.h"
#include "composer/droprules.h"
#include "composer/mnemonics.h"
#include "composer/rememberedstate.h"
#include "composer/slideedits.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QSettings>
#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

// A list of slides named by their text, one letter each; the order reads the text and the tail.
QString order(const CSlide& list) {
    QString s;
    for (auto n = list.firstItem(); n; n = n->NextNode)
        s += n->DataText;
    return s + u'|' + (list.lastItem() ? list.lastItem()->DataText : QString());
}

} // namespace

TEST(SlideEdits, MovesKeepTheListWholeWhateverTheDistance) {
    struct Move {
        qint16 from, to;
        const char* expected;
    };
    // To either end, by one place either way, and further inside the list.
    for (const Move& m :
         {Move{4, 1, "DABCE|E"}, Move{2, 5, "ACDEB|B"}, Move{3, 2, "ACBDE|E"}, Move{3, 4, "ABDCE|E"},
          Move{2, 4, "ACDBE|E"}, Move{4, 2, "ADBCE|E"}, Move{3, 3, "ABCDE|E"}}) {
        CSlide list;
        for (QChar c : u"ABCDE"_s)
            list.InsertAtBack(SlideDur::fromText(u"3"_s), {}, QString(c), {});
        EXPECT_TRUE(moveSlideTo(list, m.from, m.to, 5));
        EXPECT_EQ(order(list), QString::fromLatin1(m.expected)) << m.from << "->" << m.to;
    }
    CSlide empty;
    EXPECT_FALSE(moveSlideTo(empty, 1, 2, 0));
}

TEST(Drafts, RoundTripKeepsEverySlideRefusesAnythingElseAndTheStoreSetsADamagedOneAside) {
    const Draft draft{u"trip"_s,
                      u"Hi"_s,
                      2,
                      {SlideContent{SlideDur::fromText(u"3"_s), {}, u"first\nline"_s, {}},
                       SlideContent{SlideDur::fromNumber(12), u"/a/p.jpg"_s, {}, u"/a/t.mid"_s}}};
    QString error;
    const QByteArray good = encodeDraft(draft);
    EXPECT_EQ(decodeDraft(good, &error), draft);
    const std::pair<QByteArray, QByteArray> damage[] = {
        {"\"format\": \"mms-composer-draft\"", "\"format\": \"other\""},
        {"\"current\": 2", "\"current\": 3"},
        {"\"duration\": 12", "\"duration\": 40000"},
        {"\"text\": \"\"", "\"text\": 5"},
        {"\"slides\"", "\"slide\""},
    };
    for (const auto& [from, to] : damage) {
        QByteArray bad = good;
        bad.replace(from, to);
        EXPECT_EQ(decodeDraft(bad, &error), std::nullopt) << to.toStdString();
    }
    EXPECT_EQ(decodeDraft(good.left(good.size() / 2), &error), std::nullopt);
    EXPECT_FALSE(error.isEmpty());

    // The store writes, sets aside and removes the draft; media gone since are dropped.
    test::TempDir home;
    const DraftStore store(home.path());
    ASSERT_TRUE(store.write("one").isOk());
    Status status = Status::ok();
    const QDateTime when(QDate(2024, 5, 17), QTime(14, 30, 5));
    const QString aside = store.setAside(when, status);
    EXPECT_TRUE(status.isOk() && aside.endsWith(u"UserData/draft-damaged-20240517-143005.json"_s));
    EXPECT_EQ(test::TempDir::read(aside), "one");
    EXPECT_FALSE(store.exists());
    EXPECT_TRUE(store.remove().isOk());

    const QString kept = home.write(u"p.jpg"_s, "x");
    Draft gone{{},
               {},
               1,
               {SlideContent{{}, kept, {}, home.file(u"gone.mid"_s)},
                SlideContent{{}, home.file(u"gone.mid"_s), {}, {}}}};
    EXPECT_EQ(dropMissingMedia(gone), QStringList{home.file(u"gone.mid"_s)});
    EXPECT_EQ(gone.slides[0].picture, kept);
    EXPECT_TRUE(gone.slides[0].sound.isEmpty() && gone.slides[1].picture.isEmpty());
}

TEST(Mnemonics, EveryCaptionOfAMenuGetsItsOwnKey) {
    // Captions split at '|', each caption's letter for captions without letters, and the result.
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"File|Edit|Slide|Help", "FESH", "&File|&Edit|&Slide|&Help"},
        {"Save|Save As...|&Open", "SAO", "&Save|S&ave As...|&Open"},
        {"Datei|Bearbeiten|Folie", "FES", "&Datei|&Bearbeiten|&Folie"},
        {"Правка|Привет", "EH", "&Правка|П&ривет"},
        {"文件|编辑|幻灯片", "FEF", "文件(&F)|编辑(&E)|幻灯片(&A)"},
        {"...|Q&&A", "", "...|&Q&&A"}};
    for (const auto& [captions, keys, expected] : cases)
        EXPECT_EQ(withMnemonics(QString::fromUtf8(captions).split(u'|'), QLatin1String(keys)),
                  QString::fromUtf8(expected).split(u'|'))
            << keys;
}

TEST(RememberedState, RecentListKeepsEightNamesLastUsedFirstAndSurvivesTheSettingsFile) {
    QStringList recent;
    for (int i = 1; i <= 10; ++i)
        recent = withRecent(recent, QString::number(i));
    recent = withRecent(recent, u"5"_s);
    EXPECT_EQ(recent, (QStringList{u"5"_s, u"10"_s, u"9"_s, u"8"_s, u"7"_s, u"6"_s, u"4"_s, u"3"_s}));

    test::TempDir dir;
    const QString file = dir.file(u"settings.ini"_s);
    RememberedState state{"geo", "cols", u"/p"_s, u"/s"_s, 1, recent};
    {
        QSettings settings(file, QSettings::IniFormat);
        saveRememberedState(settings, state);
        settings.setValue(u"messages/recent"_s, QStringList{u"a"_s, u" "_s, u"b"_s, u"a"_s});
    }
    QSettings settings(file, QSettings::IniFormat);
    const RememberedState read = loadRememberedState(settings);
    EXPECT_EQ(read.geometry, "geo");
    EXPECT_EQ(read.splitter, "cols");
    EXPECT_EQ(read.pictureFolder + read.soundFolder, u"/p/s"_s);
    EXPECT_EQ(read.tab, 1);
    EXPECT_EQ(read.recent, (QStringList{u"a"_s, u"b"_s})); // hand-edited: blanks and repeats go
}

TEST(DropRules, PicturesAndSoundsByExtensionAnythingElseRefused) {
    test::TempDir dir;
    const std::pair<const char*, DropKind> cases[] = {
        {"b.JPG", DropKind::Picture}, {"e.3gp", DropKind::Picture}, {"f.AMR", DropKind::Sound},
        {"g.mid", DropKind::Sound},   {"h.png", DropKind::Refused}, {"j", DropKind::Refused},
    };
    for (const auto& [name, kind] : cases)
        EXPECT_EQ(dropKindOf(dir.write(QString::fromLatin1(name), "x")), kind) << name;
    EXPECT_EQ(dropKindOf(dir.file(u"missing.gif"_s)), DropKind::Refused);
    EXPECT_EQ(dropKindOf(dir.path()), DropKind::Refused); // a folder
}
