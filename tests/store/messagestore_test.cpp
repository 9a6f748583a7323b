#include "store/appfolder.h"
#include "store/messageindex.h"
#include "store/storefixture.h"

#include <QFileInfo>
#include <QRegularExpression>

using namespace mms;
using namespace Qt::StringLiterals;
using namespace mms::test;

namespace {

const SlideDur kThree = SlideDur::fromText(u"3"_s);

class MessageStoreTest : public StoreFixture {
protected:
    // Picture + text, sound only, picture + sound.
    MessageStoreTest() {
        slides.InsertAtBack(kThree, media(u"a.gif"_s, "GIF-1"), u"Hi"_s, {});
        slides.InsertAtBack(SlideDur::fromNumber(5), {}, {}, media(u"b.mid"_s, "MThd-2"));
        slides.InsertAtBack(kThree, media(u"c.jpg"_s, "JPG-3"), {}, media(u"d.amr"_s, "AMR-4"));
    }
    QStringList hiddenLeftovers() const {
        return QDir(messages())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
            .filter(QRegularExpression(u"^\\."_s));
    }
    CSlide slides;
};

TEST_F(MessageStoreTest, SaveReplacesTheStoredMessageWholeAndLeavesOthersAlone) {
    ASSERT_TRUE(store.save(slides, u"trip"_s, u"Summer"_s).isOk());
    ASSERT_TRUE(store.save(slides, u"other"_s, u"Other"_s).isOk());
    const auto before = snapshot();

    // Slides pointing into the stored folder itself, reordered: the old files are read before the swap.
    CSlide reopened;
    reopened.InsertAtBack(kThree, folder(u"trip"_s) + u"/pic3.jpg"_s, {}, {});
    reopened.InsertAtBack(kThree, folder(u"trip"_s) + u"/pic1.gif"_s, u"only"_s, {});
    ASSERT_TRUE(store.save(reopened, u"trip"_s, u"Winter"_s).isOk());
    auto after = snapshot();
    EXPECT_EQ(after.keys().filter(u"trip"_s),
              QStringList({u"trip.mmt"_s, u"trip/main.smil"_s, u"trip/pic1.jpg"_s, u"trip/pic2.gif"_s,
                           u"trip/text2.txt"_s, u"trip/texts.xml"_s}));
    EXPECT_EQ(after[u"trip/pic1.jpg"_s], "JPG-3");
    EXPECT_EQ(after[u"trip.mmt"_s], "Winter\r\n\"3\",\"I\",\"N\",\"N\"\r\n\"3\",\"I\",\"T\",\"N\"\r\n");
    for (const QString& key : before.keys().filter(u"other"_s))
        EXPECT_EQ(after[key], before[key]);
    EXPECT_TRUE(hiddenLeftovers().isEmpty());
}

TEST_F(MessageStoreTest, AFailedSaveOrRemoveKeepsTheStoredCopyIntact) {
    ASSERT_TRUE(store.save(slides, u"trip"_s, u"S"_s).isOk());
    const auto before = snapshot();

    ASSERT_TRUE(QFile::remove(tmp.file(u"media/d.amr"_s))); // removed after it was attached
    const Status s = store.save(slides, u"trip"_s, u"new"_s);
    EXPECT_TRUE(!s.isOk() && s.message().contains(u"d.amr"_s)) << s.message().toStdString();
    EXPECT_EQ(snapshot(), before);

    // Without the power to override permissions, a folder that cannot be written fails the change.
    const std::tuple<QString, bool, const char*> locks[] = {{messages(), false, ""},
                                                            {folder(u"trip"_s), false, "read-only"},
                                                            {folder(u"trip"_s), true, "read-only"}};
    for (const auto& [locked, remove, says] : locks) {
        QFile::setPermissions(locked, QFileDevice::Permissions(0x5555));
        const auto failure = runUnprivileged([&] {
            return (remove ? store.remove(u"trip"_s) : store.save(slides, u"trip"_s, u"new"_s)).message();
        });
        QFile::setPermissions(locked, QFileDevice::Permissions(0x7777));
        if (!failure) GTEST_SKIP() << "cannot drop privileges";
        EXPECT_TRUE(!failure->isEmpty() && failure->contains(QLatin1String(says))) << failure->toStdString();
    }
    EXPECT_EQ(snapshot(), before);
    EXPECT_TRUE(hiddenLeftovers().isEmpty());
}

TEST_F(MessageStoreTest, RemoveAndHostileNames) {
    ASSERT_TRUE(store.save(slides, u"b"_s, {}).isOk());
    for (const QString& name : {u"My message"_s, u"a.b"_s, u"Grüße"_s, u"temp2"_s})
        EXPECT_TRUE(store.save(CSlide(), name, {}).isOk() && store.exists(name)) << name.toStdString();
    const QString outside = tmp.write(u"UserData/keep.mmt"_s, "keep");
    const auto before = snapshot();
    for (const QString& name : {QString(), u"."_s, u".."_s, u"../keep"_s, u"a\\b"_s, u"temp"_s, u"TEMP"_s,
                                u".hidden"_s, u"bell\a"_s}) {
        LoadedMessage out;
        EXPECT_FALSE(store.save(slides, name, {}).isOk() || store.exists(name) || store.remove(name).isOk() ||
                     store.load(name, messages(), out).isOk())
            << name.toStdString();
    }
    EXPECT_FALSE(store.remove(u"nothing"_s).isOk());
    EXPECT_EQ(snapshot(), before);
    EXPECT_TRUE(QFileInfo::exists(outside));

    // A link named like a message loses only itself, never what it points to.
    ASSERT_TRUE(QFile::link(QFileInfo(outside).absolutePath(), folder(u"link"_s)));
    EXPECT_TRUE(store.remove(u"link"_s).isOk());
    EXPECT_TRUE(QFileInfo::exists(outside));

    EXPECT_TRUE(store.remove(u"b"_s).isOk());
    auto expected = before;
    for (const QString& key : before.keys().filter(QRegularExpression(u"^b[/.]"_s)))
        expected.remove(key);
    EXPECT_EQ(snapshot(), expected);
}

TEST_F(MessageStoreTest, LoadFollowsTheIndexTreatsMissingFilesAsAbsentAndRefusesAMalformedOne) {
    tmp.write(u"UserData/MMS/m.mmt"_s, "  Subject line\r\n\"3\",\"I\",\"T\",\"S\"\r\n5,\"N\",\"N\",\"N\"\n"
                                       "\"7\",\"I\",\"T\",\"S\"\r\n" +
                                           QByteArray(" 2 ,\"N\",\"N\",\"N\"\r\n").repeated(6) +
                                           "4,\"I\",\"N\",\"N\"\r\n\r\n");
    const QString w = tmp.file(u"work"_s);
    for (const char* name : {"sound1.amr", "vdo3.3gp", "sound3.mid", "pic10.jpg"})
        tmp.write(u"work/"_s + QLatin1String(name), name);
    tmp.write(u"work/text1.txt"_s, "caf\xc3\xa9\r\nx");
    LoadedMessage out;
    ASSERT_TRUE(store.load(u"m"_s, w, out).isOk());
    EXPECT_EQ(out.subject, u"Subject line"_s);
    ASSERT_EQ(out.slides.size(), 10u);
    EXPECT_EQ(out.slides[0].duration, kThree);
    EXPECT_EQ(out.slides[0].text, u"café\r\nx"_s);
    EXPECT_EQ(out.slides[0].soundPath, w + u"/sound1.amr"_s);
    EXPECT_EQ(out.slides[1].duration, SlideDur::fromNumber(5));
    EXPECT_EQ(out.slides[2].picturePath, w + u"/vdo3.3gp"_s);
    EXPECT_EQ(out.slides[3].duration, SlideDur::fromNumber(2));
    EXPECT_EQ(out.slides[9].picturePath, w + u"/pic10.jpg"_s);
    // Slide 1's picture and slide 3's text are missing: absent, and never slide 10's picture.
    EXPECT_TRUE(out.slides[0].picturePath.isEmpty() && out.slides[2].text.isEmpty());
    EXPECT_EQ(out.missingFiles, QStringList({u"pic1.*"_s, u"text3.txt"_s}));

    // A subject line with commas, as written elsewhere, comes back whole; a malformed or missing index
    // changes nothing.
    const std::tuple<const char*, bool, const char*> indexes[] = {
        {"Nothing\r\n", true, "Nothing"},
        {"\"Hi, you\" x\r\n", true, "Hi, you"},
        {"Hello, world\r\n", true, "Hello, world"},
        {"\"a\",\"b\"\r\n", true, "\"a\",\"b\""},
        {"S\r\n\"3\",\"I\",\"N\"\r\n", false, "line 2"},
        {"S\r\n\"3\",\"N\",\"N\",\"N\"\r\nx,\"N\",\"N\",\"N\"", false, "line 3"},
        {"S\r\n40000,\"N\",\"N\",\"N\"\r\n", false, "40000"},
        {"", false, "empty"}};
    for (const auto& [bytes, ok, text] : indexes) {
        tmp.write(u"UserData/MMS/m.mmt"_s, bytes);
        const QString before = out.subject;
        const Status s = store.load(u"m"_s, w, out);
        if (ok)
            EXPECT_TRUE(s.isOk() && out.subject == QLatin1String(text) && out.slides.empty() &&
                        out.missingFiles.isEmpty())
                << bytes;
        else
            EXPECT_TRUE(!s.isOk() && s.message().contains(QLatin1String(text)) && out.subject == before)
                << s.message().toStdString();
    }
    EXPECT_FALSE(store.load(u"absent"_s, w, out).isOk());
    EXPECT_EQ(out.subject, u"\"a\",\"b\""_s);

    QList<bool> quoted;
    EXPECT_EQ(splitIndexFields(u"  \"a, b\" junk, c ,\"open"_s, &quoted),
              QStringList({u"a, b"_s, u"c "_s, u"open"_s}));
    EXPECT_EQ(quoted, QList<bool>({true, false, true}));
}

TEST_F(MessageStoreTest, RoundTripThroughTheWorkingCopyKeepsEverySlide) {
    slides.InsertAtBack(SlideDur::fromNumber(12), media(u"e.GIF"_s, "GIF-5"), u"Привет \\ \t end"_s, {});
    slides.InsertAtBack(kThree, media(u"f.3gp"_s, QByteArray(70000, 'v')), {}, {});
    slides.InsertAtBack(kThree, {}, {}, {});
    ASSERT_TRUE(store.save(slides, u"trip"_s, u"Grüße"_s).isOk());

    // An earlier working copy with a stray file is replaced whole, and only by a complete copy.
    tmp.write(u"UserData/MMS/temp/pic2.bmp"_s, "stale");
    tmp.write(u"UserData/MMS/temp.mmt"_s, "old\r\n");
    EXPECT_FALSE(store.copyToWorkingCopy(u"absent"_s).isOk());
    EXPECT_TRUE(QFileInfo::exists(messages() + u"/temp/pic2.bmp"_s));
    ASSERT_TRUE(store.copyToWorkingCopy(u"trip"_s).isOk());
    EXPECT_FALSE(QFileInfo::exists(messages() + u"/temp/pic2.bmp"_s));
    EXPECT_EQ(store.list().size(), 1u);

    LoadedMessage out;
    const QString work = workspace::workingCopy(tmp.path());
    ASSERT_TRUE(store.load(u"trip"_s, work, out).isOk());
    EXPECT_EQ(out.subject, u"Grüße"_s);
    ASSERT_EQ(out.slides.size(), 6u);
    const auto bytes = [](const QString& path) {
        return path.isEmpty() ? QByteArray("-") : TempDir::read(path);
    };
    int n = 0;
    for (auto node = slides.firstItem(); node; node = node->NextNode, ++n) {
        const LoadedSlide& back = out.slides[n];
        EXPECT_TRUE(back.duration == node->DataSlideDur && back.text == node->DataText) << n;
        EXPECT_EQ(bytes(back.picturePath), bytes(node->DataImgPath)) << n;
        EXPECT_EQ(bytes(back.soundPath), bytes(node->DataSoundPath)) << n;
        EXPECT_TRUE(back.picturePath.isEmpty() || back.picturePath.startsWith(work));
    }
    ASSERT_TRUE(store.removeWorkingCopy().isOk());
    EXPECT_FALSE(QFileInfo::exists(work) || QFileInfo::exists(workspace::workingCopyIndex(tmp.path())));
}

TEST(AppFolderTest, ChoosesWorkspaceAndLanguageFolders) {
    // Two layouts side by side: a build folder (programs beside their language files) and an
    // installation (bin/ empty of them, share/mms-composer/ holding them).
    TempDir dir;
    const QString build = QFileInfo(dir.write(u"build/bin/English.lng"_s, "x")).path();
    const QString installedShare = QFileInfo(dir.write(u"usr/share/mms-composer/English.lng"_s, "x")).path();
    const QString installedBin = dir.file(u"usr/bin"_s);
    const QString data = dir.file(u"data"_s);
    QDir().mkpath(installedBin);
    const QString home = dir.file(u"home"_s);
    const QString variable = dir.file(u"variable"_s);
    const QString relative = QDir::current().absoluteFilePath(u"rel"_s);
    struct Case {
        const char* what;
        QString program, homeOption, homeVariable, dataFolder;
        QString appFolder, languageFolder;
        bool installed;
    };
    const Case cases[] = {
        {"build folder", build, {}, {}, data, build, build, false},
        {"installed", installedBin, {}, {}, data, data, installedShare, true},
        {"--home, installed", installedBin, home, {}, data, home, installedShare, true},
        {"variable, installed", installedBin, {}, variable, data, variable, installedShare, true},
        {"--home beats the variable", installedBin, home, variable, data, home, installedShare, true},
        {"installed without a data folder", installedBin, {}, {}, {}, {}, installedShare, true},
        {"trailing separators and dots", build + u"/."_s, home + u"/"_s, {}, data, home, build, false},
        {"relative --home", build, u"rel"_s, {}, data, relative, build, false},
    };
    for (const Case& c : cases) {
        const ProgramFolders folders =
            chooseProgramFolders({c.program, c.homeOption, c.homeVariable, c.dataFolder});
        EXPECT_EQ(folders.appFolder, c.appFolder) << c.what;
        EXPECT_EQ(folders.languageFolder, c.languageFolder) << c.what;
        EXPECT_EQ(folders.installed, c.installed) << c.what;
    }
}

} // namespace
