#include "image/thumbnailloader.h"

#include "image/exiforientation.h"
#include "image/imageprobe.h"
#include "image/uprightdecode.h"

#include <QCollator>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <algorithm>

namespace mms {

namespace {

// The panel's type table, in listing order: its name patterns, not every name a kind has (a ".jpeg"
// is taken when dropped but not listed).
constexpr const char* kTypeExtensions[] = {"gif", "jpg", "bmp"};

QImage composeOn(const QImage& scaled, const QSize& box, const QColor& background) {
    QImage out(box, background.alpha() == 255 ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
    if (out.isNull()) return {};
    out.fill(background);
    QPainter painter(&out);
    painter.drawImage((box.width() - scaled.width()) / 2, (box.height() - scaled.height()) / 2, scaled);
    return out;
}

QSize fittedSize(const QSize& picture, const QSize& box) {
    return picture.scaled(box, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

} // namespace

QStringList pictureCandidates(const QString& folder, int typeEntry) {
    QStringList files;
    if (folder.isEmpty()) return files;
    const QDir dir(folder);
    // The C locale compares code points only; numbers in names still sort by value elsewhere.
    QLocale locale;
    if (locale.language() == QLocale::C) locale = QLocale(QLocale::English, QLocale::UnitedStates);
    QCollator collator(locale);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    for (int k = 1; k <= 3; ++k) {
        if (typeEntry != 0 && typeEntry != k) continue;
        const QString pattern = QStringLiteral("*.") + QLatin1String(kTypeExtensions[k - 1]);
        // Name filters match without regard to case.
        QStringList ofType = dir.entryList({pattern}, QDir::Files | QDir::Readable, QDir::NoSort);
        std::sort(ofType.begin(), ofType.end(), [&collator](const QString& a, const QString& b) {
            const int order = collator.compare(a, b);
            return order != 0 ? order < 0 : a < b; // names differing only in case keep a fixed order
        });
        files += ofType;
    }
    return files;
}

bool probePicture(const QString& path) {
    ImageProbe probe;
    return checkValidImg(path, probe).isOk() && probe.answer;
}

QStringList listPictureFiles(const QString& folder, int typeEntry, const PictureProbe& probe) {
    QStringList listed;
    const QDir dir(folder);
    for (const QString& name : pictureCandidates(folder, typeEntry))
        if (probe(dir.filePath(name))) listed << name;
    return listed;
}

bool declaresImplausibleSize(const QString& path) {
    constexpr qint64 kPlausiblePixels = 64 * 1024 * 1024;
    constexpr qint64 kPixelsPerFileByte = 16;
    const QSize size = QImageReader(path).size();
    const qint64 pixels = size.isValid() ? qint64(size.width()) * size.height() : 0;
    return pixels > kPlausiblePixels && pixels > kPixelsPerFileByte * QFileInfo(path).size();
}

QImage oversizedThumbnail(int side) {
    QImage image = blankThumbnail(side);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x9a, 0xa0, 0xa6), qMax(1.0, side / 20.0)));
    const QRectF frame(side * 0.2, side * 0.25, side * 0.6, side * 0.5);
    painter.drawRect(frame);
    painter.drawLine(frame.topLeft(), frame.bottomRight());
    return image;
}

QImage fitPicture(const QImage& picture, const QSize& box, const QColor& background) {
    if (picture.isNull() || box.isEmpty()) return {};
    const QSize size = fittedSize(picture.size(), box);
    const QImage scaled = picture.size() == size
                              ? picture
                              : picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return composeOn(scaled, box, background);
}

QImage loadFittedPicture(const QString& path, const QSize& box, const QColor& background) {
    if (path.isEmpty() || box.isEmpty()) return {};
    if (declaresImplausibleSize(path)) return {};
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    const QImageIOHandler::Transformations orientation = uprightTransform(path, reader);
    const QSize stored = reader.size();
    // Decoders that can (JPEG above all) scale while decoding, which is most of the saving. The
    // scaled size is of the stored pixels, before they are turned upright.
    if (stored.isValid() && !stored.isEmpty()) {
        const bool turned = orientation & QImageIOHandler::TransformationRotate90;
        const QSize upright = fittedSize(turned ? stored.transposed() : stored, box);
        reader.setScaledSize(turned ? upright.transposed() : upright);
    }
    const QImage picture = applyOrientation(reader.read(), orientation);
    if (picture.isNull()) return {};
    return fitPicture(picture, box, background);
}

QImage blankThumbnail(int side) {
    QImage blank(side, side, QImage::Format_RGB32);
    blank.fill(thumbnailBackground());
    return blank;
}

QImage slideThumbnail(const QString& path) {
    const QSize box(kSlideThumbnailSide, kSlideThumbnailSide);
    const QImage thumbnail = loadFittedPicture(path, box);
    return thumbnail.isNull() ? blankThumbnail(kSlideThumbnailSide) : thumbnail;
}

// What the workers of one listing share; set once the listing is dropped.
struct ThumbnailLoader::Job {
    std::atomic<bool> cancelled{false};
};

ThumbnailLoader::ThumbnailLoader(QObject* parent, PictureProbe probe)
    : QObject(parent), probe_(std::move(probe)) {}

ThumbnailLoader::~ThumbnailLoader() {
    cancel();
    // Workers still decoding refer to this object; none runs for long.
    pool_.waitForDone();
}

void ThumbnailLoader::cancel() {
    if (job_) job_->cancelled = true;
    job_.reset();
    pool_.clear();
    ++generation_; // results still on their way are recognised as stale and dropped
    running_ = false;
    total_ = -1;
    next_ = 0;
    rows_ = 0;
    waiting_.clear();
}

void ThumbnailLoader::start(const QString& folder, int typeEntry) {
    cancel();
    auto job = std::make_shared<Job>();
    job_ = job;
    running_ = true;
    const quint64 generation = generation_;
    // Listing a large or slow folder is itself kept off the owner's thread; it then queues one decode
    // per file so thumbnails come in while later files are still waiting.
    pool_.start([this, job, generation, folder, typeEntry] {
        const QStringList names = pictureCandidates(folder, typeEntry);
        QMetaObject::invokeMethod(
            this, [this, generation, total = names.size()] { listed(generation, total); },
            Qt::QueuedConnection);
        const QDir dir(folder);
        for (qsizetype i = 0; i < names.size() && !job->cancelled; ++i) {
            pool_.start([this, job, generation, i, name = names[i], path = dir.filePath(names[i])] {
                if (job->cancelled) return;
                Decoded result{name, {}};
                if (probe_(path) && !job->cancelled)
                    result.thumbnail =
                        declaresImplausibleSize(path)
                            ? oversizedThumbnail(kPanelThumbnailSide)
                            : loadFittedPicture(path, QSize(kPanelThumbnailSide, kPanelThumbnailSide));
                QMetaObject::invokeMethod(
                    this,
                    [this, generation, i, result = std::move(result)]() mutable {
                        decoded(generation, i, std::move(result));
                    },
                    Qt::QueuedConnection);
            });
        }
    });
}

void ThumbnailLoader::listed(quint64 generation, qsizetype total) {
    if (generation != generation_) return;
    total_ = total;
    deliverReady();
}

void ThumbnailLoader::decoded(quint64 generation, qsizetype index, Decoded result) {
    if (generation != generation_) return;
    waiting_.emplace(index, std::move(result));
    deliverReady();
}

void ThumbnailLoader::deliverReady() {
    const quint64 generation = generation_;
    for (auto it = waiting_.find(next_); it != waiting_.end(); it = waiting_.find(next_)) {
        Decoded result = std::move(it->second);
        waiting_.erase(it);
        ++next_;
        if (result.thumbnail.isNull()) continue;
        emit thumbnailReady(rows_++, result.fileName, result.thumbnail);
        // A receiver may have started another listing or cancelled this one.
        if (generation != generation_) return;
    }
    if (total_ >= 0 && next_ >= total_ && running_) {
        running_ = false;
        job_.reset();
        emit finished(rows_);
    }
}

} // namespace mms
