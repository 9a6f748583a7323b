#include "send/widgets/frmmmssent.h"

#include "common/commontexts.h"
#include "common/localisation.h"
#include "common/sendtexts.h"
#include "model/messagesink.h"
#include "send/messagesender.h"
#include "send/sendwording.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLocale>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace mms {

frmMMSSent::frmMMSSent(const Localisation& loc, MessageSink& sink, MessageSender& sender, QWidget* parent)
    : QDialog(parent), lstSent(new QTreeWidget(this)), cmdSendAgain(new QPushButton(this)),
      cmdRemove(new QPushButton(this)), cmdClose(new QPushButton(this)), loc_(loc), sink_(sink),
      sender_(sender) {
    setObjectName(QStringLiteral("frmMMSSent"));
    lstSent->setObjectName(QStringLiteral("lstSent"));
    cmdSendAgain->setObjectName(QStringLiteral("cmdSendAgain"));
    cmdRemove->setObjectName(QStringLiteral("cmdRemove"));
    cmdClose->setObjectName(QStringLiteral("cmdClose"));
    setModal(true);

    lstSent->setRootIsDecorated(false);
    lstSent->setUniformRowHeights(true);
    lstSent->setAllColumnsShowFocus(true);
    lstSent->setColumnCount(4);
    lstSent->header()->setStretchLastSection(true);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdSendAgain);
    buttons->addWidget(cmdRemove);
    buttons->addStretch();
    buttons->addWidget(cmdClose);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lstSent);
    layout->addLayout(buttons);
    resize(760, 360);

    connect(lstSent, &QTreeWidget::currentItemChanged, this, &frmMMSSent::updateButtons);
    connect(cmdSendAgain, &QPushButton::clicked, this, &frmMMSSent::cmdSendAgain_Click);
    connect(cmdRemove, &QPushButton::clicked, this, &frmMMSSent::cmdRemove_Click);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::accept);
    // Every change of the log (a status from the daemon, a hand-off, a removal) redraws the list.
    connect(&sender_, &MessageSender::logChanged, this, &frmMMSSent::fill);
    connect(&sender_, &MessageSender::refused, this, [this](const QString& reason) {
        if (!std::exchange(sendingAgain_, false)) return;
        showError(loc_.getMCrErrStr(sendtext::kErrNotSent).replace(QStringLiteral("%1"), reason));
    });
    connect(&sender_, &MessageSender::unavailable, this, [this](const QString&, bool running) {
        if (std::exchange(sendingAgain_, false)) showError(unavailableText(loc_, running));
    });
    connect(&sender_, &MessageSender::handedOver, this, [this] { sendingAgain_ = false; });

    applyLanguage();
    fill();
    // Another program may have sent meanwhile, and the daemon may know more than the log.
    QTimer::singleShot(0, this, [this] {
        sender_.refresh();
        fill();
    });
}

void frmMMSSent::applyLanguage() {
    using namespace sendtext;
    const auto I = [this](int n) { return loc_.getMCrInterfaceStr(n); };
    setWindowTitle(I(kMenuSent));
    lstSent->setHeaderLabels({I(kColumnMessage), I(kColumnWhen), I(kColumnRecipients), I(kColumnStatus)});
    cmdSendAgain->setText(I(kSendAgain));
    cmdRemove->setText(I(kRemoveEntry));
    cmdClose->setText(I(kClose));
}

void frmMMSSent::fill() {
    const int keep = selectedEntry();
    lstSent->clear();
    const QLocale locale;
    for (const SentEntry& entry : sender_.log().entries()) {
        auto* item = new QTreeWidgetItem(lstSent);
        item->setText(0, entry.message);
        item->setText(1, locale.toString(entry.handedOver.toLocalTime(), QLocale::ShortFormat));
        item->setText(2, entry.recipients.join(QStringLiteral(", ")));
        item->setText(3, statusText(loc_, entry));
        item->setToolTip(3, item->text(3));
    }
    for (int column = 0; column < 3; ++column)
        lstSent->resizeColumnToContents(column);
    const int count = lstSent->topLevelItemCount();
    if (count > 0)
        lstSent->setCurrentItem(lstSent->topLevelItem(keep >= 0 && keep < count ? keep : count - 1));
    updateButtons();
}

int frmMMSSent::selectedEntry() const {
    QTreeWidgetItem* item = lstSent->currentItem();
    return item ? lstSent->indexOfTopLevelItem(item) : -1;
}

void frmMMSSent::updateButtons() {
    const int index = selectedEntry();
    const auto& entries = sender_.log().entries();
    const bool valid = index >= 0 && std::size_t(index) < entries.size();
    cmdRemove->setEnabled(valid);
    cmdSendAgain->setEnabled(valid && entries[std::size_t(index)].status == QLatin1String("failed"));
}

void frmMMSSent::cmdSendAgain_Click() {
    const int index = selectedEntry();
    if (index < 0 || !cmdSendAgain->isEnabled()) return;
    sendingAgain_ = true;
    sender_.sendAgain(std::size_t(index));
}

void frmMMSSent::cmdRemove_Click() {
    const int index = selectedEntry();
    if (index < 0) return;
    const QString name = sender_.log().entries()[std::size_t(index)].message;
    const QString question =
        loc_.getMCrPromptStr(sendtext::kPromptRemoveSent).replace(QStringLiteral("%1"), name);
    if (sink_.show(mms::Message{question, loc_.getMCrInterfaceStr(commontext::kAppTitle), Buttons::YesNo,
                                Icon::Question, Answer::No}) != Answer::Yes)
        return;
    sender_.remove(std::size_t(index));
}

void frmMMSSent::showError(const QString& text) {
    sink_.show(
        mms::Message{text, loc_.getMCrInterfaceStr(commontext::kAppTitle), Buttons::Ok, Icon::Warning});
}

} // namespace mms
