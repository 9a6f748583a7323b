#pragma once

#include "common/widgets/platform.h"

#include <QPointer>
#include <QWidget>

namespace mms {

class Localisation;

// The real dialogs: Qt message boxes, file and folder choosers, and modal windows run with exec().
// Button texts come from the language (interface 66 to 69) once one is loaded; before that, and
// for a language that lacks them, Qt's own texts are used.
class QtDialogs final : public Dialogs {
public:
    QtDialogs() = default;

    void setLocalisation(const Localisation* localisation) { localisation_ = localisation; }
    // The window that owns message boxes (the composer once it exists).
    void setParentWidget(QWidget* parent) { parent_ = parent; }

    Answer show(const Message& message) override;
    QString chooseFolder(QWidget* parent, const QString& title, const QString& startPath) override;
    QString chooseSaveFile(QWidget* parent, const QString& title, const QString& initDir,
                           const QString& filter) override;
    void runModal(QDialog& dialog) override;

private:
    QString buttonText(int index) const;

    const Localisation* localisation_ = nullptr;
    QPointer<QWidget> parent_;
};

} // namespace mms
