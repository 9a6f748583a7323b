#include "common/localisation.h"
#include "support/controls.h"
#include "composer/widgets/frmmmsmain.h"
#include "support/fakeplatform.h"
#include "support/tempdir.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QToolButton>
#include <gtest/gtest.h>

using namespace mms;
using mms::test::ctl;

// A smoke start of the real window with the shipped English texts, a library and a filled slide.
// With MMS_SCREENSHOT set to a file name the window is saved there as a PNG, to look at.
TEST(ComposerScreenshot, TheFilledWindowRendersWithRealTexts) {
    test::TempDir home;
    test::FakePlatform fake;
    Localisation loc;
    frmMMSMain::Options options;
    options.appFolder = home.path();
    options.languageFolder = QStringLiteral(MMS_BIN_DIR);
    options.languageCode = QStringLiteral("en");
    QImage picture(320, 240, QImage::Format_RGB32);
    picture.fill(QColor(0x42, 0x85, 0xf4));
    const QString path = home.write(QStringLiteral("UserData/Picture/beach.jpg"), {});
    picture.save(path);
    const QString tune = home.write(QStringLiteral("UserData/Sound/party.mid"), "MThd");

    frmMMSMain w(fake.platform, loc, options);
    const Status started = w.Form_Load();
    ASSERT_TRUE(started.isOk()) << started.message().toStdString();
    ctl<QToolButton>(w, "addCmd")->click();
    w.updateCurrentSlide(QStringLiteral("imgPath"), path);
    w.updateCurrentSlide(QStringLiteral("soundPath"), tune);
    w.txtText_Click();
    ctl<QPlainTextEdit>(w, "txtText")->setPlainText(QStringLiteral("Happy birthday, Anna!"));
    w.lstSlide_ItemClick();

    w.show();
    QElapsedTimer settle; // the library panel fills in the background
    settle.start();
    while (settle.elapsed() < 500)
        QApplication::processEvents();
    const QImage shot = w.grab().toImage();
    EXPECT_GE(shot.width(), 900);
    if (const QString target = qEnvironmentVariable("MMS_SCREENSHOT"); !target.isEmpty()) shot.save(target);
    w.Form_Unload();
}
