#pragma once

#include <QString>
#include <QStringList>

namespace mms {

// Gives the captions of one menu (or of the menu bar) distinct mnemonics, whatever the language.
// A caption that already marks one with "&" keeps it. Otherwise the mark goes before its first
// letter no other caption of the menu uses; in a caption written without such letters (Chinese),
// "(&X)" is appended, X being the caption's letter in `keys` (one A-Z letter per caption) or, when
// that is taken, the first free letter. Captions without any letter are left alone.
QStringList withMnemonics(const QStringList& captions, const QString& keys);

} // namespace mms
