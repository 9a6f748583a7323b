#pragma once

#include <QString>

namespace mms {

class ComposerHost;

// The folder chooser of the picture and sound panels: owned by the composer window, titled with
// interface text 62, opened at startPath (prepare it with browseStartPath). Returns the chosen
// folder, or an empty string when the user cancelled or the choice is not an existing folder.
QString browseFolder(ComposerHost& host, const QString& startPath);

} // namespace mms
