#pragma once

#include <QColor>
#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QThreadPool>
#include <atomic>
#include <functional>
#include <map>
#include <memory>

namespace mms {

constexpr int kPanelThumbnailSide = 40; // the picture panel's icons
constexpr int kSlideThumbnailSide = 70; // the slide strip's icons
constexpr QSize kImageRegion{160, 110}; // the phone screen's picture region

// What surrounds a picture whose shape differs from its square: a light neutral grey.
inline QColor thumbnailBackground() {
    return QColor(0xF0, 0xF0, 0xF0);
}

// The picture panel's type entries: 0 all, 1 GIF, 2 JPEG, 3 BMP. Files match by their extension
// ("gif", "jpg", "bmp") without regard to case; all GIF files come first, then JPEG, then BMP, each
// type sorted by name (numbers in names by value). Nothing is listed for any other entry.
QStringList pictureCandidates(const QString& folder, int typeEntry);

// Whether a file may be listed; the real one asks the header probe.
using PictureProbe = std::function<bool(const QString& path)>;
bool probePicture(const QString& path);

// The candidates the probe accepts, in listing order (file names without folder).
QStringList listPictureFiles(const QString& folder, int typeEntry, const PictureProbe& probe = probePicture);

// A header that declares far more pixels than its file could hold as a picture (a decompression
// bomb): beyond 64 megapixels with less than a byte of file for every 16 of them. Reads the header
// only; false for a file that is no picture.
bool declaresImplausibleSize(const QString& path);
// The panel's stand-in for such a picture: a crossed-out frame on the background.
QImage oversizedThumbnail(int side);

// The picture scaled to fit the box with its aspect ratio kept, centred on the background.
QImage fitPicture(const QImage& picture, const QSize& box, const QColor& background = thumbnailBackground());
// Reads the file already scaled down while decoding (the content decides the format), upright (its
// EXIF orientation applied, as everywhere a picture is shown or converted), and fits it into the
// box. Null when the file cannot be read as a picture or declares an implausible size.
QImage loadFittedPicture(const QString& path, const QSize& box,
                         const QColor& background = thumbnailBackground());
// An empty square of the background colour.
QImage blankThumbnail(int side);
// The slide strip's icon for a picture path: 70 by 70, blank when there is no readable picture.
QImage slideThumbnail(const QString& path);

// Fills the picture panel without holding up the window: lists, probes and decodes 40 by 40
// thumbnails on worker threads and hands them over on the owner's thread in listing order. Files
// the probe rejects or that cannot be decoded are left out; the rows after them close up, so row k
// is always the k-th delivered file. A file declaring an implausible size gets the oversized
// thumbnail without being decoded, so it holds up none after it. start() and cancel() drop all work
// in flight.
class ThumbnailLoader final : public QObject {
    Q_OBJECT
public:
    explicit ThumbnailLoader(QObject* parent = nullptr, PictureProbe probe = probePicture);
    ~ThumbnailLoader() override;
    ThumbnailLoader(const ThumbnailLoader&) = delete;
    ThumbnailLoader& operator=(const ThumbnailLoader&) = delete;

    // Lists folder for the panel's type entry, replacing any listing under way.
    void start(const QString& folder, int typeEntry);
    // Drops the listing under way: no further signals come from it.
    void cancel();
    bool isRunning() const { return running_; }
    // Worker threads used (the number of cores by default).
    void setMaxThreads(int count) { pool_.setMaxThreadCount(count); }

signals:
    void thumbnailReady(int row, const QString& fileName, const QImage& thumbnail);
    void finished(int count);

private:
    struct Job;
    struct Decoded {
        QString fileName;
        QImage thumbnail; // null: left out
    };
    void listed(quint64 generation, qsizetype total);
    void decoded(quint64 generation, qsizetype index, Decoded result);
    void deliverReady();

    PictureProbe probe_;
    QThreadPool pool_;
    std::shared_ptr<Job> job_;
    quint64 generation_ = 0;
    bool running_ = false;
    qsizetype total_ = -1; // candidates of the current listing; -1 until known
    qsizetype next_ = 0;   // next candidate to deliver or skip
    int rows_ = 0;         // thumbnails delivered
    std::map<qsizetype, Decoded> waiting_;
};

} // namespace mms
