#include "composer/draftstore.h"

#include "common/fileio.h"
#include "common/workspace.h"
#include "model/cslide.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>

namespace mms {

namespace {

const QString kFormat = QStringLiteral("mms-composer-draft");
constexpr int kVersion = 1;

QJsonValue durationValue(const SlideDur& d) {
    return d.isNumber() ? QJsonValue(d.number()) : QJsonValue(d.toString());
}

// A duration as the program holds it: a 16-bit number of seconds, or the digits of a new slide.
std::optional<SlideDur> durationFrom(const QJsonValue& v) {
    if (v.isDouble()) {
        const double n = v.toDouble();
        if (!(n >= 0 && n <= 32767) || n != std::floor(n)) return std::nullopt;
        return SlideDur::fromNumber(static_cast<qint16>(n));
    }
    const QString text = v.toString();
    if (text.isEmpty() || text.size() > 5) return std::nullopt;
    for (QChar c : text)
        if (!c.isDigit() || c.unicode() > '9') return std::nullopt;
    return SlideDur::fromText(text);
}

bool stringsOnly(const QJsonObject& o, std::initializer_list<const char*> keys) {
    for (const char* key : keys) {
        if (!o.value(QLatin1String(key)).isString()) return false;
    }
    return true;
}

std::optional<SlideContent> slideFrom(const QJsonValue& v) {
    const QJsonObject o = v.toObject();
    if (!stringsOnly(o, {"picture", "text", "sound"})) return std::nullopt;
    const std::optional<SlideDur> duration = durationFrom(o.value(QLatin1String("duration")));
    if (!duration) return std::nullopt;
    return SlideContent{*duration, o.value(QLatin1String("picture")).toString(),
                        o.value(QLatin1String("text")).toString(),
                        o.value(QLatin1String("sound")).toString()};
}

Status fileError(const QString& path, const QString& what) {
    return Status::failure(QDir::toNativeSeparators(path) + QStringLiteral(": ") + what);
}

} // namespace

QByteArray encodeDraft(const Draft& draft) {
    QJsonArray slides;
    for (const SlideContent& s : draft.slides) {
        slides.append(QJsonObject{{QStringLiteral("duration"), durationValue(s.duration)},
                                  {QStringLiteral("picture"), s.picture},
                                  {QStringLiteral("text"), s.text},
                                  {QStringLiteral("sound"), s.sound}});
    }
    const QJsonObject root{
        {QStringLiteral("format"), kFormat},         {QStringLiteral("version"), kVersion},
        {QStringLiteral("name"), draft.currentFile}, {QStringLiteral("subject"), draft.subject},
        {QStringLiteral("current"), draft.current},  {QStringLiteral("slides"), slides}};
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

std::optional<Draft> decodeDraft(const QByteArray& bytes, QString* error) {
    const auto fail = [error](const char* what) {
        if (error) *error = QString::fromLatin1(what);
        return std::nullopt;
    };
    QJsonParseError parse{};
    const QJsonDocument doc = QJsonDocument::fromJson(bytes, &parse);
    if (parse.error != QJsonParseError::NoError || !doc.isObject()) return fail("not a JSON object");
    const QJsonObject root = doc.object();
    if (root.value(QLatin1String("format")).toString() != kFormat ||
        root.value(QLatin1String("version")).toInt() != kVersion)
        return fail("not a draft of this program");
    const QJsonArray slides = root.value(QLatin1String("slides")).toArray();
    const int current = root.value(QLatin1String("current")).toInt(-1);
    if (!stringsOnly(root, {"name", "subject"}) || slides.size() > CSlide::kMaxSlides || current < 0 ||
        current > slides.size())
        return fail("the message fields are damaged");
    Draft draft{root.value(QLatin1String("name")).toString(),
                root.value(QLatin1String("subject")).toString(),
                static_cast<qint16>(current),
                {}};
    for (const QJsonValue& v : slides) {
        std::optional<SlideContent> slide = slideFrom(v);
        if (!slide) return fail("a slide is damaged");
        draft.slides.append(std::move(*slide));
    }
    return draft;
}

QStringList dropMissingMedia(Draft& draft) {
    QStringList missing;
    const auto check = [&missing](QString& path) {
        if (path.isEmpty() || QFileInfo::exists(path)) return;
        if (!missing.contains(path)) missing << path;
        path.clear();
    };
    for (SlideContent& s : draft.slides) {
        check(s.picture);
        check(s.sound);
    }
    return missing;
}

QString DraftStore::path() const {
    return workspace::userData(appFolder_) + QStringLiteral("/draft.json");
}

bool DraftStore::exists() const {
    return QFileInfo::exists(path());
}

Status DraftStore::write(const QByteArray& bytes) const {
    if (Status s = fileio::createPath(workspace::userData(appFolder_)); !s) return s;
    return fileio::writeFileSafely(path(), bytes);
}

Status DraftStore::read(QByteArray& bytes) const {
    QFile file(path());
    if (!file.open(QIODevice::ReadOnly)) return fileError(path(), file.errorString());
    bytes = file.readAll();
    return Status::ok();
}

Status DraftStore::remove() const {
    return fileio::removeTree(path());
}

QString DraftStore::setAside(const QDateTime& when, Status& status) const {
    const QString base = workspace::userData(appFolder_) + QStringLiteral("/draft-damaged-") +
                         when.toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString target = base + QStringLiteral(".json");
    for (int n = 2; QFileInfo::exists(target); ++n)
        target = base + QStringLiteral("-%1.json").arg(n);
    status = fileio::renamePath(path(), target);
    if (!status) return QString();
    status = Status::ok();
    return target;
}

} // namespace mms
