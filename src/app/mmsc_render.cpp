#include "app/mmsc.h"
#include "app/mmsc_stored.h"

#include "composer/phonescreen.h"
#include "composer/slideshow.h"
#include "store/messagestore.h"
#include "store/privatecopy.h"

#include <QDir>
#include <QRegularExpression>

namespace mms::cli {

namespace {

const char kUsage[] =
    "  render NAME DIR [--scale N]\n"
    "               draws the stored message NAME (read from a copy of its own, as show reads it) as\n"
    "               the phone screen shows each slide: DIR/slide1.png, slide2.png, ... of 160x140\n"
    "               pixels times N (1 to 16, default 1), and prints one line per slide: the file, a\n"
    "               tab, the duration in seconds. DIR is made when missing; slideK.png files of\n"
    "               earlier renders beyond the last slide are removed. Text is drawn on Qt's offscreen\n"
    "               platform, so no display is needed. Exit status 1 when the message cannot be opened\n"
    "               or a picture cannot be written";

constexpr int kCannotRender = 1;
constexpr int kMaxScale = 16;

int cannot(Context& context, const QString& message) {
    context.err << "mmsc: " << message << Qt::endl;
    return kCannotRender;
}

// Takes "--scale N" or "--scale=N" out of `args`; 1 when absent, 0 when it is not a whole number
// from 1 to kMaxScale.
int takeScale(QStringList& args) {
    QString given = QStringLiteral("1");
    for (qsizetype i = 0; i < args.size();) {
        if (args.at(i) == QLatin1String("--scale")) {
            given = i + 1 < args.size() ? args.at(i + 1) : QString();
            args.remove(i, std::min<qsizetype>(2, args.size() - i));
        } else if (args.at(i).startsWith(QLatin1String("--scale="))) {
            given = args.takeAt(i).mid(8);
        } else {
            ++i;
        }
    }
    bool ok = false;
    const int scale = given.toInt(&ok);
    return ok && scale >= 1 && scale <= kMaxScale ? scale : 0;
}

// Pictures of an earlier render numbered beyond `count` would pass for slides of this one.
Status removeStaleSlides(QDir dir, int count) {
    static const QRegularExpression slideFile(QStringLiteral("\\Aslide([1-9][0-9]{0,8})\\.png\\z"));
    for (const QString& name : dir.entryList({QStringLiteral("slide*.png")}, QDir::Files)) {
        const QRegularExpressionMatch m = slideFile.match(name);
        if (m.hasMatch() && m.captured(1).toInt() > count && !dir.remove(name))
            return Status::failure(QStringLiteral("cannot remove %1").arg(dir.filePath(name)));
    }
    return Status::ok();
}

int render(Context& context, const QStringList& arguments) {
    QStringList args = arguments;
    const int scale = takeScale(args);
    if (args.size() != 2 || args.first().startsWith(QLatin1String("--")))
        return fail(context, QStringLiteral("render needs a message name and a folder (see mmsc --help)"));
    if (scale == 0)
        return fail(context, QStringLiteral("--scale needs a whole number from 1 to %1").arg(kMaxScale));
    const QString& name = args.at(0);
    if (!isValidMessageName(name))
        return fail(context, QStringLiteral("'%1' is not a valid message name").arg(name));

    PrivateCopy copy;
    LoadedMessage message;
    if (Status s = openStoredCopy(MessageStore(context.home), name, copy, message); !s)
        return cannot(context, s.message());
    warnAboutMissingFiles(context, message, "left empty");

    const QDir dir(args.at(1));
    if (!QDir().mkpath(dir.path()))
        return cannot(context, QStringLiteral("cannot create %1").arg(dir.path()));
    const std::vector<ShowSlide> slides = showSlides(message.slides);
    for (std::size_t i = 0; i < slides.size(); ++i) {
        const QString file = dir.filePath(QStringLiteral("slide%1.png").arg(i + 1));
        if (!renderPhoneScreen(slides[i].screen, scale).save(file, "PNG"))
            return cannot(context, QStringLiteral("cannot write %1").arg(file));
        context.out << file << '\t' << slides[i].seconds << '\n';
    }
    if (Status s = removeStaleSlides(dir, int(slides.size())); !s) return cannot(context, s.message());
    return 0;
}

const Registrar registrar("render", kUsage, render, true);

} // namespace

} // namespace mms::cli
