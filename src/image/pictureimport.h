#pragma once

#include "common/filesize.h"
#include "common/imagetexts.h"
#include "image/jpegwriter.h"
#include "image/picturecheck.h"
#include "model/clockrandom.h"
#include "model/status.h"

#include <QDateTime>
#include <QString>

namespace mms {

// Year, month, day, hour and minute as decimal numbers in a row, without zero padding:
// 7 March 2024 09:05 gives "20243795".
QString conversionStamp(const QDateTime& when);
// A whole number from 10000 to 99999 drawn from the random source.
int conversionNumber(RandomSource& random);
// appFolder + "/Temp/tmpJPG/" + stamp + number + suffix.
QString convertedPicturePath(const QString& appFolder, const QDateTime& when, int number,
                             QStringView suffix = u".jpg");

// What the picture command does with the selected file.
struct PictureImport {
    // Attach: the path to put on the current slide (the source itself or its JPEG conversion).
    QString picturePath;
    // Otherwise the error text to show and what replaces its "%1"; the slide stays as it is.
    int errorNumber = -1;
    QString detail;
    // The JPEG written to the scratch folder, if one was written (it stays there even when refused),
    // and its length.
    QString convertedPath;
    qint64 convertedBytes = 0;
    // Why the picture itself cannot be used, when that is the refusal.
    PictureTrouble trouble;

    bool attach() const { return errorNumber < 0; }
    // Refused as cut short: the user may still take it (importPicture with takeDamaged).
    bool canTakeDamaged() const { return trouble.usableAnyway(); }
    // A GIF refused for its size whose header is a GIF's: shrinking it (shrinkGif) may help.
    bool canShrinkGif() const { return errorNumber == imagetext::kErrPictureTooLarge && gifTooLarge; }
    bool gifTooLarge = false;
    // Refused because even its JPEG conversion is too large: shrinking it may help.
    bool canShrink() const {
        return errorNumber == imagetext::kErrPictureTooLarge && !convertedPath.isEmpty();
    }
    // The message to show, from the localised error text: "%1" is replaced by the detail, "%2" and
    // "%3" by the width and height of a picture too large to decode.
    QString errorText(const QString& localisedText) const;
};

// A fresh name for a conversion in the scratch folder (made when missing): drawn again while it names
// an existing file, so an earlier conversion still on a slide is never overwritten. Fails, saying why,
// when the folder cannot be made or no free name turns up.
Status freshConversionPath(const QString& appFolder, const Clock& clock, RandomSource& random, QString& path,
                           QStringView suffix = u".jpg");

// Decides the picture command for sourcePath (library folder + "/" + selected file name).
// A file under the limit, or any file while the panel list is empty, is used as it is. A larger GIF
// is refused whatever its contents; any other larger picture is re-encoded as JPEG at the quality
// (the standard 35 unless chosen otherwise) into the scratch folder and used when that JPEG is under
// the limit. Before either, a picture that does not decode is refused with the reason (trouble); one
// cut short only when !takeDamaged.
PictureImport importPicture(const QString& sourcePath, bool listHasItems, const QString& appFolder,
                            const Clock& clock, RandomSource& random, bool takeDamaged = false,
                            int quality = kJpegQuality);

} // namespace mms
