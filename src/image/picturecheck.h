#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

namespace mms {

// Why a file cannot be used as a picture, found by reading it whole: what a person can act on,
// rather than a decoder's words.
struct PictureTrouble {
    enum class Kind {
        None,
        Unreadable, // the file cannot be opened or read; detail says why
        Empty,
        Text,       // not a picture: the bytes are text
        NotPicture, // not a picture of a kind the program reads
        Damaged,    // a picture header, but the picture cannot be decoded
        CutShort,   // a JPEG the decoder had to fill in: it can still be used if the user wants
        TooLarge,   // more pixels than the program will decode; size holds them
    };
    Kind kind = Kind::None;
    QSize size;
    QString detail;

    bool ok() const { return kind == Kind::None; }
    bool usableAnyway() const { return kind == Kind::CutShort; }
};

// Checks that the bytes decode as a picture (a JPEG at its cheapest scale: every byte is still read).
PictureTrouble checkPictureBytes(const QByteArray& bytes);
// The same for a file.
PictureTrouble checkPictureFile(const QString& path);

// The reason in English, for mmsc: "is cut short or damaged", "is too large to decode (25200 × 33300
// pixels)"... after the file's name.
QString plainReason(const PictureTrouble& trouble);
// "'name' " + plainReason.
QString describeTrouble(const QString& path, const PictureTrouble& trouble);

} // namespace mms
