#include "store/privatecopy.h"

#include "store/workspace.h"

#include <QDir>

namespace mms {

Status PrivateCopy::open(const MessageStore& store, const QString& name, LoadedMessage& out) {
    const QString scratch = workspace::temp(store.appFolder());
    if (QDir().mkpath(scratch))
        dir_ = std::make_unique<QTemporaryDir>(scratch + QStringLiteral("/message-XXXXXX"));
    if (!dir_ || !dir_->isValid()) dir_ = std::make_unique<QTemporaryDir>();
    if (!dir_->isValid())
        return Status::failure(QStringLiteral("Cannot create a scratch folder: %1").arg(dir_->errorString()));
    folder_ = dir_->filePath(QStringLiteral("message"));
    if (Status s = store.copyPackage(name, folder_); !s) return s;
    return store.load(name, folder_, out);
}

void appendLoadedSlides(const LoadedMessage& message, CSlide& slides) {
    for (const LoadedSlide& slide : message.slides)
        slides.InsertAtBack(slide.duration, slide.picturePath, slide.text, slide.soundPath);
}

} // namespace mms
