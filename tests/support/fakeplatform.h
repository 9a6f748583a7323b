#pragma once

#include "common/widgets/platform.h"
#include "support/recordingdevice.h"
#include "support/recordingsink.h"
#include "support/scriptedtime.h"

#include <QDialog>
#include <QStringList>
#include <deque>
#include <functional>
#include <vector>

namespace mms::test {

// Scripted dialogs: message boxes are recorded and answered as by RecordingSink; choosers answer
// from their own queues (cancelled when empty); a modal window is handed to the next queued hook,
// which drives its controls and closes it, or is rejected when no hook is queued. Nothing ever blocks.
class FakeDialogs final : public Recording<Dialogs> {
public:
    using ModalHook = std::function<void(QDialog&)>;

    QString chooseFolder(QWidget*, const QString& title, const QString& startPath) override {
        folderRequests << title + QLatin1Char('|') + startPath;
        return next(folderAnswers);
    }
    QString chooseSaveFile(QWidget*, const QString& title, const QString& initDir,
                           const QString& filter) override {
        saveFileRequests << title + QLatin1Char('|') + initDir + QLatin1Char('|') + filter;
        return next(saveFileAnswers);
    }
    void runModal(QDialog& dialog) override {
        ++modalRuns;
        if (modalHooks.empty()) {
            dialog.reject();
            return;
        }
        ModalHook hook = std::move(modalHooks.front());
        modalHooks.pop_front();
        hook(dialog);
    }

    std::deque<QString> folderAnswers;
    std::deque<QString> saveFileAnswers;
    std::deque<ModalHook> modalHooks;
    QStringList folderRequests;
    QStringList saveFileRequests;
    int modalRuns = 0;

private:
    static QString next(std::deque<QString>& queue) {
        if (queue.empty()) return QString();
        QString s = queue.front();
        queue.pop_front();
        return s;
    }
};

// All seams in one place: `platform` is what the windows get.
struct FakePlatform {
    FakeDialogs dialogs;
    FixedClock clock;
    ScriptedRandom random;
    RecordingDevice device;
    Platform platform{dialogs, clock, random, device};
};

} // namespace mms::test
