// A long run of random commands on a message of 500 slides with media, through the window-free
// document and the strip's model, as a user of a long session would. After every command the strip
// (as a view following its row signals sees it), the message and the thumbnails must agree and the
// running size must equal a recount; after every Save the stored copy, and after every Open the
// message, must equal what was saved. Resident memory after the warm-up and at the end is printed;
// the run fails when it grew by more than 10 %.
//
//   bench_soak [COUNT [SEED]]      (COUNT defaults to 100000)
#include "common/localisation.h"
#include "common/workspace.h"
#include "composer/composerdocument.h"
#include "composer/composertext.h"
#include "composer/slidepicture.h"
#include "composer/slidestripmodel.h"
#include "store/messagestore.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QImage>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

using namespace mms;

[[noreturn]] void fail(long step, const char* what, const QString& detail = {}) {
    std::fprintf(stderr, "soak: command %ld: %s %s\n", step, what, qPrintable(detail));
    std::exit(1);
}

// AddressSanitizer keeps freed memory in quarantine, so the resident size grows under it whatever
// the program does; there, LeakSanitizer's report at exit is the check that counts.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

long residentKb() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:")) return line.mid(6).trimmed().split(' ').first().toLong();
    return -1;
}

QByteArray readAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<unreadable>");
}

// Answers every question with its default and counts what would have been a warning box.
class SilentSink final : public MessageSink {
public:
    Answer show(const Message& m) override {
        if (m.icon == Icon::Warning || m.icon == Icon::Critical) lastWarning = m.text;
        return m.defaultAnswer;
    }
    QString lastWarning;
};

class FakeClock final : public Clock {
public:
    // An hour between commands: no two edits join into one undo step by their timing.
    QDateTime now() const override { return t_ = t_.addSecs(3600); }

private:
    mutable QDateTime t_ = QDateTime::fromSecsSinceEpoch(0, Qt::UTC);
};

// The name dialogs always choose the one soak message.
class FakeWindows final : public DocumentWindows {
public:
    explicit FakeWindows(MessageState*& state) : state_(state) {}
    bool runNameDialog(NameDialog) override {
        state_->currentFile = QStringLiteral("soak");
        state_->isCancel = false;
        state_->isOverwrite = true;
        return true;
    }
    bool promptSubject(bool, QStringList*) override { return false; }
    QString chooseSaveFile(const QString&, const QString&, const QString&) override { return {}; }

private:
    MessageState*& state_;
};

// The slide ids in strip order as a view learns them from the model's row signals alone.
class RowMirror {
public:
    RowMirror(const SlideStripModel& strip, const MessageModel& message) {
        const auto idAt = [&message](int row) { return message.at(row + 1)->id; };
        QObject::connect(&strip, &QAbstractItemModel::rowsInserted, &strip,
                         [this, idAt](const QModelIndex&, int first, int last) {
                             for (int r = first; r <= last; ++r)
                                 ids.insert(ids.begin() + r, idAt(r));
                         });
        QObject::connect(&strip, &QAbstractItemModel::rowsRemoved, &strip,
                         [this](const QModelIndex&, int first, int last) {
                             ids.erase(ids.begin() + first, ids.begin() + last + 1);
                         });
        QObject::connect(&strip, &QAbstractItemModel::rowsMoved, &strip,
                         [this](const QModelIndex&, int from, int, const QModelIndex&, int to) {
                             const quint64 id = ids[size_t(from)];
                             ids.erase(ids.begin() + from);
                             ids.insert(ids.begin() + (to > from ? to - 1 : to), id);
                         });
        QObject::connect(&strip, &QAbstractItemModel::modelReset, &strip, [this, &message] {
            ids.clear();
            for (int p = 1; p <= message.count(); ++p)
                ids.push_back(message.at(p)->id);
        });
    }
    std::vector<quint64> ids;
};

struct Media {
    QStringList pictures, sounds;
};

Media makeMedia(const QString& home) {
    Media m;
    const QString pics = workspace::pictureLibrary(home), sounds = workspace::soundLibrary(home);
    QDir().mkpath(pics);
    QDir().mkpath(sounds);
    static const char* const kinds[] = {"png", "jpg", "bmp"};
    for (int i = 0; i < 48; ++i) {
        QImage image(8 + i % 5, 6 + i % 3, QImage::Format_RGB32);
        image.fill(QColor::fromHsv(i * 7, 200 + i % 3 * 20, 120 + i % 4 * 40));
        m.pictures << QStringLiteral("%1/p%2.%3").arg(pics).arg(i).arg(QLatin1String(kinds[i % 3]));
        if (!image.save(m.pictures.last())) fail(0, "cannot write", m.pictures.last());
    }
    for (int i = 0; i < 24; ++i) {
        QByteArray bytes;
        QString path;
        if (i % 2) { // an AMR of "no data" frames
            bytes = QByteArrayLiteral("#!AMR\n") + QByteArray(10 + i, '\x7c');
            path = QStringLiteral("%1/s%2.amr").arg(sounds).arg(i);
        } else { // a MIDI file of one track holding only its end
            bytes =
                QByteArrayLiteral("MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0\4\0\xff\x2f\0") + QByteArray(i, '\0');
            path = QStringLiteral("%1/s%2.mid").arg(sounds).arg(i);
        }
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size()) fail(0, "cannot write", path);
        m.sounds << path;
    }
    return m;
}

// The message as saved: durations, texts and the bytes of every part.
struct Snapshot {
    QString subject;
    std::vector<std::array<QByteArray, 4>> slides;
    bool operator==(const Snapshot&) const = default;
};

Snapshot snapshotOf(const QString& subject, const std::vector<SlideContent>& slides) {
    Snapshot s{subject, {}};
    for (const SlideContent& c : slides)
        s.slides.push_back({c.duration.toString().toUtf8() + (c.duration.isNumber() ? "n" : "t"),
                            c.picture.isEmpty() ? QByteArray() : readAll(c.picture), c.text.toUtf8(),
                            c.sound.isEmpty() ? QByteArray() : readAll(c.sound)});
    return s;
}

std::vector<SlideContent> contentsOf(const MessageModel& message) {
    std::vector<SlideContent> out;
    for (int p = 1; p <= message.count(); ++p)
        out.push_back(*message.contentAt(p));
    return out;
}

// Each command's share of the run, in thousandths: the upper end of its range of a roll of 0..999.
// Save, Open and New copy every file of the message and so are kept rare.
constexpr std::pair<unsigned, const char*> kCommands[] = {
    {60, "add"},   {120, "remove"},   {160, "to front"}, {200, "to back"}, {280, "one place"},
    {340, "drag"}, {440, "duration"}, {540, "text"},     {630, "picture"}, {720, "sound"},
    {840, "undo"}, {990, "redo"},     {994, "save"},     {998, "open"},    {1000, "new"}};

class Soak {
public:
    Soak(const QString& home, quint64 seed)
        : home_(home), media_(makeMedia(home)), random_(seed), windows_(state_),
          doc_(sink_, clock_, loc_, windows_, {home, 1500}), strip_(doc_.message()),
          mirror_(strip_, doc_.message()) {
        state_ = &doc_.state();
        LanguageTexts texts;
        const auto fill = [](QStringList& list, const QList<int>& used) {
            for (int i = 0; i <= *std::max_element(used.begin(), used.end()); ++i)
                list << QStringLiteral("text %1").arg(i);
        };
        fill(texts.prompts, usedPromptNumbers());
        fill(texts.errors, usedErrorNumbers());
        fill(texts.interface, usedInterfaceNumbers());
        loc_.setTexts(texts);
        QObject::connect(&doc_, &ComposerDocument::showSlide, &doc_,
                         [this](qint16 p) { doc_.setCurrent(p); });
        blank_ = centre(blankThumbnail());
    }

    // The message of 500 slides, saved once so that Open has something to open.
    void build() {
        doc_.state().txtsubject = QStringLiteral("Soak");
        for (int k = 0; k < 500; ++k) {
            doc_.addSlide();
            doc_.commit(SlideField::Picture, pick(media_.pictures));
            doc_.commit(SlideField::Text, QStringLiteral("slide %1").arg(k));
            doc_.commit(SlideField::Sound, pick(media_.sounds));
            check(0);
        }
        save(0);
    }

    void run(long first, long last) {
        for (long step = first; step < last; ++step) {
            const int count = doc_.message().count();
            if (count > 0) doc_.setCurrent(qint16(1 + int(random_() % unsigned(count))));
            const unsigned roll = random_() % 1000;
            const auto command = std::find_if(std::begin(kCommands), std::end(kCommands),
                                              [roll](const auto& c) { return roll < c.first; }) -
                                 std::begin(kCommands);
            ++done_[size_t(command)];
            switch (command) {
            case 0:
                doc_.addSlide();
                break;
            case 1: // the message stays near 500 slides
                if (count > 400) doc_.removeSlide();
                break;
            case 2:
                doc_.moveToFront();
                break;
            case 3:
                doc_.moveToBack();
                break;
            case 4:
                doc_.moveOnePlace(random_() % 2);
                break;
            case 5:
                if (count > 0) doc_.dragSlide(qint16(1 + random_() % count), qint16(1 + random_() % count));
                break;
            case 6:
                doc_.commit(SlideField::Duration, durationText());
                break;
            case 7:
                doc_.commit(SlideField::Text, text());
                break;
            case 8:
                doc_.commit(SlideField::Picture, random_() % 5 ? pick(media_.pictures) : QString());
                break;
            case 9:
                doc_.commit(SlideField::Sound, random_() % 5 ? pick(media_.sounds) : QString());
                break;
            case 10:
                doc_.undo();
                break;
            case 11:
                doc_.redo();
                break;
            case 12:
                save(step);
                break;
            case 13:
                open(step);
                break;
            default:
                newAndOpen(step);
            }
            check(step);
        }
    }

    void report() const {
        for (size_t k = 0; k < std::size(kCommands); ++k)
            std::printf("  %-9s %ld\n", kCommands[k].second, done_[k]);
        std::printf("slides at the end: %d\n", doc_.message().count());
    }

private:
    QString pick(const QStringList& from) { return from.at(qsizetype(random_() % unsigned(from.size()))); }
    QString durationText() {
        static const char* const kTexts[] = {"1", "5", "12s", "30", "0", "99999", "x", "7 s"};
        return QString::fromLatin1(kTexts[random_() % 8]);
    }
    QString text() {
        static const char* const kTexts[] = {"", "Hi", "Hello, \"you\"", "two\nlines", "Grüße", "N", " pad "};
        const QString base = QString::fromUtf8(kTexts[random_() % 7]);
        return random_() % 2 ? base : base + QString::number(random_() % 1000);
    }
    static QRgb centre(const QImage& image) { return image.pixel(image.width() / 2, image.height() / 2); }
    QRgb expectedThumbnail(const QString& picture) {
        if (picture.isEmpty()) return blank_;
        auto it = pictureColours_.find(picture);
        if (it == pictureColours_.end())
            it = pictureColours_.insert(picture, centre(fittedThumbnail(loadPicture(picture))));
        return *it;
    }

    void check(long step) {
        const MessageModel& m = doc_.message();
        if (!sink_.lastWarning.isEmpty()) fail(step, "warned:", sink_.lastWarning);
        if (strip_.rowCount() != m.count() || int(mirror_.ids.size()) != m.count())
            fail(step, "row count differs from the message");
        const CSlideNode* walked = m.slides().firstItem().get();
        for (int p = 1; p <= m.count(); ++p, walked = walked->NextNode.get()) {
            const CSlideNode* node = m.at(p);
            if (node != walked) fail(step, "position index differs from the list", QString::number(p));
            if (mirror_.ids[size_t(p - 1)] != node->id)
                fail(step, "row signals lost slide", QString::number(p));
            const QModelIndex row = strip_.index(p - 1);
            if (strip_.data(row).toString() != stripLabel(p, node->DataSlideDur.toString()))
                fail(step, "label of slide", QString::number(p));
            if (centre(strip_.data(row, Qt::DecorationRole).value<QImage>()) !=
                expectedThumbnail(node->DataImgPath))
                fail(step, "thumbnail of slide", QString::number(p));
        }
        const std::optional<qint32> running = doc_.runningSize();
        if (!running || *running != m.slides().getTotalSize({}, {}, doc_.state().txtsubject))
            fail(step, "running size differs from a recount");
    }

    void save(long step) {
        saved_ = snapshotOf(doc_.state().txtsubject, contentsOf(doc_.message()));
        doc_.save();
        if (doc_.saveFailed() || doc_.isModified()) fail(step, "save failed");
        LoadedMessage stored;
        const MessageStore store(home_);
        if (!store.load(QStringLiteral("soak"), workspace::messageFolder(home_, QStringLiteral("soak")),
                        stored))
            fail(step, "stored message unreadable");
        std::vector<SlideContent> slides;
        for (const LoadedSlide& s : stored.slides)
            slides.push_back({s.duration, s.picturePath, s.text, s.soundPath});
        if (!stored.missingFiles.isEmpty() || snapshotOf(stored.subject, slides) != saved_)
            fail(step, "stored message differs from the one saved");
    }

    void open(long step) {
        // Unsaved changes are dropped (Open's question defaults to No): the saved message comes back.
        doc_.open();
        pictureColours_.clear(); // the working copy's files were replaced
        if (doc_.isModified() || snapshotOf(doc_.state().txtsubject, contentsOf(doc_.message())) != saved_)
            fail(step, "opened message differs from the one saved");
    }

    void newAndOpen(long step) {
        // New saves first (its question defaults to Yes), then empties the message.
        const Snapshot before = snapshotOf(doc_.state().txtsubject, contentsOf(doc_.message()));
        doc_.newMessage();
        if (doc_.message().count() != 0 || strip_.rowCount() != 0 || doc_.isModified())
            fail(step, "New left slides");
        saved_ = before;
        check(step);
        open(step);
    }

    const QString home_;
    const Media media_;
    std::mt19937_64 random_;
    SilentSink sink_;
    FakeClock clock_;
    Localisation loc_;
    MessageState* state_ = nullptr;
    FakeWindows windows_;
    ComposerDocument doc_;
    SlideStripModel strip_;
    RowMirror mirror_;
    QRgb blank_ = 0;
    QHash<QString, QRgb> pictureColours_;
    Snapshot saved_;
    std::array<long, 15> done_{};
};

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const long count = argc > 1 ? std::atol(argv[1]) : 100000;
    const quint64 seed = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1;
    QTemporaryDir home;
    Soak soak(home.path(), seed);
    soak.build();
    // The warm-up: a tenth of the run (at most 10,000 commands) fills the caches and the history.
    const long warmUp = std::min(count / 10, 10000L);
    soak.run(0, warmUp);
    const long rssWarm = residentKb();
    soak.run(warmUp, count);
    const long rssEnd = residentKb();
    std::printf("soak: %ld commands, seed %llu\n", count, static_cast<unsigned long long>(seed));
    soak.report();
    std::printf("resident memory after the warm-up: %ld kB, at the end: %ld kB (%+.1f %%)\n", rssWarm, rssEnd,
                100.0 * double(rssEnd - rssWarm) / double(rssWarm));
    if (rssEnd > rssWarm * 11 / 10 && !kSanitized) {
        std::fprintf(stderr, "soak: resident memory grew by more than 10 %%\n");
        return 1;
    }
    return 0;
}
