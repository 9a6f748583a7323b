#pragma once

#include "common/widgets/platform.h"

#include <QString>
#include <QtGlobal>

class QWidget;

namespace mms {

class CSlide;
class Localisation;

// What the composer window offers to the panels of its tabs (pictures, sounds) and to the windows
// they open (the crop window). Everything that changes a slide goes through updateCurrentSlide, so
// the strip, the thumbnails, the counters and the modified flag follow by themselves.
//
// A typical attach, as the picture and sound panels do it:
//     if (host.IsEmpty()) host.addCmd_Click();          // a first slide when there is none
//     host.updateCurrentSlide(QStringLiteral("soundPath"), path);
//     host.lstSlide_ItemClick();                        // show the slide again (stops a preview)
//     host.setModified(true);
class ComposerHost {
public:
    // The language: every caption and message by number.
    virtual const Localisation& localisation() const = 0;
    // The seams: message boxes and choosers, modal windows, clock, random source, preview device.
    virtual Platform& platform() = 0;
    // The window to own message boxes and modal windows.
    virtual QWidget* hostWindow() = 0;
    // The application folder below which the workspace lies (no trailing separator).
    virtual QString appFolder() const = 0;

    // The message being edited (read only: change it through the operations below).
    virtual const CSlide& message() const = 0;
    // The message has no slide.
    virtual bool IsEmpty() const = 0;
    // 1-based position of the strip's selected item, 0 when the strip is empty.
    virtual qint16 selectedSlide() const = 0;

    // The Add command: a new 3-second slide after the selected one, selected and shown.
    virtual void addCmd_Click() = 0;
    // Writes into the selected slide: field "imgPath" or "soundPath" with the new path (also
    // "slideDur" and "text", which read the slide panel's boxes). Refreshes the thumbnail, the
    // strip label and the counters and marks the message modified; an error (a picture that cannot
    // be loaded) ends it silently.
    virtual void updateCurrentSlide(const QString& field, const QString& value) = 0;
    // Shows the selected slide in the slide panel again; stops a running preview.
    virtual void lstSlide_ItemClick() = 0;
    // Makes strip item `position` the selected and highlighted item (without showing it).
    virtual void selectSlide(qint16 position) = 0;
    virtual void setModified(bool modified) = 0;

    // Sends one command string to the preview device ("stop music", "close music").
    virtual int sendPreviewCommand(const QString& command) = 0;

protected:
    ~ComposerHost() = default;
};

} // namespace mms
