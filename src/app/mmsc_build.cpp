#include "app/mmsc.h"

#include "app/mmsc_attach.h"
#include "image/picturequality.h"
#include "model/cslide.h"
#include "package/messageexport.h"
#include "store/messagestore.h"

#include <QDir>
#include <QFileInfo>
#include <optional>
#include <stdexcept>

namespace mms::cli {

namespace {

const char kUsage[] =
    "  build [--subject TEXT] [--raw | --fit] [--slide [--dur N] [--pic FILE] [--text TEXT] [--sound "
    "FILE]]...\n"
    "        [--quality N] [--info] [--save NAME | --export FILE]\n"
    "               builds a message slide by slide: --slide adds a slide of 3 seconds, the options\n"
    "               after it set that slide's duration (0 to 32767 seconds), picture, text and sound.\n"
    "               Files are taken as the composer takes them: a picture must be a GIF, JPEG, BMP or\n"
    "               PNG picture and a sound an .amr or .mid file, each under 102400 bytes; a larger\n"
    "               picture other than a GIF is re-encoded as a JPEG of the same size at quality N\n"
    "               (1 to 100; default the PictureQuality setting, else 35) and taken when that is\n"
    "               small enough. Nothing is stored when a file is refused.\n"
    "               --fit shrinks a picture whose JPEG is still too large, or a GIF too large (as\n"
    "               mmsc gif does), until it fits, as the composer does when asked, makes any video\n"
    "               a 3GP clip and any other sound an AMR sound under the limit (as mmsc video and\n"
    "               mmsc audio do; a 3GP clip that fits is taken without it); --raw takes any\n"
    "               readable file as it is. The subject cannot hold a comma.\n"
    "               --info prints the number of slides and the estimated MMS size in bytes;\n"
    "               --save stores the message under NAME in UserData/MMS, replacing a stored message\n"
    "               of that name; --export writes the .tpl package archive to FILE, replacing it.";

struct BuildRequest {
    QString subject;
    bool info = false;
    bool raw = false;
    bool fit = false;
    int quality = readPictureQualitySetting();
    std::optional<QString> saveName;
    std::optional<QString> exportFile;
};

bool is(const QString& option, const char* name) {
    return option == QLatin1String(name);
}

// As typed on the command line: no blanks, at most five digits.
std::optional<qint16> parseDuration(const QString& text) {
    if (text.size() > 5) return std::nullopt;
    return parseSeconds(text);
}

QString setSubject(const QString& text, BuildRequest& request) {
    if (text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r')))
        return QStringLiteral("the subject must be a single line");
    // The index keeps the subject on a line of comma-separated fields.
    if (text.contains(QLatin1Char(',')))
        return QStringLiteral("the subject cannot hold a comma ('%1')").arg(text);
    request.subject = text;
    return {};
}

QString setTarget(const QString& option, const QString& text, BuildRequest& request) {
    if (request.saveName || request.exportFile) return QStringLiteral("give only one of --save and --export");
    if (is(option, "--save")) {
        if (!isValidMessageName(text))
            return QStringLiteral("'%1' is not a valid message name (one plain name, not '.', '..' or "
                                  "'temp', without '/', '\\' or control characters)")
                .arg(text);
        request.saveName = text;
        return {};
    }
    const QFileInfo target(text);
    if (text.isEmpty() || target.isDir())
        return QStringLiteral("'%1' is not a file name to export to").arg(text);
    if (!target.absoluteDir().exists()) return QStringLiteral("the folder of '%1' does not exist").arg(text);
    request.exportFile = target.absoluteFilePath();
    return {};
}

// The slide options edit the latest slide, as the composer's edits do.
QString setSlideOption(const QString& option, const QString& text, CSlide& slides) {
    const NodePtr slide = slides.lastItem();
    if (!slide) return QStringLiteral("%1 needs a --slide before it").arg(option);
    if (is(option, "--dur")) {
        const std::optional<qint16> seconds = parseDuration(text);
        if (!seconds)
            return QStringLiteral("'%1' is not a duration (a whole number from 0 to 32767)").arg(text);
        slide->DataSlideDur = SlideDur::fromNumber(*seconds);
    } else if (is(option, "--text")) {
        slides.setText(*slide, text);
    } else {
        const QFileInfo file(text);
        if (text.isEmpty() || !file.isFile() || !file.isReadable())
            return QStringLiteral("no readable file '%1'").arg(text);
        if (is(option, "--pic"))
            slides.setImgPath(*slide, file.absoluteFilePath());
        else
            slides.setSoundPath(*slide, file.absoluteFilePath());
    }
    return {};
}

// Reads the options into the slides and the request; the first problem is returned.
QString parseBuild(const QStringList& args, CSlide& slides, BuildRequest& request) {
    int slideCount = 0;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& option = args.at(i);
        if (is(option, "--slide")) {
            if (++slideCount > CSlide::kMaxSlides)
                return QStringLiteral("a message holds at most %1 slides").arg(CSlide::kMaxSlides);
            slides.InsertAtBack(SlideDur::fromText(QStringLiteral("3")), {}, {}, {});
        } else if (is(option, "--info") || is(option, "--raw") || is(option, "--fit")) {
            (is(option, "--info") ? request.info : is(option, "--raw") ? request.raw : request.fit) = true;
        } else if (is(option, "--quality")) {
            const QString problem =
                parseQualityOption(i + 1 < args.size() ? args.at(++i) : QString(), request.quality);
            if (!problem.isEmpty()) return problem;
        } else if (!is(option, "--subject") && !is(option, "--save") && !is(option, "--export") &&
                   !is(option, "--dur") && !is(option, "--pic") && !is(option, "--text") &&
                   !is(option, "--sound")) {
            return QStringLiteral("unknown option '%1' (see mmsc --help)").arg(option);
        } else if (i + 1 >= args.size()) {
            return QStringLiteral("%1 needs a value").arg(option);
        } else {
            const QString& text = args.at(++i);
            const QString problem = is(option, "--subject") ? setSubject(text, request)
                                    : is(option, "--save") || is(option, "--export")
                                        ? setTarget(option, text, request)
                                        : setSlideOption(option, text, slides);
            if (!problem.isEmpty()) return problem;
        }
    }
    return {};
}

int build(Context& context, const QStringList& args) {
    CSlide slides;
    BuildRequest request;
    if (const QString problem = parseBuild(args, slides, request); !problem.isEmpty())
        return fail(context, problem);
    // Converted pictures live in a scratch folder until the message is stored or exported.
    AttachRules rules(context.home, request.fit, request.quality);
    if (!request.raw) {
        for (NodePtr slide = slides.firstItem(); slide; slide = slide->NextNode)
            if (const QString problem = rules.apply(*slide); !problem.isEmpty())
                return fail(context, problem);
    }

    qint16 count = 0;
    qint32 size = 0;
    try {
        count = slides.getTotalSlide();
        size = slides.getTotalSize(QString(), QString(), request.subject);
    } catch (const std::overflow_error&) {
        return fail(context, QStringLiteral("the message is too large to measure"));
    }

    if (request.saveName) {
        if (Status s = MessageStore(context.home).save(slides, *request.saveName, request.subject); !s)
            return fail(context, s.message());
    } else if (request.exportFile) {
        if (Status s = exportArchive(slides, context.home, request.subject, *request.exportFile); !s)
            return fail(context, s.message());
    }
    if (request.info) context.out << "slides: " << count << "\nsize: " << size << "\n";
    return 0;
}

const Registrar registrar("build", kUsage, build);

} // namespace

} // namespace mms::cli
