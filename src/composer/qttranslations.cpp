#include "composer/qttranslations.h"

#include "common/localisation.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace mms {

QtTranslations::QtTranslations() : translator_(std::make_unique<QTranslator>()) {}

QtTranslations::~QtTranslations() {
    if (installed_) QCoreApplication::removeTranslator(translator_.get());
}

bool QtTranslations::install(int langIndex) {
    if (installed_) QCoreApplication::removeTranslator(translator_.get());
    installed_ = false;
    const QString locale = qtLocaleName(langIndex);
    if (locale.isEmpty()) return false;
    // "qt_<locale>" gathers the catalogues of every Qt module the program uses.
    if (!translator_->load(QStringLiteral("qt_") + locale,
                           QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        return false;
    installed_ = QCoreApplication::installTranslator(translator_.get());
    return installed_;
}

} // namespace mms
