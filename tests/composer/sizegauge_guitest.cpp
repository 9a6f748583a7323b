#include "common/filesize.h"
#include "composer/composerfixture.h"
#include "composer/widgets/sizegauge.h"
#include "image/picturefiles.h"
#include "support/scratchsettings.h"

#include <QAction>
#include <QLabel>
#include <QSpinBox>

using namespace mms;
using namespace mms::test;

namespace {

class SizeGaugeTest : public ComposerTest {
protected:
    void SetUp() override {
        LanguageTexts texts = numberedTexts();
        texts.interface[sizetext::kKilobytes] = QStringLiteral("%1 KB");
        texts.interface[sizetext::kGaugeTip] = QStringLiteral("%1 of %2");
        loc.setTexts(texts);
        start();
    }
    SizeGauge& gauge() { return *ctl<SizeGauge>(w, "sizeGauge"); }
    // A picture file of about `kilobytes` KB.
    QString picture(int kilobytes) {
        return home.write(QStringLiteral("pic.bmp"),
                          padded(encoded(filled(8, 8, Qt::red), "BMP"), qsizetype(kilobytes) * 1024));
    }
    const ScratchSettings settings; // before the window reads the limit
};

} // namespace

TEST_F(SizeGaugeTest, FollowsTheRunningTotalAndTheLimitTheUserChooses) {
    EXPECT_EQ(gauge().limit(), kDefaultSizeLimit);
    addSlides(QStringLiteral("A"));
    w->attachToCurrentSlide(QStringLiteral("imgPath"), picture(95));
    ctl<QAction>(gauge(), "mnu_limit100")->trigger();
    EXPECT_EQ(readSizeLimitSetting(), 100 * 1024);
    EXPECT_EQ(gauge().level(), GaugeLevel::Near);
    EXPECT_EQ(gauge().toolTip(), QStringLiteral("95 KB of 100 KB"));

    // A file grown outside the program counts once its slide is shown again.
    picture(110);
    EXPECT_EQ(gauge().level(), GaugeLevel::Near);
    w->lstSlide_ItemClick();
    EXPECT_EQ(gauge().level(), GaugeLevel::Over);
    EXPECT_EQ(ctl<QLabel>(w, "lblSize")->text(),
              QStringLiteral("I26 : %1bytes").arg(w->message().getTotalSize({}, {}, {})));

    // Exporting over the limit asks first; only Yes goes on to the subject prompt.
    ctl<QPushButton>(w, "createCmd")->click();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("P%1").arg(sizetext::kPromptExportOverLimit)});
    EXPECT_EQ(fake.dialogs.modalRuns, 0);
    fake.dialogs.answers.push_back(Answer::Yes);
    w->mnu_exportMms_Click();
    EXPECT_EQ(fake.dialogs.modalRuns, 1);

    // A custom limit, asked for in a window of its own, is kept for the next start.
    fake.dialogs.modalHooks.push_back([](QDialog& dialog) {
        ctl<QSpinBox>(dialog, "txtLimit")->setValue(500);
        dialog.accept();
    });
    ctl<QAction>(gauge(), "mnu_limitCustom")->trigger();
    EXPECT_EQ(gauge().limit(), 500 * 1024);
    EXPECT_EQ(gauge().level(), GaugeLevel::Normal);
    start();
    EXPECT_EQ(gauge().limit(), 500 * 1024);
}
