#pragma once

#include <QString>

namespace mms {

// A library the program is built on, as the About box lists it. The version is the one in use where
// the library can tell, else the one built against; empty when neither is known.
struct LibraryInfo {
    QString name;
    QString version;
    QString licence;
};

} // namespace mms
