#pragma once

#include "model/slideedits.h"
#include "model/status.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace mms {

// The message being edited, as the draft keeps it between a crash and the next start.
struct Draft {
    QString currentFile; // the stored message it came from; empty when it was never saved
    QString subject;
    qint16 current = 0; // the selected slide
    QList<SlideContent> slides;

    bool operator==(const Draft&) const = default;
};

// The draft as JSON text. Paths are kept as they are: the media stay where the slides refer to them
// (library, scratch folders or working copy), none of which a crash removes.
QByteArray encodeDraft(const Draft& draft);
// Nothing when `bytes` are not a draft this program wrote; `error` then says what is wrong.
std::optional<Draft> decodeDraft(const QByteArray& bytes, QString* error);
// Empties the pictures and sounds whose files are gone and returns those paths, each once.
QStringList dropMissingMedia(Draft& draft);

// The one draft of a workspace: UserData/draft.json below the application folder.
class DraftStore {
public:
    explicit DraftStore(QString appFolder) : appFolder_(std::move(appFolder)) {}

    QString path() const;
    bool exists() const;
    // Replaces the draft as a whole, never leaving half a file behind.
    Status write(const QByteArray& bytes) const;
    Status read(QByteArray& bytes) const;
    Status remove() const;
    // Renames a damaged draft so that it is kept but no longer offered; the new path, or empty
    // with `status` saying why it could not be moved.
    QString setAside(const QDateTime& when, Status& status) const;

private:
    QString appFolder_;
};

} // namespace mms
