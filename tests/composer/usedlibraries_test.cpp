#include "common/desktoptexts.h"
#include "common/localisation.h"
#include "composer/usedlibraries.h"
#include "support/qtprint.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

TEST(UsedLibraries, EveryLibraryInOrderWithTheVersionItTellsAndItsLicence) {
    LanguageTexts texts;
    for (int n = 0; n <= desktoptext::kAboutSoundFont; ++n)
        texts.interface << u"-"_s;
    texts.interface[desktoptext::kAboutSoundFont] = u"Sound font %1"_s;
    Localisation loc;
    loc.setTexts(texts);

    const QList<LibraryInfo> libraries = usedLibraries(loc);
    QStringList names;
    for (const LibraryInfo& library : libraries) {
        names << library.name;
        EXPECT_FALSE(library.licence.isEmpty()) << library.name.toStdString();
    }
    EXPECT_EQ(names, (QStringList{u"Qt"_s, u"libarchive"_s, u"libjpeg-turbo"_s, u"FluidSynth"_s,
                                  u"opencore-amr"_s, u"Sound font FluidR3_GM"_s}));
    // Each library's version, whether asked at run time or recorded when the build was configured.
    const QRegularExpression version(u"^\\d+\\.\\d+(\\.\\d+)?$"_s);
    for (qsizetype i = 0; i + 1 < libraries.size(); ++i)
        EXPECT_TRUE(version.match(libraries[i].version).hasMatch())
            << libraries[i].name.toStdString() << " " << libraries[i].version.toStdString();
    EXPECT_TRUE(libraries.back().version.isEmpty());
}

} // namespace
