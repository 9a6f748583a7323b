#include "common/widgets/qtdialogs.h"

#include "common/commontexts.h"
#include "common/localisation.h"

#include <QDialog>
#include <QFileDialog>
#include <QIcon>
#include <QMessageBox>
#include <QPushButton>
#include <stdexcept>

namespace mms {

namespace {

QMessageBox::Icon toQt(Icon icon) {
    switch (icon) {
    case Icon::Information:
        return QMessageBox::Information;
    case Icon::Question:
        return QMessageBox::Question;
    case Icon::Warning:
        return QMessageBox::Warning;
    case Icon::Critical:
        return QMessageBox::Critical;
    case Icon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

} // namespace

QString QtDialogs::buttonText(int index) const {
    if (!localisation_) return QString();
    try {
        return localisation_->getMCrInterfaceStr(index);
    } catch (const std::out_of_range&) {
        return QString();
    }
}

Answer QtDialogs::show(const Message& message) {
    QMessageBox box(toQt(message.icon), message.title, message.text, QMessageBox::NoButton, parent_);
    struct Choice {
        Answer answer;
        QMessageBox::StandardButton standard;
        int textIndex;
    };
    std::vector<Choice> choices;
    switch (message.buttons) {
    case Buttons::Ok:
        choices = {{Answer::Ok, QMessageBox::Ok, commontext::kOk}};
        break;
    case Buttons::YesNo:
        choices = {{Answer::Yes, QMessageBox::Yes, commontext::kYes},
                   {Answer::No, QMessageBox::No, commontext::kNo}};
        break;
    case Buttons::YesNoCancel:
        choices = {{Answer::Yes, QMessageBox::Yes, commontext::kYes},
                   {Answer::No, QMessageBox::No, commontext::kNo},
                   {Answer::Cancel, QMessageBox::Cancel, commontext::kCancel}};
        break;
    }
    for (const Choice& choice : choices) {
        QPushButton* button = box.addButton(choice.standard);
        button->setIcon(QIcon());
        if (const QString text = buttonText(choice.textIndex); !text.isEmpty()) button->setText(text);
        if (choice.answer == message.defaultAnswer) box.setDefaultButton(button);
    }
    // Closing a question box without an answer counts as its safest one.
    const Answer escape = message.buttons == Buttons::YesNoCancel ? Answer::Cancel
                          : message.buttons == Buttons::YesNo     ? Answer::No
                                                                  : Answer::Ok;
    for (const Choice& choice : choices) {
        if (choice.answer == escape) box.setEscapeButton(box.button(choice.standard));
    }
    box.exec();
    const auto pressed = box.standardButton(box.clickedButton());
    for (const Choice& choice : choices) {
        if (choice.standard == pressed) return choice.answer;
    }
    return escape;
}

QString QtDialogs::chooseFolder(QWidget* parent, const QString& title, const QString& startPath) {
    return QFileDialog::getExistingDirectory(parent ? parent : parent_.data(), title, startPath);
}

QString QtDialogs::chooseSaveFile(QWidget* parent, const QString& title, const QString& initDir,
                                  const QString& filter) {
    return QFileDialog::getSaveFileName(parent ? parent : parent_.data(), title, initDir, filter);
}

void QtDialogs::runModal(QDialog& dialog) {
    dialog.exec();
}

} // namespace mms
