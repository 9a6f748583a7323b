#include "app/mmsc.h"

#include "model/cslide.h"
#include "package/messageexport.h"
#include "store/messagestore.h"

#include <QDir>
#include <QFileInfo>
#include <limits>
#include <optional>
#include <stdexcept>

namespace mms::cli {

namespace {

const char kUsage[] =
    "  build [--subject TEXT] [--slide [--dur N] [--pic FILE] [--text TEXT] [--sound FILE]]...\n"
    "        [--info] [--save NAME | --export FILE]\n"
    "               builds a message slide by slide: --slide adds a slide of 3 seconds, the options\n"
    "               after it set that slide's duration (0 to 32767 seconds), picture, text and sound.\n"
    "               --info prints the number of slides and the estimated MMS size in bytes;\n"
    "               --save stores the message under NAME in UserData/MMS, replacing a stored message\n"
    "               of that name; --export writes the .tpl package archive to FILE, replacing it.";

struct BuildRequest {
    QString subject;
    bool info = false;
    std::optional<QString> saveName;
    std::optional<QString> exportFile;
};

std::optional<qint16> parseDuration(const QString& text) {
    if (text.isEmpty() || text.size() > 5) return std::nullopt;
    for (QChar c : text)
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) return std::nullopt;
    const int value = text.toInt();
    if (value > std::numeric_limits<qint16>::max()) return std::nullopt;
    return static_cast<qint16>(value);
}

// Stores the message as Save does, through the store's safe save: the old message of that name is
// replaced only by a complete new one.
Status saveMessage(const CSlide& slides, const QString& home, const QString& name, const QString& subject) {
    return MessageStore(home).save(slides, name, subject);
}

int build(Context& context, const QStringList& args) {
    CSlide slides;
    BuildRequest request;
    int slideCount = 0;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& option = args.at(i);
        const auto value = [&]() -> std::optional<QString> {
            if (i + 1 >= args.size()) return std::nullopt;
            return args.at(++i);
        };
        const bool takesValue = option == QLatin1String("--subject") || option == QLatin1String("--dur") ||
                                option == QLatin1String("--pic") || option == QLatin1String("--text") ||
                                option == QLatin1String("--sound") || option == QLatin1String("--save") ||
                                option == QLatin1String("--export");
        if (option == QLatin1String("--slide")) {
            if (++slideCount > CSlide::kMaxSlides)
                return fail(context,
                            QStringLiteral("a message holds at most %1 slides").arg(CSlide::kMaxSlides));
            slides.InsertAtBack(SlideDur::fromText(QStringLiteral("3")), {}, {}, {});
            continue;
        }
        if (option == QLatin1String("--info")) {
            request.info = true;
            continue;
        }
        if (!takesValue)
            return fail(context, QStringLiteral("unknown option '%1' (see mmsc --help)").arg(option));
        const std::optional<QString> given = value();
        if (!given) return fail(context, QStringLiteral("%1 needs a value").arg(option));
        const QString& text = *given;

        if (option == QLatin1String("--subject")) {
            if (text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r')))
                return fail(context, QStringLiteral("the subject must be a single line"));
            request.subject = text;
        } else if (option == QLatin1String("--save") || option == QLatin1String("--export")) {
            if (request.saveName || request.exportFile)
                return fail(context, QStringLiteral("give only one of --save and --export"));
            if (option == QLatin1String("--save")) {
                if (!isValidMessageName(text))
                    return fail(context,
                                QStringLiteral("'%1' is not a valid message name (one plain name, not "
                                               "'.', '..' or 'temp', without '/', '\\' or control "
                                               "characters)")
                                    .arg(text));
                request.saveName = text;
            } else {
                const QFileInfo target(text);
                if (text.isEmpty() || target.isDir())
                    return fail(context, QStringLiteral("'%1' is not a file name to export to").arg(text));
                if (!target.absoluteDir().exists())
                    return fail(context, QStringLiteral("the folder of '%1' does not exist").arg(text));
                request.exportFile = target.absoluteFilePath();
            }
        } else {
            // The slide options edit the latest slide, as the composer's edits do.
            const NodePtr slide = slides.lastItem();
            if (!slide) return fail(context, QStringLiteral("%1 needs a --slide before it").arg(option));
            if (option == QLatin1String("--dur")) {
                const std::optional<qint16> seconds = parseDuration(text);
                if (!seconds)
                    return fail(
                        context,
                        QStringLiteral("'%1' is not a duration (a whole number from 0 to 32767)").arg(text));
                slide->DataSlideDur = SlideDur::fromNumber(*seconds);
            } else if (option == QLatin1String("--text")) {
                slide->DataText = text;
            } else {
                const QFileInfo file(text);
                if (text.isEmpty() || !file.isFile() || !file.isReadable())
                    return fail(context, QStringLiteral("no readable file '%1'").arg(text));
                (option == QLatin1String("--pic") ? slide->DataImgPath : slide->DataSoundPath) =
                    file.absoluteFilePath();
            }
        }
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
        if (Status s = saveMessage(slides, context.home, *request.saveName, request.subject); !s)
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
