#include "app/mmscrun.h"
#include "package/archivereader.h"
#include "package/packagewriter.h"
#include "store/storefixture.h"

#include <QFileInfo>

using namespace mms;
using namespace Qt::StringLiterals;
using mms::test::MmscRun;
using mms::test::TempDir;

namespace {

class MmscStoreTest : public mms::test::StoreFixture {
protected:
    MmscRun mmsc(const QString& line) { return test::runMmsc({u"--home"_s, tmp.path()}, line); }
    void SetUp() override {
        slides.InsertAtBack(SlideDur::fromText(u"3"_s), media(u"p.gif"_s, "GIF89a"), u"a\\b\tc\r\nd"_s, {});
        slides.InsertAtBack(SlideDur::fromNumber(7), {}, {}, media(u"s.mid"_s, "MThd"));
        ASSERT_TRUE(store.save(slides, u"beta"_s, u"Hello"_s).isOk());
        CSlide none;
        ASSERT_TRUE(store.save(none, u"Alpha"_s, u"Empty"_s).isOk());
        // The composer's working copy of another message must survive every command.
        ASSERT_TRUE(store.copyToWorkingCopy(u"Alpha"_s).isOk());
    }
    CSlide slides;
};

TEST_F(MmscStoreTest, ListAndShowPrintExactLines) {
    const auto before = snapshot();
    const auto stamp = [&](const char* name) {
        return QFileInfo(messages() + QLatin1Char('/') + QLatin1String(name) + u".mmt"_s)
            .lastModified()
            .toString(u"yyyy-MM-dd'T'HH:mm:ss"_s);
    };
    const std::pair<QString, QString> cases[] = {
        {u"list"_s, u"Alpha\t%1\nbeta\t%2\n"_s.arg(stamp("Alpha"), stamp("beta"))},
        {u"show beta"_s,
         u"subject: Hello\n1\t\"3\"\tpic1.gif\ta\\\\b\\tc\\r\\nd\t\n2\t7\t\t\tsound2.mid\n"_s},
        {u"show Alpha"_s, u"subject: Empty\n"_s}};
    for (const auto& [args, out] : cases) {
        const MmscRun r = mmsc(args);
        EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
        EXPECT_EQ(r.out, out);
    }
    EXPECT_EQ(snapshot(), before);
}

TEST_F(MmscStoreTest, ExportMatchesTheExportOfTheOriginalSlides) {
    const auto before = snapshot();
    const QString target = tmp.file(u"out.tpl"_s);
    tmp.write(u"out.tpl"_s, "old");
    const MmscRun r = mmsc(u"export beta "_s + target);
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_FALSE(QFileInfo::exists(tmp.file(u"upload.tpl"_s)));
    EXPECT_EQ(snapshot(), before);

    TempDir reference;
    slides.setfolderpath(QString());
    slides.setfilename(reference.file(u"upload"_s));
    ASSERT_TRUE(generateSMIL(slides, reference.path(), u"Hello"_s).isOk());
    const auto expected = test::readTar(reference.file(u"upload.tpl"_s));
    ASSERT_EQ(expected.size(), 4u);
    EXPECT_EQ(test::readTar(target), expected);
}

TEST_F(MmscStoreTest, BadInputGetsOneLineAndWritesNothing) {
    const auto before = snapshot();
    const QString target = tmp.file(u"never.tpl"_s);
    for (const QString& line : {u"list extra"_s, u"show"_s, u"show absent"_s, u"show ../MMS"_s,
                                u"show temp"_s, u"export absent "_s + target, u"export beta "_s + tmp.path(),
                                u"export beta "_s + tmp.file(u"no/such.tpl"_s)}) {
        const MmscRun r = mmsc(line);
        EXPECT_EQ(r.exitCode, 2) << line.toStdString();
        EXPECT_TRUE(r.out.isEmpty());
        EXPECT_TRUE(r.err.startsWith(QLatin1String("mmsc: ")) && r.err.count(QLatin1Char('\n')) == 1)
            << r.err.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(target));
    EXPECT_EQ(snapshot(), before);
}

} // namespace
