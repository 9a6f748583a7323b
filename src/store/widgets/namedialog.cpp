#include "store/widgets/namedialog.h"

#include "common/localisation.h"
#include "common/storetexts.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace mms {

bool removeCloseCommand(QWidget& dialog) {
    dialog.setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    return !(dialog.windowFlags() & Qt::WindowCloseButtonHint);
}

MessageNameDialog::MessageNameDialog(QWidget* parent, const Localisation& texts, MessageSink& sink,
                                     const MessageStore& store, MessageState& state, Captions captions,
                                     bool dropSpaces)
    : QDialog(parent), txtName(new QLineEdit(this)), lstFile(new QTreeWidget(this)), Label1(new QLabel(this)),
      cmdCancel(new QPushButton(this)), texts_(texts), sink_(sink), store_(store), state_(state),
      action_(new QPushButton(this)), dropSpaces_(dropSpaces) {
    state_.isCancel = false;
    for (const auto& [control, name] : {std::pair<QObject*, const char*>{lstFile, "lstFile"},
                                        {txtName, "txtName"},
                                        {Label1, "Label1"},
                                        {cmdCancel, "cmdCancel"}})
        control->setObjectName(QLatin1String(name));
    removeCloseCommand(*this);
    setModal(true);

    setWindowTitle(texts_.getMCrInterfaceStr(captions.window));
    action_->setText(texts_.getMCrInterfaceStr(captions.action));
    cmdCancel->setText(texts_.getMCrInterfaceStr(storetext::kCancelName));
    Label1->setText(texts_.getMCrInterfaceStr(storetext::kNameLabel));
    Label1->setBuddy(txtName);
    lstFile->setColumnCount(2);
    lstFile->setHeaderLabels({texts_.getMCrInterfaceStr(storetext::kNameColumn),
                              texts_.getMCrInterfaceStr(storetext::kDateColumn)});
    lstFile->setRootIsDecorated(false);
    lstFile->setSelectionMode(QAbstractItemView::SingleSelection);
    lstFile->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    lstFile->header()->setStretchLastSection(false);
    lstFile->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);

    action_->setDefault(true);
    cmdCancel->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(action_);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lstFile);
    layout->addWidget(Label1);
    layout->addWidget(txtName);
    layout->addLayout(buttons);
    resize(420, 320);

    fillList();
    // Nothing to act on until a name is there.
    action_->setEnabled(!txtName->text().isEmpty());
    connect(txtName, &QLineEdit::textChanged, this,
            [this](const QString& text) { action_->setEnabled(!text.isEmpty()); });
    const auto take = [this](QTreeWidgetItem* item) {
        if (item && lstFile->topLevelItemCount() > 0) txtName->setText(item->text(0));
    };
    connect(lstFile, &QTreeWidget::itemClicked, this, take);
    connect(lstFile, &QTreeWidget::itemActivated, this, take);
    connect(cmdCancel, &QPushButton::clicked, this, &MessageNameDialog::reject);
    txtName->installEventFilter(this);
    txtName->setFocus();
}

void MessageNameDialog::fillList() {
    lstFile->clear();
    const QLocale locale = QLocale::system();
    for (const StoredMessageInfo& info : store_.list()) {
        auto* row = new QTreeWidgetItem(lstFile);
        row->setText(0, info.name);
        row->setText(1, locale.toString(info.indexModified, QLocale::ShortFormat));
    }
}

bool MessageNameDialog::eventFilter(QObject* watched, QEvent* event) {
    if (dropSpaces_ && watched == txtName && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->text() == QLatin1String(" "))
        return true;
    return QDialog::eventFilter(watched, event);
}

void MessageNameDialog::reject() {
    state_.isCancel = true;
    QDialog::reject();
}

void MessageNameDialog::showError(int number) const {
    sink_.show(
        Message{texts_.getMCrErrStr(number), applicationTitle(), Buttons::Ok, Icon::Warning, Answer::Ok});
}

void MessageNameDialog::acceptExisting(int currentError) {
    const QString name = txtName->text();
    if (!name.isEmpty() && name == state_.currentFile) return showError(currentError);
    if (name.isEmpty()) return showError(storetext::kErrNoName);
    if (!isValidMessageName(name)) return showError(storetext::kErrBadName);
    if (!store_.exists(name)) return showError(storetext::kErrNoSuchMessage);
    state_.currentFile = name;
    accept();
}

} // namespace mms
