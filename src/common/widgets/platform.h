#pragma once

#include "model/clockrandom.h"
#include "model/messagesink.h"

#include <QString>

class QDialog;
class QWidget;

namespace mms {

class MultimediaDevice;

// Every dialog the user meets. The real implementation uses Qt; tests answer through a scripted one
// and never block on a modal window.
class Dialogs : public MessageSink {
public:
    // The folder chooser; empty when cancelled or when the choice has no file-system path.
    virtual QString chooseFolder(QWidget* parent, const QString& title, const QString& startPath) = 0;
    // The save-file chooser; empty when cancelled.
    virtual QString chooseSaveFile(QWidget* parent, const QString& title, const QString& initDir,
                                   const QString& filter) = 0;
    // Shows one of our own modal windows (name dialogs, subject prompt, crop window) and returns when it
    // has closed. Tests drive the window's controls here instead of running an event loop.
    virtual void runModal(QDialog& dialog) = 0;
};

// The seams of the composer, handed to every window it opens.
struct Platform {
    Dialogs& dialogs;
    Clock& clock;
    RandomSource& random;
    MultimediaDevice& device;
};

} // namespace mms
