#pragma once

#include "common/mediakind.h"

#include <QString>

namespace mms {

// The name a slide's picture or sound has inside a package. The package writer names the members
// with these, and the MMS encoder looks the parts up with them, so the two always agree.
struct PictureMember {
    QString name;
    bool video = false;
};

// A 3GP clip becomes "vdo" + N + ".3gp", any other picture "pic" + N + "." + its lower-cased
// extension (a .png or a file without extension is still packaged rather than dropped), so that
// opening the message, which looks for "pic" + N + ".*", finds it again. An extension that is not
// plain letters and digits (or none at all) is replaced by "bin". A member name maps to itself.
PictureMember pictureMember(const QString& path, int n);

// "sound" + N + ".mid" for a MIDI file, "sound" + N + ".amr" for every other sound.
QString soundMember(const QString& path, int n);

// The MIME type of a package member, by its extension as the members are named; a picture of any
// other extension is typed by its first bytes (GIF, JPEG, PNG or BMP), else application/octet-stream.
QString memberMimeType(const QString& path);
// The MIME type of a kind of media; null for Other.
const char* mimeTypeOf(MediaKind kind);

// The picture kind of the file from its first bytes, application/octet-stream when it is none.
const char* sniffedPictureType(const QString& path);

} // namespace mms
