// A stored message as Open finds it: an index and a folder of any files. Input: the index up to the
// first NUL, then files, each a name up to a NUL, a 16-bit little-endian length and that many bytes
// (names lose their slashes; a name ending in '/' makes a folder). Open reads it, copies it to the
// working copy and reads that again: both reads agree, every part found is a file of the folder
// read, and every slide flagged with a missing part is reported.
#include "common/workspace.h"
#include "fuzzcheck.h"
#include "store/messageindex.h"
#include "store/messagestore.h"

#include <QFile>
#include <QFileInfo>
#include <cstdint>

namespace {

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    FUZZ_CHECK(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    FUZZ_CHECK(f.write(bytes) == bytes.size());
}

bool insideAndFile(const QString& path, const QString& folder) {
    return path.isEmpty() || (path.startsWith(folder + QLatin1Char('/')) && QFileInfo(path).isFile());
}

QString rebased(const QString& path, const QString& from, const QString& to) {
    return path.isEmpty() ? path : to + path.mid(from.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray input(reinterpret_cast<const char*>(data), qsizetype(size));
    const QString app = fuzzcheck::scratchPath();
    const QString name = QStringLiteral("m");
    const mms::MessageStore store(app);
    FUZZ_CHECK(QDir(app).removeRecursively() && QDir().mkpath(mms::workspace::messageFolder(app, name)));

    qsizetype at = input.indexOf('\0');
    const QByteArray index = at < 0 ? input : input.left(at);
    writeFile(mms::workspace::messageIndex(app, name), index);
    const QString folder = mms::workspace::messageFolder(app, name);
    while (at >= 0 && at + 1 < input.size()) {
        const qsizetype end = input.indexOf('\0', at + 1);
        if (end < 0) break;
        QString file = QString::fromUtf8(input.mid(at + 1, end - at - 1).left(40));
        const bool isFolder = file.endsWith(QLatin1Char('/'));
        file.remove(QLatin1Char('/'));
        const int length = end + 2 < input.size() ? quint8(input[end + 1]) | quint8(input[end + 2]) << 8 : 0;
        const QByteArray bytes = input.mid(end + 3, length);
        at = end + 3 + bytes.size() - 1;
        if (file.isEmpty() || file == QStringLiteral(".") || file == QStringLiteral("..")) continue;
        const QString path = folder + QLatin1Char('/') + file;
        if (QFileInfo::exists(path)) continue;
        if (isFolder)
            FUZZ_CHECK(QDir().mkdir(path));
        else
            writeFile(path, bytes);
    }

    mms::MessageIndex parsed;
    const bool indexOk = mms::parseMessageIndex(index, parsed).isOk();
    mms::LoadedMessage first;
    first.subject = QStringLiteral("untouched");
    const mms::Status read = store.load(name, folder, first);
    FUZZ_CHECK(read.isOk() == indexOk);
    if (!read) {
        FUZZ_CHECK(!read.message().isEmpty() && first.subject == QStringLiteral("untouched"));
        return 0;
    }
    FUZZ_CHECK(first.slides.size() == parsed.slides.size() && first.subject == parsed.subject);
    qsizetype missing = 0;
    for (size_t i = 0; i < first.slides.size(); ++i) {
        const mms::LoadedSlide& s = first.slides[i];
        const mms::IndexLine& line = parsed.slides[i];
        FUZZ_CHECK(insideAndFile(s.picturePath, folder) && insideAndFile(s.soundPath, folder));
        FUZZ_CHECK(line.hasPicture || s.picturePath.isEmpty());
        FUZZ_CHECK(line.hasSound || s.soundPath.isEmpty());
        FUZZ_CHECK(line.hasText || s.text.isEmpty());
        missing += (line.hasPicture && s.picturePath.isEmpty()) + (line.hasSound && s.soundPath.isEmpty());
    }
    FUZZ_CHECK(first.missingFiles.size() >= missing);

    FUZZ_CHECK(store.copyToWorkingCopy(name).isOk());
    const QString copy = mms::workspace::workingCopy(app);
    mms::LoadedMessage second;
    FUZZ_CHECK(store.load(name, copy, second).isOk());
    FUZZ_CHECK(second.slides.size() == first.slides.size() && second.missingFiles == first.missingFiles);
    for (size_t i = 0; i < first.slides.size(); ++i) {
        const mms::LoadedSlide& a = first.slides[i];
        const mms::LoadedSlide& b = second.slides[i];
        FUZZ_CHECK(a.duration == b.duration && a.text == b.text);
        FUZZ_CHECK(rebased(a.picturePath, folder, copy) == b.picturePath);
        FUZZ_CHECK(rebased(a.soundPath, folder, copy) == b.soundPath);
    }
    return 0;
}
