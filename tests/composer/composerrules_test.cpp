// The window-free rules behind the composer: texts, durations, folders, the size gauge, the strip,
// history, drafts, the recent list, mnemonics and drops.
#include "common/filesize.h"
#include "common/localisation.h"
#include "common/workspace.h"
#include "composer/composertext.h"
#include "composer/draftstore.h"
#include "composer/droprules.h"
#include "composer/mnemonics.h"
#include "composer/rememberedstate.h"
#include "composer/sizelimit.h"
#include "composer/slidestripmodel.h"
#include "composer/workspacefolders.h"
#include "image/picturefiles.h"
#include "model/messagemodel.h"
#include "support/qtprint.h"
#include "support/scratchsettings.h"
#include "support/tempdir.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QFile>
#include <QIdentityProxyModel>
#include <QSettings>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

// Each item as "<number>.<duration>s<thumbnail colour>", read back through the model interface.
QString items(const SlideStripModel& model) {
    QStringList out;
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex i = model.index(row);
        const QImage thumbnail = model.data(i, Qt::DecorationRole).value<QImage>();
        out << model.data(i).toString().remove(u' ') +
                   (thumbnail.pixel(0, 0) == qRgb(255, 0, 0) ? u'r' : u'b');
    }
    return out.join(u' ');
}

// The tester expects the neighbours of an inserted or removed row to keep their data; the strip
// renumbers them (and reports that with dataChanged just after), so the tester sees the labels without
// their number. The numbers are checked through items() below.
class WithoutNumbers final : public QIdentityProxyModel {
public:
    QVariant data(const QModelIndex& index, int role) const override {
        const QVariant v = QIdentityProxyModel::data(index, role);
        return role == Qt::DisplayRole ? QVariant(v.toString().section(u' ', -1)) : v;
    }
};

// The rows of the last dataChanged, as "first-last".
QString lastChange(const QSignalSpy& spy) {
    if (spy.isEmpty()) return u"none"_s;
    const QList<QVariant>& args = spy.last();
    return u"%1-%2"_s.arg(args[0].toModelIndex().row()).arg(args[1].toModelIndex().row());
}

} // namespace

TEST(ComposerText, RemoveTxtOccurrenceResumesBeyondEachCut) {
    // After each cut the search resumes beyond it: in "abcabc" the second "bc" starts inside the
    // skipped stretch, and cutting "aaaa" leaves "aa".
    const struct {
        const char* text;
        const char* find;
        const char* expected;
    } cases[] = {{"3s", "s", "3"},    {"ss", "s", "s"},         {"sss", "s", "s"},
                 {"5s5s", "s", "55"}, {"abcabc", "bc", "aabc"}, {"", "s", ""},
                 {"3s", "", "3s"},    {"sSs", "s", "S"},        {"aaaa", "aa", "aa"}};
    for (const auto& c : cases)
        EXPECT_EQ(removeTxtOccurrence(QLatin1String(c.text), QLatin1String(c.find)),
                  QLatin1String(c.expected))
            << c.text << " - " << c.find;
}

TEST(ComposerText, DurationsAreWholeSecondsThatFitSixteenBits) {
    EXPECT_EQ(stripLabel(12, u"3"_s), u"12.             3s"_s);
    for (const char* numeric : {"0", "5", " 42 ", "32767", "40000", "000012"})
        EXPECT_TRUE(isDurationNumeric(QLatin1String(numeric))) << numeric;
    for (const char* other : {"", " ", "3s", "1.5", "-3", "+3", "1e3", "3 4", "x"})
        EXPECT_FALSE(isDurationNumeric(QLatin1String(other))) << other;
    // The digits themselves are parsed by the model (SlideDuration tests); here the box's spaces go first.
    EXPECT_EQ(durationSeconds(u" 7"_s), std::optional<qint16>(7));
    EXPECT_EQ(durationSeconds(u"32768"_s), std::nullopt);
}

TEST(WorkspaceFolders, MadeParentsFirstOnceAndCleanedUpWithoutFollowingLinksStoppingAtAFailure) {
    test::TempDir home;
    QStringList created;
    ASSERT_TRUE(createWorkspaceFolders(home.path(), &created).isOk());
    EXPECT_EQ(created, workspace::folders(home.path()));

    home.write(u"UserData/Picture/cat.gif"_s, "GIF89a");
    created.clear();
    ASSERT_TRUE(createWorkspaceFolders(home.path(), &created).isOk());
    EXPECT_TRUE(created.isEmpty());
    EXPECT_EQ(test::TempDir::read(home.file(u"UserData/Picture/cat.gif"_s)), QByteArray("GIF89a"));

    // Clean-up removes the scratch folders and the working copy, never following a link out.
    test::TempDir outside;
    const QString precious = outside.write(u"precious.txt"_s, "keep");
    ASSERT_TRUE(QFile::link(outside.path(), home.file(u"Temp/tmpJPG/link"_s)));
    home.write(u"UserData/MMS/temp/pic1.jpg"_s, "x");
    home.write(u"UserData/MMS/temp.mmt"_s, "\"\"\n");
    ASSERT_TRUE(cleanUpWorkspace(home.path()).isOk());
    for (const char* gone : {"Temp", "UserData/MMS/temp", "UserData/MMS/temp.mmt"})
        EXPECT_FALSE(QFileInfo::exists(home.file(QLatin1String(gone)))) << gone;
    EXPECT_TRUE(QFileInfo(home.file(u"UserData/MMS"_s)).isDir());
    EXPECT_EQ(test::TempDir::read(precious), QByteArray("keep"));

    // Without temp.mmt a folder called temp is not the working copy, and it stays.
    ASSERT_TRUE(createWorkspaceFolders(home.path()).isOk());
    home.write(u"UserData/MMS/temp/keep.txt"_s, "x");
    home.write(u"Temp/tmpJPG/a.jpg"_s, "x");
    ASSERT_TRUE(QDir(home.file(u"Temp/tmpMID"_s)).removeRecursively());
    home.write(u"Temp/tmpMID"_s, "a file, not the folder");
    const Status s = cleanUpWorkspace(home.path());
    ASSERT_FALSE(s.isOk());
    EXPECT_TRUE(s.message().contains(u"tmpMID"_s)) << s.message().toStdString();
    EXPECT_FALSE(QFileInfo::exists(home.file(u"Temp/tmpJPG"_s)));
    EXPECT_TRUE(QFileInfo::exists(home.file(u"Temp/tmpMID"_s)));
    EXPECT_TRUE(QFileInfo::exists(home.file(u"UserData/MMS/temp/keep.txt"_s)));
}

TEST(SizeLimit, GaugeTurnsAmberAbove90PercentAndRedAboveTheSettingsLimit) {
    constexpr qint64 limit = 300 * 1024;
    const std::pair<qint64, GaugeLevel> levels[] = {
        {0, GaugeLevel::Normal},
        {limit * 9 / 10, GaugeLevel::Normal},
        {limit * 9 / 10 + 1, GaugeLevel::Near},
        {limit, GaugeLevel::Near},
        {limit + 1, GaugeLevel::Over},
    };
    for (const auto& [size, level] : levels)
        EXPECT_EQ(gaugeLevel(size, limit), level) << size;

    LanguageTexts texts;
    texts.interface = QStringList(sizetext::kMegabytes + 1, QString());
    texts.interface[sizetext::kKilobytes] = u"%1 KB"_s;
    texts.interface[sizetext::kMegabytes] = u"%1 MB"_s;
    Localisation loc;
    loc.setTexts(texts);
    const std::pair<qint64, const char*> sizes[] = {{0, "0 KB"},       {1, "1 KB"},
                                                    {102399, "99 KB"}, {102400, "100 KB"},
                                                    {1048576, "1 MB"}, {1048577, "1024 KB"}};
    for (const auto& [bytes, text] : sizes)
        EXPECT_EQ(sizeText(loc, bytes), QLatin1String(text)) << bytes;

    // The setting keeps a limit in range and otherwise gives the default.
    const test::ScratchSettings scratch;
    EXPECT_EQ(readSizeLimitSetting(), kDefaultSizeLimit);
    writeSizeLimitSetting(600 * 1024);
    EXPECT_EQ(readSizeLimitSetting(), 600 * 1024);
    writeSizeLimitSetting(5);
    EXPECT_EQ(readSizeLimitSetting(), kDefaultSizeLimit);
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
    const QString lost = home.file(u"gone.mid"_s);
    Draft gone;
    gone.slides = {SlideContent{{}, kept, {}, lost}, SlideContent{{}, lost, {}, {}}};
    EXPECT_EQ(dropMissingMedia(gone), QStringList{lost});
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

TEST(SlideStripModel, FollowsTheMessageAndRenumbersOnlyTheRowsThatMoved) {
    test::TempDir dir;
    const QString red = dir.write(u"red.png"_s, test::encoded(test::filled(70, 70, Qt::red), "png"));
    MessageModel message(nullptr);
    SlideStripModel model(message);
    WithoutNumbers unnumbered;
    unnumbered.setSourceModel(&model);
    // A broken signal sequence aborts the test run with the tester's message.
    QAbstractItemModelTester tester(&unnumbered, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    for (qint16 seconds : {1, 2, 3})
        message.addSlide(qint16(message.count()), SlideContent{SlideDur::fromNumber(seconds), red, {}, {}});
    EXPECT_TRUE(changed.isEmpty());
    message.insertSlide(1, SlideContent{SlideDur::fromNumber(9), {}, {}, {}});
    EXPECT_EQ(items(model), u"1.9sb 2.1sr 3.2sr 4.3sr"_s);
    EXPECT_EQ(lastChange(changed), u"1-3"_s);
    QPersistentModelIndex moved = model.index(0); // the view's selection follows such indexes
    message.moveSlide(1, 3);
    EXPECT_EQ(moved.row(), 2);
    EXPECT_EQ(items(model), u"1.1sr 2.2sr 3.9sb 4.3sr"_s);
    EXPECT_EQ(lastChange(changed), u"0-2"_s);
    moved = model.index(3);
    message.swapAtFront(4);
    EXPECT_EQ(moved.row(), 0);
    EXPECT_EQ(items(model), u"1.3sr 2.1sr 3.2sr 4.9sb"_s);
    EXPECT_EQ(lastChange(changed), u"0-3"_s);
    message.removeSlide(1);
    EXPECT_EQ(items(model), u"1.1sr 2.2sr 3.9sb"_s);
    EXPECT_EQ(lastChange(changed), u"0-2"_s);

    changed.clear();
    message.setDuration(2, SlideDur::fromNumber(2)); // unchanged: nothing to report
    message.setField(3, SlideField::Text, u"hi"_s);  // no part of the strip
    EXPECT_TRUE(changed.isEmpty());
    message.setDuration(2, SlideDur::fromNumber(7));
    EXPECT_EQ(lastChange(changed), u"1-1"_s);
    // A clip that cannot be read keeps the thumbnail its slide had; a slide put back by the history
    // keeps its own.
    message.setField(1, SlideField::Picture, dir.write(u"clip.3gp"_s, "x"));
    const quint64 id = message.at(1)->id;
    const SlideContent clip = *message.contentAt(1);
    message.removeSlide(1);
    message.insertSlide(3, clip, id);
    EXPECT_EQ(items(model), u"1.7sr 2.9sb 3.1sr"_s);
    message.setField(3, SlideField::Picture, QString());
    EXPECT_EQ(items(model), u"1.7sr 2.9sb 3.1sb"_s);
    message.clear();
    EXPECT_EQ(model.rowCount(), 0);
}
