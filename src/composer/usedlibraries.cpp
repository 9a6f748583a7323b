#include "composer/usedlibraries.h"

#include "common/desktoptexts.h"
#include "common/localisation.h"
#include "image/jpegwriter.h"
#include "package/tararchive.h"
#include "sound/amrdecoder.h"
#include "sound/audiodecoder.h"
#include "sound/fluidsynthengine.h"

namespace mms {

QList<LibraryInfo> usedLibraries(const Localisation& loc) {
    const QString soundFont = loc.getMCrInterfaceStr(desktoptext::kAboutSoundFont)
                                  .replace(QStringLiteral("%1"), QStringLiteral("FluidR3_GM"));
    return {
        {QStringLiteral("Qt"), QString::fromLatin1(qVersion()), QStringLiteral("GNU LGPL 3.0")},
        tarLibrary(),
        jpegLibrary(),
        synthLibrary(),
        amrLibrary(),
        mediaLibrary(),
        {soundFont, QString(), QStringLiteral("MIT")},
    };
}

} // namespace mms
