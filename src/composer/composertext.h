#pragma once

#include <QString>
#include <QtGlobal>
#include <optional>

namespace mms {

// Small text rules of the composer window, kept free of widgets so they can be checked alone.

// Cuts every occurrence of `find` out of `text`. After a cut the search resumes len(find)
// characters beyond it, so an occurrence that begins within them survives: "3s" minus "s" is
// "3", and "ss" minus "s" is "s".
QString removeTxtOccurrence(const QString& text, const QString& find);

// The label of strip item `position`: the position, ".", 13 spaces, the duration and "s".
QString stripLabel(int position, const QString& duration);

// Whether a duration text counts as a number. Durations are whole seconds, so only decimal
// digits count (blanks around them are allowed); "1.5", "-3" or "" do not.
bool isDurationNumeric(const QString& text);
// The seconds of a numeric duration text; nothing when it does not fit a 16-bit signed number.
std::optional<qint16> durationSeconds(const QString& text);

// The sound label of slide `position`: a sound stored with a saved message ("...sound<N>.ext")
// is shown as "<message>-<file name>", any other sound by its file name.
QString soundLabelText(const QString& soundPath, int position, const QString& currentFile);

// Which move commands apply to the slide at `position` of `count`.
struct MoveCommands {
    bool towardsFront = false; // to the front, forward
    bool towardsBack = false;  // backward, to the back
};
MoveCommands moveCommandsFor(int position, int count);

} // namespace mms
