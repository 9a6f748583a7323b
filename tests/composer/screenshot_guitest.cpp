#include "composer/localisation.h"
#include "composer/widgets/frmmmsmain.h"
#include "support/fakeplatform.h"
#include "support/tempdir.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QToolButton>
#include <gtest/gtest.h>

using namespace mms;

namespace {

QString drawPicture(const test::TempDir& dir, const QString& name, QColor sky, QColor ground) {
    QImage image(320, 240, QImage::Format_RGB32);
    image.fill(sky);
    QPainter(&image).fillRect(0, 160, 320, 80, ground);
    const QString path = dir.write(QStringLiteral("UserData/Picture/") + name, {}); // makes the folder
    image.save(path);
    return path;
}

// The real window with the English texts, a library in place before start-up and a small message.
// With MMS_SCREENSHOT set to a file name the window is saved there as a PNG, to look at.
TEST(ComposerScreenshot, TheFilledWindowRendersWithRealTexts) {
    test::TempDir home;
    test::FakePlatform fake;
    Localisation loc;
    frmMMSMain::Options options;
    options.appFolder = home.path();
    options.languageFolder = QStringLiteral(MMS_BIN_DIR);
    options.languageCode = QStringLiteral("en");
    const QString pictures[] = {
        drawPicture(home, QStringLiteral("beach.jpg"), QColor(0x42, 0x85, 0xf4), QColor(0xf6, 0xd7, 0x8b)),
        drawPicture(home, QStringLiteral("hills.jpg"), QColor(0x8a, 0xb4, 0xf8), QColor(0x34, 0xa8, 0x53)),
        drawPicture(home, QStringLiteral("dusk.jpg"), QColor(0xa1, 0x42, 0xf4), QColor(0x20, 0x21, 0x24)),
    };
    const QString tune = home.write(QStringLiteral("UserData/Sound/party.mid"), "MThd");
    home.write(QStringLiteral("UserData/Sound/voice.amr"), "#!AMR\n");

    frmMMSMain w(fake.platform, loc, options);
    const Status started = w.Form_Load();
    ASSERT_TRUE(started.isOk()) << started.message().toStdString();
    const char* texts[] = {"Happy birthday, Anna!", "See you at the lake on Saturday", "Bring a torch"};
    for (int i = 0; i < 3; ++i) {
        w.addCmd->click();
        w.updateCurrentSlide(QStringLiteral("imgPath"), pictures[i]);
        w.txtText_Click();
        w.txtText->setPlainText(QString::fromUtf8(texts[i]));
    }
    w.selectSlide(2);
    w.lstSlide_ItemClick();
    w.updateCurrentSlide(QStringLiteral("soundPath"), tune);
    w.lstSlide_ItemClick();

    w.show();
    // The library panels may fill in the background; give them a moment.
    QElapsedTimer settle;
    settle.start();
    while (settle.elapsed() < 500)
        QApplication::processEvents();
    const QImage shot = w.grab().toImage();
    ASSERT_FALSE(shot.isNull());
    EXPECT_GE(shot.width(), 900);
    if (const QString target = qEnvironmentVariable("MMS_SCREENSHOT"); !target.isEmpty()) shot.save(target);
    w.Form_Unload();
}

} // namespace
