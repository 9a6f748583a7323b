#pragma once

#include "composer/undocommands.h"
#include "model/clockrandom.h"
#include "model/messagemodel.h"
#include "model/messagesink.h"
#include "model/messagestate.h"
#include "model/status.h"

#include <QObject>
#include <QThreadPool>
#include <optional>

class QTimer;
class QUndoStack;

namespace mms {

class Localisation;
class MessageStore;
struct Draft;
struct LoadedMessage;

// The windows the document opens: the name dialogs and the subject prompt, which hand their result
// back through the document's MessageState, and the file chooser of the exports.
class DocumentWindows {
public:
    enum class NameDialog { Save, Open, Delete };
    // Runs the dialog on state(); false when it could not be shown at all.
    virtual bool runNameDialog(NameDialog which) = 0;
    // Runs the subject prompt (with the recipients for an MMS); true when it was confirmed.
    virtual bool promptSubject(bool forMms, QStringList* recipients) = 0;
    // The save-file chooser; empty when cancelled.
    virtual QString chooseSaveFile(const QString& title, const QString& initDir, const QString& filter) = 0;

protected:
    ~DocumentWindows() = default;
};

// Everything the user can do to the message, without a window: the slide commands and their
// history, New, Open, Save, Save as, Delete, the exports, the draft, and the size against the limit.
// Views follow the message through MessageModel's signals; a command that wants a slide shown says
// so with showSlide. Positions are 1-based; the current slide is the strip's selection, which the
// strip reports through setCurrent.
class ComposerDocument final : public QObject, private SlideEditTarget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ComposerDocument)

public:
    struct Options {
        QString appFolder;
        int draftDelayMs = 1500;
    };

    ComposerDocument(MessageSink& sink, const Clock& clock, const Localisation& loc, DocumentWindows& windows,
                     Options options, QObject* parent = nullptr);
    ~ComposerDocument() override;

    MessageModel& message() { return message_; }
    const MessageModel& message() const { return message_; }
    MessageState& state() { return state_; }
    const MessageState& state() const { return state_; }
    const QUndoStack& history() const { return *history_; }
    const QString& appFolder() const { return options_.appFolder; }

    qint16 current() const { return current_; }
    void setCurrent(qint16 position) { current_ = position; }
    bool isModified() const { return state_.isModified; }
    void setModified(bool modified);

    // --- Slide commands: each changes the message, records its step and shows the slide it leaves
    // selected. False when nothing changed.
    bool addSlide();
    bool removeSlide();
    bool moveToFront();
    bool moveOnePlace(bool towardsFront);
    bool moveToBack();
    bool dragSlide(qint16 from, qint16 to);
    // Writes `value` into `field` of the current slide (a duration as its box's text). Records the
    // change unless a slide is only being shown.
    void commit(SlideField field, const QString& value);
    // A command that first has to make a slide (typing or attaching on an empty message) undoes as
    // one step named `name`; false when no step was begun (the message has slides, or nothing is
    // recorded now). endStep closes a step that was begun.
    bool beginFirstSlideStep(const QString& name);
    void endStep();
    QString stepName(SlideField field, const QString& value) const;
    // While a Showing lives, commits only bring the slide in line with what the panel shows.
    class Showing {
    public:
        explicit Showing(ComposerDocument& d) : d_(d), was_(d.showing_) { d_.showing_ = true; }
        ~Showing() { d_.showing_ = was_; }
        Q_DISABLE_COPY_MOVE(Showing)

    private:
        ComposerDocument& d_;
        bool was_;
    };
    bool recording() const { return !showing_ && !replaying_; }
    void undo();
    void redo();

    // --- The message as a whole.
    void newMessage();
    void open();
    void openRecent(const QString& name);
    void save();
    void saveAs();
    void remove();
    void exportPackage();
    void exportMms();
    // Before a send: true when the stored message is the one on screen, after saving it when the
    // user agrees.
    bool readyToSend();
    // The last Save or Save as hit a store error (not a cancel).
    bool saveFailed() const { return saveFailed_; }
    // The close question and the clean-up after it; false keeps the window open.
    bool queryClose();

    // --- Size: the running estimate, the limit, files measured again.
    std::optional<qint32> runningSize() const;
    qint64 sizeLimit() const { return sizeLimit_; }
    void setSizeLimit(qint64 bytes) { sizeLimit_ = bytes; }
    void remeasure();
    // Before an export: true when the message is within the limit or the user goes on anyway.
    bool goOnDespiteSize();

    // --- Draft.
    // At start-up: a draft another session left is not written over until it has been offered.
    void holdDraft();
    void offerDraftRestore();
    void flushDraft();
    void removeDraft();

signals:
    // Show slide `position` (0: the message has no slide left) as the selected one.
    void showSlide(qint16 position);
    // New, Open or a restored draft replaced the whole message.
    void replaced();
    // The name or the modified flag changed.
    void titleChanged();
    void historyReplayed();
    // A message was saved or opened under `name` / deleted or found gone.
    void remembered(const QString& name);
    void forgotten(const QString& name);

private:
    friend class Showing;
    Answer ask(int prompt, int title, Buttons buttons, Answer defaultAnswer);
    void showError(int error, const QString& detail);
    void showWarning(const QString& text);
    MessageStore store() const;
    void finishCommand(qint16 show);
    void record(QUndoCommand* step);
    void replay(void (QUndoStack::*step)());
    std::optional<SlideState> stateAt(qint16 position) const;
    void recordChange(qint16 position, const SlideState& before, SlideField field, const QString& value);
    bool writeField(qint16 position, SlideField field, const QString& value);
    bool removeAt(qint16 position);
    void clear();
    void load(const LoadedMessage& loaded, qint16 show);
    void openStored(const QString& name, const QString& previousName);
    void saveUnder(const QString& previousName);
    void messageStored();
    void messageReplaced();
    bool chooseName(DocumentWindows::NameDialog which);
    // Draft helpers.
    void scheduleDraft();
    void writeDraft();
    void onDraftWritten(const Status& status);
    void restoreDraft(Draft draft);
    Draft currentDraft() const;
    // SlideEditTarget: the history's replay.
    void insertSlide(qint16 position, const SlideState& state) override;
    void removeSlide(qint16 position) override;
    void moveSlide(qint16 from, qint16 to) override;
    void setSlideContent(qint16 position, const SlideState& state) override;

    MessageSink& sink_;
    const Clock& clock_;
    const Localisation& loc_;
    DocumentWindows& windows_;
    Options options_;
    MessageModel message_;
    MessageState state_;
    qint16 current_ = 0;
    qint64 sizeLimit_;
    QUndoStack* history_;
    bool showing_ = false;
    bool replaying_ = false;
    bool saveFailed_ = false;
    QTimer* draftTimer_;
    bool draftHeld_ = false;
    bool draftWarned_ = false;
    // Drafts are written one after the other, off the window's thread; declared last so that it
    // waits for the last write before anything else goes.
    QThreadPool draftWriter_;
};

} // namespace mms
