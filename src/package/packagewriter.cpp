#include "package/packagewriter.h"

#include "common/fileio.h"
#include "common/workspace.h"
#include "package/packagemembers.h"
#include "package/tararchive.h"
#include "package/utf8.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <vector>

namespace mms {

namespace {

QString native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

Status cannotRead(const QString& path, const QString& reason) {
    return Status::failure(QStringLiteral("Cannot read \"%1\": %2").arg(native(path), reason));
}

Status cannotWrite(const QString& path, const QString& reason) {
    return Status::failure(QStringLiteral("Cannot write \"%1\": %2").arg(native(path), reason));
}

// Creates (or replaces) `path` with `bytes`; an empty array gives an empty file.
Status writeFile(const QString& path, const QByteArray& bytes) {
    return fileio::writeFileSafely(path, QByteArrayView(bytes));
}

// Media are copied by reading the whole file and writing it out in one piece. A zero-length source
// gives a zero-length copy: readers only need the member to exist.
Status copyWhole(const QString& source, const QString& target) {
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly)) return cannotRead(source, in.errorString());
    const QByteArray bytes = in.readAll();
    if (in.error() != QFileDevice::NoError) return cannotRead(source, in.errorString());
    return writeFile(target, bytes);
}

// main.smil and the index are 8-bit text in the system code page, which is UTF-8 here; their fixed
// parts are plain ASCII. Every line ends with CR LF whatever the platform.
void line(QByteArray& out, const QString& text) {
    out += text.toUtf8();
    out += "\r\n";
}

QString quoted(const char* flag) {
    return QLatin1Char('"') + QLatin1String(flag) + QLatin1Char('"');
}

// The whole package as it will lie on disk, built in memory first so that nothing is written before
// the content is known.
struct Package {
    QByteArray smil;
    QByteArray texts;
    QByteArray index;
    std::vector<std::pair<QString, QString>> copies;        // source path, member name, in archive order
    std::vector<std::pair<QString, QByteArray>> slideTexts; // "text" + N + ".txt", UTF-8 bytes
};

Package buildPackage(const CSlide& slides, const QString& subject) {
    Package p;
    for (const char* head : {"<smil>", "     <head>", "     <layout>",
                             "         <root-layout width=\"160\" height=\"140\" title=\"MMS by Morvane\"/>",
                             "         <region id=\"Image\" height=\"110\" width=\"160\"/>",
                             "         <region id=\"Text\" height=\"20\" width=\"160\" top=\"110\"/>",
                             "     </layout>", "     </head>", " ", "     <body>"})
        line(p.smil, QLatin1String(head));

    // An empty subject gives an empty title element.
    p.texts = "<?xml version=\"1.0\" encoding=\"utf-8\"?><mms-text-files>    <message>        <title>";
    p.texts += toUtf8Bytes(subject);
    p.texts += "</title>";

    line(p.index, subject);
    int n = 0;
    for (const CSlideNode* node = slides.firstItem().get(); node; node = node->NextNode.get()) {
        ++n;
        const char* picFlag = "N";
        const char* textFlag = "N";
        const char* soundFlag = "N";
        line(p.smil, QStringLiteral("         <par dur=\"%1s\">").arg(node->DataSlideDur.toString()));
        if (!node->DataImgPath.isEmpty()) {
            const PictureMember pic = pictureMember(node->DataImgPath, n);
            line(p.smil, QStringLiteral("             <%1 src=\"%2\" region=\"Image\"/>")
                             .arg(pic.video ? QStringLiteral("video") : QStringLiteral("img"), pic.name));
            p.copies.emplace_back(node->DataImgPath, pic.name);
            picFlag = "I";
        }
        if (!node->DataText.isEmpty()) {
            const QString name = QStringLiteral("text%1.txt").arg(n);
            const QByteArray bytes = toUtf8Bytes(node->DataText);
            line(p.smil, QStringLiteral("             <text src=\"%1\" region=\"Text\"/>").arg(name));
            p.texts += "<file filename=\"" + name.toLatin1() + "\">" + bytes + "</file>";
            p.slideTexts.emplace_back(name, bytes);
            textFlag = "T";
        }
        if (!node->DataSoundPath.isEmpty()) {
            const QString name = soundMember(node->DataSoundPath, n);
            line(p.smil, QStringLiteral("             <audio src = \"%1\"/>").arg(name));
            p.copies.emplace_back(node->DataSoundPath, name);
            soundFlag = "S";
        }
        line(p.smil, QStringLiteral("         </par>"));
        line(p.index, node->DataSlideDur.indexField() + QLatin1Char(',') + quoted(picFlag) +
                          QLatin1Char(',') + quoted(textFlag) + QLatin1Char(',') + quoted(soundFlag));
    }
    line(p.smil, QStringLiteral("     </body>"));
    line(p.smil, QStringLiteral("</smil>"));
    p.texts += "</message></mms-text-files>";
    return p;
}

// The presentation, the manifest and the media copies into `folder`.
Status writeMembers(const Package& p, const QString& folder) {
    if (Status s = writeFile(folder + QStringLiteral("/main.smil"), p.smil); !s) return s;
    if (Status s = writeFile(folder + QStringLiteral("/texts.xml"), p.texts); !s) return s;
    for (const auto& [source, member] : p.copies)
        if (Status s = copyWhole(source, folder + QLatin1Char('/') + member); !s) return s;
    return Status::ok();
}

bool isPlainName(const QString& name) {
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\'));
}

// Store mode. The folder is created here and must not exist yet (the caller removes an old message
// first); on any failure the folder is removed again, so a half-written message never looks stored.
// The index is written last, through a save file: it is what makes a message visible to the store.
Status writeStored(const Package& p, const QString& appFolder, const QString& name, const QString& subject) {
    const QString folder = workspace::messageFolder(appFolder, name);
    const QString indexPath = workspace::messageIndex(appFolder, name);
    if (!isPlainName(name))
        return cannotWrite(folder, QStringLiteral("the message name is not a plain name"));
    // The index holds the subject on its first line; a line break would shift every slide.
    if (subject.contains(QLatin1Char('\n')) || subject.contains(QLatin1Char('\r')))
        return cannotWrite(indexPath, QStringLiteral("the subject must be a single line"));
    if (QFileInfo::exists(folder)) return cannotWrite(folder, QStringLiteral("the folder already exists"));
    if (Status s = fileio::createPath(workspace::messages(appFolder)); !s) return s;
    if (Status s = fileio::createFolder(folder); !s) return s;

    Status result = writeMembers(p, folder);
    for (const auto& [fileName, bytes] : p.slideTexts) {
        if (!result) break;
        result = writeFile(folder + QLatin1Char('/') + fileName, bytes);
    }
    if (result) result = fileio::writeFileSafely(indexPath, p.index);
    if (!result) (void)fileio::removeTree(folder);
    return result;
}

// Export mode. The members go into the archive straight from memory and from their sources, each
// dated now as a freshly written copy would be; no loose file is written, so no file of the user's
// that happens to be called main.smil or pic1.gif is ever touched. The archive is renamed into place
// only when complete.
Status writeExported(const Package& p, const QString& archiveBase) {
    if (archiveBase.isEmpty())
        return cannotWrite(QStringLiteral(".tpl"), QStringLiteral("no archive name was given"));
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    std::vector<TarMember> members{{QStringLiteral("main.smil"), p.smil, now},
                                   {QStringLiteral("texts.xml"), p.texts, now}};
    for (const auto& [source, member] : p.copies) {
        QFile in(source);
        if (!in.open(QIODevice::ReadOnly)) return cannotRead(source, in.errorString());
        members.push_back({member, in.readAll(), now});
        if (in.error() != QFileDevice::NoError) return cannotRead(source, in.errorString());
    }
    return writeTarArchive(archiveBase + QStringLiteral(".tpl"), members);
}

} // namespace

Status generateSMIL(const CSlide& slides, const QString& appFolder, const QString& subject) {
    const Package package = buildPackage(slides, subject);
    if (slides.folderPath().isEmpty()) return writeExported(package, slides.fileName());
    return writeStored(package, appFolder, slides.folderPath(), subject);
}

} // namespace mms
