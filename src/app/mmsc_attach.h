#pragma once

#include "common/scratchfolder.h"
#include "image/jpegwriter.h"
#include "model/clockrandom.h"
#include "model/cslide.h"

#include <QString>
#include <memory>
#include <optional>

namespace mms::cli {

// The value of "--max-bytes" at args[i + 1] (i moves past it): an empty text, or what is wrong.
QString parseMaxBytesOption(const QStringList& args, qsizetype& i, qint64& maxBytes);
// "IN OUT [--start S] [--end E] [--max-bytes N]", the arguments of the conversions of a stretch of
// a sound or a video: a problem to show, or nothing when they are good.
struct StretchArguments {
    QString in, out;
    std::optional<double> start, end;
    qint64 maxBytes = 0;
};
QString parseStretchArguments(const char* command, const QStringList& args, StretchArguments& parsed);
// The value of a --quality option: a whole number from 1 to 100. Returns why it is not one, or an
// empty string.
QString parseQualityOption(const QString& text, int& quality);

// The composer's rules for what a slide may carry, for `mmsc build`: a picture must pass the header
// probe and stay under the size limit, re-encoded as JPEG when it is larger (GIF excepted); a sound
// must be an .amr or .mid file under the limit. Converted pictures are written to a scratch folder
// below the workspace's Temp folder, which is removed with this object.
class AttachRules {
public:
    // fit: a picture still too large as a same-size JPEG, or a GIF too large, is shrunk until it fits
    // instead of refused. quality: the JPEG quality of both conversions.
    explicit AttachRules(QString home, bool fit = false, int quality = kJpegQuality)
        : home_(std::move(home)), fit_(fit), quality_(quality) {}
    ~AttachRules();
    AttachRules(const AttachRules&) = delete;
    AttachRules& operator=(const AttachRules&) = delete;

    // Checks the slide's picture and sound, pointing the picture at its conversion when there was
    // one. Returns why a file is refused, or an empty string.
    QString apply(CSlideNode& slide);

private:
    QString applyPicture(QString& path);
    QString applyClip(QString& path);
    QString applySound(QString& path);
    QString scratchFolder(QString& problem);
    QString scratchFile(const QString& pattern, QString& problem);

    QString home_;
    bool fit_ = false;
    int quality_ = kJpegQuality;
    SystemClock clock_;
    SystemRandom random_;
    std::unique_ptr<ScratchFolder> scratch_;
    int shrunkGifs_ = 0;
    int converted_ = 0;
};

} // namespace mms::cli
