// Builds a binary language file from its editable source, refusing sources that would lose or shift
// a text: mms-langc SOURCE OUTPUT [REFERENCE-SOURCE]
#include "common/langsource.h"
#include "common/localisation.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>

#include <cstdio>

using namespace mms;

namespace {

int fail(const QString& message) {
    std::fprintf(stderr, "mms-langc: %s\n", message.toLocal8Bit().constData());
    return 1;
}

Status readSource(const QString& path, LanguageSource& out) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return Status::failure(QStringLiteral("cannot read %1: %2").arg(path, file.errorString()));
    }
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(file.readAll());
    if (decoder.hasError()) return Status::failure(QStringLiteral("%1 is not valid UTF-8").arg(path));
    return parseLanguageSource(text, path, out);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3 && argc != 4) {
        std::fprintf(stderr, "usage: mms-langc SOURCE OUTPUT [REFERENCE-SOURCE]\n");
        return 2;
    }
    const QString sourcePath = QString::fromLocal8Bit(argv[1]);
    const QString outputPath = QString::fromLocal8Bit(argv[2]);

    LanguageSource source;
    if (Status s = readSource(sourcePath, source); !s) return fail(s.message());
    if (argc == 4) {
        LanguageSource reference;
        if (Status s = readSource(QString::fromLocal8Bit(argv[3]), reference); !s) return fail(s.message());
        if (Status s = checkAgainstReference(source, reference); !s)
            return fail(sourcePath + QStringLiteral(": ") + s.message());
    }
    if (Status s = checkUsedEntries(source.texts); !s)
        return fail(sourcePath + QStringLiteral(": ") + s.message());

    QByteArray bytes;
    if (Status s = buildLanguageFile(source, QFileInfo(sourcePath).fileName(), bytes); !s) {
        return fail(sourcePath + QStringLiteral(": ") + s.message());
    }
    QSaveFile out(outputPath);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit()) {
        return fail(QStringLiteral("cannot write %1: %2").arg(outputPath, out.errorString()));
    }
    return 0;
}
