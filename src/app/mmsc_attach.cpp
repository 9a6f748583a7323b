#include "app/mmsc_attach.h"

#include "common/fileio.h"
#include "common/mediakind.h"
#include "common/workspace.h"
#include "image/gifshrink.h"
#include "image/imageprobe.h"
#include "image/picturecheck.h"
#include "image/picturefit.h"
#include "image/pictureimport.h"
#include "image/picturequality.h"
#include "sound/soundconversion.h"
#include "video/clipconversion.h"

#include <QDir>
#include <QFileInfo>
#include <cmath>

namespace mms::cli {

namespace {

QString shown(const QString& path) {
    return QDir::toNativeSeparators(path);
}

QString checkSound(const QString& path) {
    if (!isSound(path))
        return QStringLiteral("'%1' is not an AMR or MIDI sound (.amr or .mid)").arg(shown(path));
    const qint64 size = QFileInfo(path).size();
    if (isTooLarge(size))
        return QStringLiteral("'%1' has %2 bytes: a sound must be smaller than %3 bytes")
            .arg(shown(path), QString::number(size), QString::number(kAttachmentLimit));
    return {};
}

} // namespace

QString parseMaxBytesOption(const QStringList& args, qsizetype& i, qint64& maxBytes) {
    bool ok = false;
    maxBytes = i + 1 < args.size() ? args[++i].toLongLong(&ok) : 0;
    return ok && maxBytes >= 1 ? QString()
                               : QStringLiteral("--max-bytes takes a whole number of bytes above 0");
}

namespace {

// "--start S" or "--end E" at args[i]: a number of seconds, 0 or more; advances i past it.
QString parseSecondsOption(const QStringList& args, qsizetype& i, std::optional<double>& seconds) {
    const QString option = args[i];
    bool ok = false;
    const double value = i + 1 < args.size() ? args[++i].toDouble(&ok) : 0;
    if (!ok || !std::isfinite(value) || value < 0)
        return QStringLiteral("%1 takes a number of seconds, 0 or more").arg(option);
    seconds = value;
    return {};
}

} // namespace

QString parseStretchArguments(const char* command, const QStringList& args, StretchArguments& parsed) {
    QStringList files;
    parsed.maxBytes = kAttachmentLimit - 1;
    for (qsizetype i = 0; i < args.size(); ++i) {
        QString problem;
        if (args[i] == QLatin1String("--max-bytes"))
            problem = parseMaxBytesOption(args, i, parsed.maxBytes);
        else if (args[i] == QLatin1String("--start") || args[i] == QLatin1String("--end"))
            problem =
                parseSecondsOption(args, i, args[i] == QLatin1String("--start") ? parsed.start : parsed.end);
        else
            files << args[i];
        if (!problem.isEmpty()) return problem;
    }
    if (files.size() != 2)
        return QStringLiteral("%1 takes IN OUT [--start S] [--end E] [--max-bytes N]")
            .arg(QLatin1String(command));
    if (parsed.start && parsed.end && *parsed.end <= *parsed.start)
        return QStringLiteral("--end must come after --start");
    parsed.in = files[0];
    parsed.out = files[1];
    return {};
}

QString parseQualityOption(const QString& text, int& quality) {
    const std::optional<int> parsed = parsePictureQuality(text);
    if (!parsed) return QStringLiteral("--quality takes a whole number from 1 to 100, not '%1'").arg(text);
    quality = *parsed;
    return {};
}

// A Temp folder made only for the scratch folder goes with it.
AttachRules::~AttachRules() = default;

QString AttachRules::apply(CSlideNode& slide) {
    if (!slide.DataImgPath.isEmpty())
        if (QString problem = applyPicture(slide.DataImgPath); !problem.isEmpty()) return problem;
    if (!slide.DataSoundPath.isEmpty()) return applySound(slide.DataSoundPath);
    return {};
}

// A sound that is not AMR or MIDI, or too large, is converted to AMR under the limit when asked.
QString AttachRules::applySound(QString& path) {
    const QString problem = checkSound(path);
    if (problem.isEmpty()) return {};
    if (!fit_) return problem + QStringLiteral(" (--fit converts it to AMR)");
    QString scratchProblem;
    const QString target = scratchFile(QStringLiteral("sound%1.amr"), scratchProblem);
    if (!scratchProblem.isEmpty()) return scratchProblem;
    const SoundConversion sound = convertSoundToAmrFile(path, target, 0, std::nullopt, kAttachmentLimit - 1);
    if (!sound.fitted())
        return QStringLiteral("'%1' cannot be converted to AMR: %2").arg(shown(path), sound.message);
    path = target;
    return {};
}

// A 3GP clip that fits is taken as it is; any other video is made into one when asked.
QString AttachRules::applyClip(QString& path) {
    if (clipFitsAsItIs(path, kAttachmentLimit - 1)) return {};
    if (!fit_)
        return QStringLiteral("'%1' is not a 3GP clip under %2 bytes (--fit converts it to one)")
            .arg(shown(path), QString::number(kAttachmentLimit));
    QString scratchProblem;
    const QString target = scratchFile(QStringLiteral("clip%1.3gp"), scratchProblem);
    if (!scratchProblem.isEmpty()) return scratchProblem;
    const ClipConversion clip = convertVideoToClipFile(path, target, 0, std::nullopt, kAttachmentLimit - 1);
    if (!clip.fitted())
        return QStringLiteral("'%1' cannot be made into a clip: %2").arg(shown(path), clip.message);
    path = target;
    return {};
}

// A new file name in the scratch folder, numbered from `pattern` ("clip%1.3gp").
QString AttachRules::scratchFile(const QString& pattern, QString& problem) {
    const QString folder = scratchFolder(problem);
    return problem.isEmpty() ? folder + QLatin1Char('/') + pattern.arg(++converted_) : QString();
}

QString AttachRules::scratchFolder(QString& problem) {
    if (!scratch_) {
        scratch_ = std::make_unique<ScratchFolder>();
        if (Status s = scratch_->create(workspace::temp(home_), QStringLiteral("build-")); !s)
            problem = s.message();
    } else if (!scratch_->isValid()) {
        problem = QStringLiteral("Cannot create a folder in \"%1\"").arg(shown(workspace::temp(home_)));
    }
    return scratch_->isValid() ? scratch_->path() : QString();
}

QString AttachRules::applyPicture(QString& path) {
    if (isVideoFile(path)) return applyClip(path);
    ImageProbe probe;
    if (Status s = checkValidImg(path, probe); !s) return s.message();
    if (!probe.answer) {
        const PictureTrouble trouble = checkPictureFile(path);
        return trouble.ok() ? QStringLiteral("'%1' is not a GIF, JPEG, BMP or PNG picture").arg(shown(path))
                            : describeTrouble(path, trouble);
    }
    const qint64 size = QFileInfo(path).size();
    QString scratch = home_;
    if (isTooLarge(size) && !matchesGifPattern(path)) {
        QString problem;
        scratch = scratchFolder(problem);
        if (!problem.isEmpty()) return problem;
    }
    const PictureImport import = importPicture(path, true, scratch, clock_, random_, false, quality_);
    if (import.attach()) {
        path = import.picturePath;
        return {};
    }
    if (!import.trouble.ok()) return describeTrouble(path, import.trouble);
    if (import.errorNumber != imagetext::kErrPictureTooLarge)
        return QStringLiteral("'%1' could not be converted to JPEG: %2").arg(shown(path), import.detail);
    const QString limit = QStringLiteral("a picture must be smaller than %1 bytes").arg(kAttachmentLimit);
    if (import.canShrinkGif() && fit_) {
        QString problem;
        const QString folder = scratchFolder(problem);
        if (!problem.isEmpty()) return problem;
        const QString fitted = folder + QStringLiteral("/shrunk%1.gif").arg(++shrunkGifs_);
        const GifShrink result = shrinkGifToFile(path, fitted);
        if (!result.fitted())
            return QStringLiteral("'%1' cannot be shrunk to fit: %2").arg(shown(path), result.message);
        path = fitted;
        return {};
    }
    if (import.convertedPath.isEmpty())
        return QStringLiteral("'%1' has %2 bytes: %3, and a GIF is not converted")
            .arg(shown(path), QString::number(size), limit);
    if (fit_) {
        const QString fitted = import.convertedPath + QStringLiteral(".fit.jpg");
        const FitResult result = fitPictureToFile(path, fitted, kFitMaxBytes, nullptr, quality_);
        if (!result.fitted())
            return QStringLiteral("'%1' cannot be shrunk to fit: %2").arg(shown(path), result.message);
        path = fitted;
        return {};
    }
    return QStringLiteral("'%1' has %2 bytes, and still %3 bytes as a JPEG at quality %4: %5")
        .arg(shown(path), QString::number(size), QString::number(QFileInfo(import.convertedPath).size()),
             QString::number(quality_), limit);
}

} // namespace mms::cli
