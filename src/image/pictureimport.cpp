#include "image/pictureimport.h"

#include "common/mediakind.h"
#include "common/workspace.h"
#include "image/imageprobe.h"
#include "image/jpegwriter.h"
#include "image/picturetexts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

namespace mms {

namespace {

// Draws for a free scratch name before giving up; a clash needs the same minute and number.
constexpr int kNameDraws = 100;

QString shown(const QString& path) {
    return QDir::toNativeSeparators(path);
}

PictureImport refused(int errorNumber, QString detail, QString convertedPath = QString()) {
    PictureImport result;
    result.errorNumber = errorNumber;
    result.detail = std::move(detail);
    result.convertedPath = std::move(convertedPath);
    return result;
}

PictureImport attached(QString path, QString convertedPath = QString()) {
    PictureImport result;
    result.picturePath = std::move(path);
    result.convertedPath = std::move(convertedPath);
    return result;
}

} // namespace

QString conversionStamp(const QDateTime& when) {
    const QDate d = when.date();
    const QTime t = when.time();
    return QString::number(d.year()) + QString::number(d.month()) + QString::number(d.day()) +
           QString::number(t.hour()) + QString::number(t.minute());
}

int conversionNumber(RandomSource& random) {
    const int drawn = int(std::floor(random.uniform() * 90000.0)) + 10000;
    return std::clamp(drawn, 10000, 99999); // guards a source that strays outside [0, 1)
}

QString convertedPicturePath(const QString& appFolder, const QDateTime& when, int number,
                             QStringView suffix) {
    return workspace::tmpJpg(appFolder) + QLatin1Char('/') + conversionStamp(when) + QString::number(number) +
           suffix.toString();
}

QString PictureImport::errorText(const QString& localisedText) const {
    QString text = localisedText;
    if (trouble.kind == PictureTrouble::Kind::TooLarge)
        text.replace(QLatin1String("%2"), QString::number(trouble.size.width()))
            .replace(QLatin1String("%3"), QString::number(trouble.size.height()));
    return text.replace(QLatin1String("%1"), detail);
}

int picturetext::errorNumber(PictureTrouble::Kind kind) {
    switch (kind) {
    case PictureTrouble::Kind::Empty:
        return kErrEmptyFile;
    case PictureTrouble::Kind::Text:
        return kErrTextFile;
    case PictureTrouble::Kind::NotPicture:
        return kErrNotPicture;
    case PictureTrouble::Kind::Damaged:
    case PictureTrouble::Kind::CutShort:
        return kErrDamaged;
    case PictureTrouble::Kind::TooLarge:
        return kErrTooLargeToDecode;
    case PictureTrouble::Kind::None:
    case PictureTrouble::Kind::Unreadable:
        break;
    }
    return imagetext::kErrPictureNotLoaded;
}

Status freshConversionPath(const QString& appFolder, const Clock& clock, RandomSource& random, QString& path,
                           QStringView suffix) {
    const QString scratch = workspace::tmpJpg(appFolder);
    if (!QDir().mkpath(scratch))
        return Status::failure(QStringLiteral("%1: the folder cannot be created").arg(shown(scratch)));
    const QDateTime now = clock.now();
    for (int draw = 0; draw < kNameDraws; ++draw) {
        const QString candidate = convertedPicturePath(appFolder, now, conversionNumber(random), suffix);
        if (!QFileInfo::exists(candidate)) {
            path = candidate;
            return Status::ok();
        }
    }
    return Status::failure(QStringLiteral("%1: no free name for the converted picture").arg(shown(scratch)));
}

PictureImport importPicture(const QString& sourcePath, bool listHasItems, const QString& appFolder,
                            const Clock& clock, RandomSource& random, bool takeDamaged, int quality) {
    qint64 length = 0;
    {
        QFile source(sourcePath);
        if (!QFileInfo(sourcePath).isFile() || !source.open(QIODevice::ReadOnly))
            return refused(
                imagetext::kErrPictureNotLoaded,
                QStringLiteral("%1: %2").arg(shown(sourcePath), QFileInfo::exists(sourcePath)
                                                                    ? source.errorString()
                                                                    : QStringLiteral("no such file")));
        length = source.size();
    }
    const bool tooLarge = listHasItems && isTooLarge(length);
    if (tooLarge && matchesGifPattern(sourcePath)) {
        PictureImport result = refused(imagetext::kErrPictureTooLarge, QString());
        // Shrinking is offered only for what really is a GIF.
        ImageProbe probe;
        result.gifTooLarge = checkValidImg(sourcePath, probe) && probe.imgType == ImageProbe::Gif;
        return result;
    }
    // Nothing goes on a slide that the phone could not show, nor silently what had to be filled in.
    const PictureTrouble trouble = checkPictureFile(sourcePath);
    if (!trouble.ok() && !(takeDamaged && trouble.usableAnyway())) {
        PictureImport result = refused(picturetext::errorNumber(trouble.kind), shown(sourcePath));
        if (trouble.kind == PictureTrouble::Kind::Unreadable)
            result.detail = QStringLiteral("%1: %2").arg(shown(sourcePath), trouble.detail);
        result.trouble = trouble;
        return result;
    }
    if (!tooLarge) return attached(sourcePath);

    QString target;
    if (Status named = freshConversionPath(appFolder, clock, random, target); !named)
        return refused(imagetext::kErrPictureNotConverted, named.message());
    if (Status converted = reencodeAsJpeg(sourcePath, target, quality); !converted)
        return refused(imagetext::kErrPictureNotConverted, converted.message());
    const qint64 convertedBytes = QFileInfo(target).size();
    if (isTooLarge(convertedBytes)) {
        PictureImport result = refused(imagetext::kErrPictureTooLarge, QString(), target);
        result.convertedBytes = convertedBytes;
        return result;
    }
    return attached(target, target);
}

} // namespace mms
