#pragma once

#include <QString>

class QWidget;

namespace mms {

class Dialogs;
class Localisation;

// The folder chooser of the picture and sound panels: owned by `parent`'s window, titled with
// interface text 62, opened at startPath (prepare it with browseStartPath). Returns the chosen
// folder, or an empty string when the user cancelled or the choice is not an existing folder.
QString browseFolder(Dialogs& dialogs, const Localisation& texts, QWidget* parent, const QString& startPath);

} // namespace mms
