#include "composer/composerfixture.h"
#include "store/storefixture.h"
#include "store/widgets/frmmmsfiledelete.h"
#include "store/widgets/frmmmsfileopen.h"
#include "store/widgets/frmmmsfilesave.h"
#include "support/controls.h"
#include "support/recordingsink.h"

#include <QTreeWidget>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

class NameDialogsTest : public StoreFixture {
protected:
    void SetUp() override {
        texts.setTexts(numberedTexts());
        CSlide none;
        for (const QString& name : {u"zeta"_s, u"Alpha"_s, u"current"_s})
            ASSERT_TRUE(store.save(none, name, {}).isOk());
        ASSERT_TRUE(store.copyToWorkingCopy(u"zeta"_s).isOk());
        state.currentFile = u"current"_s;
        state.isCancel = true;
    }
    Localisation texts;
    RecordingSink sink;
    MessageState state;
};

TEST_F(NameDialogsTest, SaveDialogListsMessagesAndAsksBeforeReplacing) {
    frmMMSFileSave dialog(nullptr, texts, sink, store, state);
    EXPECT_FALSE(state.isCancel);
    EXPECT_FALSE(dialog.windowFlags() & Qt::WindowCloseButtonHint);
    auto* files = ctl<QTreeWidget>(dialog, "lstFile");
    QStringList rows;
    for (int i = 0; i < files->topLevelItemCount(); ++i)
        rows << files->topLevelItem(i)->text(0);
    EXPECT_EQ(rows, QStringList({u"Alpha"_s, u"current"_s, u"zeta"_s}));
    EXPECT_FALSE(files->topLevelItem(0)->text(1).isEmpty());

    // Spaces are dropped as they are typed; the button follows the box.
    auto* save = ctl<QPushButton>(dialog, "cmdSave");
    EXPECT_FALSE(save->isEnabled());
    type(dialog.txtName, u"n w"_s);
    EXPECT_EQ(dialog.txtName->text(), u"nw"_s);
    EXPECT_TRUE(save->isEnabled());
    dialog.txtName->setText(u"temp"_s);
    save->click();
    EXPECT_EQ(sink.texts(), QStringList{u"E22"_s});

    // An existing name: No stays in the dialog, Yes replaces.
    sink.shown.clear();
    emit files->itemClicked(files->topLevelItem(2), 0);
    sink.answers = {Answer::No, Answer::Yes};
    save->click();
    EXPECT_TRUE(state.currentFile == u"current"_s && dialog.result() == QDialog::Rejected);
    save->click();
    ASSERT_EQ(sink.shown.size(), 2u);
    EXPECT_TRUE(sink.shown[0].text == u"P9"_s && sink.shown[0].title == u"E15"_s);
    EXPECT_EQ(sink.shown[0].defaultAnswer, Answer::No);
    EXPECT_TRUE(state.isOverwrite && !state.isCancel);
    EXPECT_TRUE(state.currentFile == u"zeta"_s && dialog.result() == QDialog::Accepted);
}

TEST_F(NameDialogsTest, OpenAndDeleteRefuseInOrderAndEveryWayOutButTheActionCountsAsCancel) {
    frmMMSFileOpen open(nullptr, texts, sink, store, state);
    frmMMSFileDelete remove(nullptr, texts, sink, store, state);
    const auto refusal = [&](const QString& name, bool opening) {
        (opening ? open.txtName : remove.txtName)->setText(name);
        opening ? open.cmdOpen_Click() : remove.cmdDelete_Click();
        return sink.shown.empty() ? QString() : sink.shown.back().text;
    };
    const std::tuple<QString, const char*, const char*> cases[] = {{u"current"_s, "E14", "E11"},
                                                                   {QString(), "E12", "E12"},
                                                                   {u"temp"_s, "E22", "E22"},
                                                                   {u"Alpha "_s, "E13", "E13"}};
    for (const auto& [name, openError, deleteError] : cases) {
        EXPECT_EQ(refusal(name, true), QLatin1String(openError)) << name.toStdString();
        EXPECT_EQ(refusal(name, false), QLatin1String(deleteError)) << name.toStdString();
    }
    EXPECT_EQ(state.currentFile, u"current"_s);

    // Only the delete dialog lets a space through.
    type(open.txtName, u" "_s);
    type(remove.txtName, u" "_s);
    EXPECT_TRUE(open.txtName->text() == u"Alpha "_s && remove.txtName->text() == u"Alpha  "_s);

    const std::size_t shown = sink.shown.size();
    EXPECT_FALSE(state.isCancel);
    open.show();
    pressKey(&open, Qt::Key_Escape);
    EXPECT_TRUE(state.isCancel && !open.isVisible());
    state.isCancel = false;
    remove.show();
    remove.close();
    EXPECT_TRUE(state.isCancel && sink.shown.size() == shown);
    frmMMSFileSave save(nullptr, texts, sink, store, state);
    save.txtName->setText(u"x"_s);
    ctl<QPushButton>(save, "cmdCancel")->click();
    EXPECT_TRUE(state.isCancel);
    EXPECT_EQ(state.currentFile, u"current"_s);
}

} // namespace
