#include "store/privatecopy.h"

#include "common/workspace.h"

#include <QDir>

namespace mms {

Status PrivateCopy::open(const MessageStore& store, const QString& name, LoadedMessage& out) {
    const QString scratch = workspace::temp(store.appFolder());
    // The workspace's Temp first; when it is full or read-only, reading must still work.
    Status result = Status::failure(QStringLiteral("Cannot create a scratch folder"));
    for (const QString& parent : {scratch, QDir::tempPath()}) {
        dir_ = std::make_unique<ScratchFolder>();
        result = dir_->create(parent, QStringLiteral("message-"));
        if (!result) continue;
        folder_ = dir_->path() + QStringLiteral("/message");
        result = store.copyPackage(name, folder_);
        if (result) return store.load(name, folder_, out);
    }
    dir_.reset();
    return result;
}

void appendLoadedSlides(const LoadedMessage& message, CSlide& slides) {
    for (const LoadedSlide& slide : message.slides)
        slides.InsertAtBack(slide.duration, slide.picturePath, slide.text, slide.soundPath);
}

} // namespace mms
