#pragma once

#include <QString>
#include <memory>

class QTranslator;

namespace mms {

// Qt's own texts (file and folder choosers, the text boxes' context menus, shortcut names) in the
// interface language; the program's own texts come from its language files.

// Holds the one installed translation of Qt's texts and removes it when destroyed.
class QtTranslations {
public:
    QtTranslations();
    ~QtTranslations();
    QtTranslations(const QtTranslations&) = delete;
    QtTranslations& operator=(const QtTranslations&) = delete;

    // Installs the translation for `langIndex` from Qt's translations folder, replacing the one
    // installed before. False when the language needs none or none is installed on this system.
    bool install(int langIndex);

private:
    std::unique_ptr<QTranslator> translator_;
    bool installed_ = false;
};

} // namespace mms
