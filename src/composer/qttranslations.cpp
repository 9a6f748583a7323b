#include "composer/qttranslations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace mms {

QString qtLocaleName(int langIndex) {
    switch (langIndex) {
    case 1:
        return QStringLiteral("zh_CN");
    case 2:
        return QStringLiteral("zh_TW");
    case 3:
        return QStringLiteral("fr");
    case 4:
        return QStringLiteral("de");
    case 5:
        return QStringLiteral("it");
    case 6:
        return QStringLiteral("es");
    case 7:
        return QStringLiteral("ru");
    default:
        return QString();
    }
}

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
