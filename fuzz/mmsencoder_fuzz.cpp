// The inputs of a send request: subject, slides, part file names and contents. Whatever is written
// must parse back as a well-formed multipart message holding exactly the files' bytes.
#include "package/mmsencoder.h"
#include "package/packagemembers.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

class Input {
public:
    Input(const uint8_t* data, size_t size) : data_(data), size_(size) {}
    int byte() { return pos_ < size_ ? data_[pos_++] : 0; }
    QByteArray take(size_t n) {
        n = std::min(n, size_ - pos_);
        QByteArray out(reinterpret_cast<const char*>(data_ + pos_), qsizetype(n));
        pos_ += n;
        return out;
    }

private:
    const uint8_t* data_;
    size_t size_;
    size_t pos_ = 0;
};

#define check(ok) checkAt((ok), __LINE__)
void checkAt(bool ok, int line) {
    if (ok) return;
    std::fprintf(stderr, "mmsencoder_fuzz.cpp:%d: check failed\n", line);
    std::abort();
}

class Reader {
public:
    explicit Reader(const QByteArray& b) : b_(b) {}
    quint8 byte() {
        check(pos_ < b_.size());
        return quint8(b_[pos_++]);
    }
    quint64 uintvar() {
        quint64 v = 0;
        for (int k = 0; k < 5; ++k) {
            const quint8 c = byte();
            v = v << 7 | (c & 0x7F);
            if (!(c & 0x80)) return v;
        }
        std::abort();
    }
    quint64 valueLength() {
        const quint8 first = byte();
        if (first <= 30) return first;
        check(first == 0x1F);
        return uintvar();
    }
    QByteArray take(quint64 n) {
        check(n <= quint64(b_.size() - pos_));
        const QByteArray out = b_.mid(pos_, qsizetype(n));
        pos_ += qsizetype(n);
        return out;
    }
    QByteArray text() { // up to and without the terminating zero
        const qsizetype end = b_.indexOf('\0', pos_);
        check(end >= 0);
        return take(quint64(end - pos_ + 1)).chopped(1);
    }
    bool atEnd() const { return pos_ == b_.size(); }

private:
    const QByteArray& b_;
    qsizetype pos_ = 0;
};

const QDir& scratch() {
    static QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/mmsfuzz-XXXXXX"));
    static QDir d(dir.path());
    return d;
}

void writeFile(const QString& name, const QByteArray& bytes) {
    QFile f(scratch().filePath(name));
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        std::fprintf(stderr, "%s: %s\n", qPrintable(f.fileName()), qPrintable(f.errorString()));
    check(f.isOpen());
    check(f.write(bytes) == bytes.size());
}

// A part written by generateMsgElement: headers consistent with their length, the data intact.
void checkPart(Reader& r, const QByteArray& expectedData) {
    const quint64 headersLength = r.uintvar();
    const quint64 dataLength = r.uintvar();
    const QByteArray headers = r.take(headersLength);
    check(r.take(dataLength) == expectedData);
    Reader h(headers);
    h.take(h.valueLength()); // the content type
    check(h.byte() == 0xC0 && h.byte() == 0x22 && h.byte() == '<');
    const QByteArray id = h.text();
    check(id.endsWith('>'));
    if (!h.atEnd()) {
        check(h.byte() == 0x8E);
        check(h.text() + '>' == id);
    }
    check(h.atEnd());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input in(data, size);
    static const char* const kPictures[] = {"gif", "jpg", "bmp", "3gp", "GIF", "png"};
    static const char* const kSounds[] = {"amr", "mid", "MID", "wav"};

    const QString subject = QString::fromUtf8(in.take(size_t(in.byte()) % 80)).remove(QChar(0));
    writeFile(QStringLiteral("main.smil"), in.take(size_t(in.byte())));
    mms::CSlide slides;
    const int count = in.byte() % 5;
    QList<QByteArray> contents{}; // in part order, after main.smil
    for (int n = 1; n <= count; ++n) {
        const int flags = in.byte();
        const QString number = QString::number(n);
        QString picture, text, sound;
        if (flags & 1) {
            const QString type = QString::fromLatin1(kPictures[(flags >> 3) % 6]);
            picture = QStringLiteral("/lib/p.") + type;
            // The package writer's name for it, which is where the encoder looks.
            const QString member = mms::pictureMember(picture, n).name;
            contents << in.take(size_t(in.byte()) * 3);
            writeFile(member, contents.last());
        }
        if (flags & 2) {
            text = QStringLiteral("t");
            contents << in.take(size_t(in.byte()));
            writeFile(QStringLiteral("text") + number + QStringLiteral(".txt"), contents.last());
        }
        if (flags & 4) {
            const QString type = QString::fromLatin1(kSounds[(flags >> 6) % 4]);
            sound = QStringLiteral("/lib/s.") + type;
            contents << in.take(size_t(in.byte()) * 2);
            writeFile(mms::soundMember(sound, n), contents.last());
        }
        slides.InsertAtBack(mms::SlideDur::fromText(QStringLiteral("3")), picture, text, sound);
    }

    QBuffer out;
    out.open(QIODevice::ReadWrite);
    QFile smil(scratch().filePath(QStringLiteral("main.smil")));
    check(smil.open(QIODevice::ReadOnly));
    const QByteArray smilBytes = smil.readAll();
    check(mms::writeSendRequest(slides, scratch().path(), subject, out).isOk());

    const QByteArray b = out.data();
    Reader r(b);
    check(r.take(15) == QByteArrayLiteral("\x8C\x80\x98") + "B1127540881" + '\0');
    check(r.take(6) == QByteArrayLiteral("\x8D\x90\x89\x01\x81\x96"));
    const quint64 subjectLength = r.valueLength();
    check(r.byte() == 0xEA && r.byte() == 0x7F);
    check(r.text() == subject.toUtf8());
    check(subjectLength == quint64(subject.toUtf8().size()) + 3);
    check(r.take(8) == QByteArrayLiteral("\x8A\x80\x8F\x81\x86\x81\x90\x81"));
    check(r.take(4) == QByteArrayLiteral("\x84\x1B\xB3\x89"));
    check(r.text() == "application/smil" && r.byte() == 0x8A && r.text() == "<AAAA>");
    check(r.uintvar() == quint64(contents.size()) + 1);
    checkPart(r, smilBytes);
    for (const QByteArray& c : contents)
        checkPart(r, c);
    check(r.atEnd());

    // A part of any name is either refused for its header size or written consistently.
    QByteArray name = in.take(size_t(in.byte())).replace('/', '_').replace('\0', '_');
    {
        // Prefixed: QDir takes a leading ':' for a resource path.
        const QString fileName = QStringLiteral("n") + QString::fromUtf8(name) + QStringLiteral(".txt");
        if (fileName.toUtf8().size() < 250 && !fileName.contains(QChar::ReplacementCharacter) &&
            !fileName.contains(QLatin1Char('\\'))) {
            writeFile(fileName, "x");
            mms::MmsEncoder encoder;
            QBuffer part;
            part.open(QIODevice::ReadWrite);
            if (encoder.generateMsgElement(part, scratch().filePath(fileName), 1) != 0) {
                Reader pr(part.data());
                checkPart(pr, "x");
                check(pr.atEnd());
            } else {
                check(part.data().isEmpty());
            }
            QFile::remove(scratch().filePath(fileName));
        }
    }
    return 0;
}
