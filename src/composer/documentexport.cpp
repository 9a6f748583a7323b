// The exports (the message as a .tpl package archive, or as one binary MMS send request) and the
// message size against the limit. The size counter runs on the message's running total, so a
// keystroke never measures a file; Save, the exports and the window's return to the front measure
// the media files again, since they may have changed outside the program.

#include "common/filesize.h"
#include "common/localisation.h"
#include "common/workspace.h"
#include "composer/composerdocument.h"
#include "composer/composertexts.h"
#include "composer/sizelimit.h"
#include "package/messageexport.h"
#include "package/packagewriter.h"

#include <exception>
#include <limits>

namespace mms {

namespace {

// A menu caption as a window title: without its trailing ellipsis.
QString titleOf(QString caption) {
    if (caption.endsWith(QStringLiteral("...")))
        caption.chop(3);
    else if (caption.endsWith(QChar(0x2026)))
        caption.chop(1);
    return caption.trimmed();
}

} // namespace

std::optional<qint32> ComposerDocument::runningSize() const {
    try {
        return message_.slides().runningTotalSize(QString(), QString(), state_.txtsubject);
    } catch (const std::exception&) {
        return std::nullopt; // beyond the counters' range
    }
}

void ComposerDocument::remeasure() {
    message_.remeasureAll();
}

bool ComposerDocument::goOnDespiteSize() {
    remeasure();
    const std::optional<qint32> counted = runningSize();
    // Beyond counting is beyond any limit.
    const qint64 size = counted ? *counted : std::numeric_limits<qint64>::max();
    if (!isOverLimit(size, sizeLimit_)) return true;
    const QString text = loc_.getMCrPromptStr(composertext::kPromptExportOverLimit)
                             .replace(QStringLiteral("%1"), sizeText(loc_, size))
                             .replace(QStringLiteral("%2"), sizeText(loc_, sizeLimit_));
    return sink_.show(Message{text, loc_.getMCrInterfaceStr(composertext::kAppTitle), Buttons::YesNo,
                              Icon::Question, Answer::No}) == Answer::Yes;
}

// The subject prompt is shown for each export; a valid subject lands in txtsubject and stays there,
// so a later save stores it. Exporting does not change whether the message counts as modified.
void ComposerDocument::exportPackage() {
    if (!goOnDespiteSize() || !windows_.promptSubject(false, nullptr)) return;
    const QString& a = options_.appFolder;
    const QString archive = uploadArchiveBase(a) + QStringLiteral(".tpl");
    CSlide& slides = message_.slides();
    slides.setfolderpath(QString());
    slides.setfilename(uploadArchiveBase(a));
    Status result = generateSMIL(slides, a, state_.txtsubject);
    if (result) {
        const QString destination = windows_.chooseSaveFile(loc_.getMCrInterfaceStr(composertext::kExport),
                                                            workspace::messages(a) + QLatin1Char('/'),
                                                            QStringLiteral("MMS Files (*.tpl)"));
        // Cancel ends the command quietly; the archive stays until the next export replaces it.
        if (destination.isEmpty()) return;
        result = moveArchive(archive, destination);
    }
    if (!result) {
        showWarning(
            loc_.getMCrErrStr(composertext::kErrNotExported).replace(QStringLiteral("%1"), result.message()));
        return;
    }
    sink_.show(Message{loc_.getMCrPromptStr(composertext::kPromptExported),
                       loc_.getMCrInterfaceStr(composertext::kAppTitle), Buttons::Ok, Icon::Information});
}

void ComposerDocument::exportMms() {
    QStringList recipients;
    if (!goOnDespiteSize() || !windows_.promptSubject(true, &recipients)) return;
    const QString& a = options_.appFolder;
    const QString destination = windows_.chooseSaveFile(
        titleOf(loc_.getMCrInterfaceStr(composertext::kExportMms)), workspace::messages(a) + QLatin1Char('/'),
        loc_.getMCrInterfaceStr(composertext::kMmsFileType) + QStringLiteral(" (*.mms)"));
    if (destination.isEmpty()) return;
    Status result = Status::ok();
    try {
        MmsRecipients to;
        to.to = recipients;
        result = writeMmsFile(message_.slides(), a, state_.txtsubject, destination, to);
    } catch (const std::exception& e) {
        result = Status::failure(QString::fromUtf8(e.what()));
    }
    if (!result) {
        showWarning(loc_.getMCrErrStr(composertext::kErrMmsNotWritten)
                        .replace(QStringLiteral("%1"), result.message()));
        return;
    }
    sink_.show(Message{loc_.getMCrPromptStr(composertext::kPromptMmsWritten),
                       loc_.getMCrInterfaceStr(composertext::kAppTitle), Buttons::Ok, Icon::Information});
}

} // namespace mms
