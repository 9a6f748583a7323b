#pragma once

#include "common/widgets/platform.h"
#include "model/clockrandom.h"
#include "sound/multimediadevice.h"

#include <QDateTime>
#include <QDialog>
#include <QHash>
#include <QStringList>
#include <deque>
#include <functional>
#include <vector>

namespace mms::test {

// Scripted dialogs: message boxes are recorded and answered from a queue (their default answer
// when it is empty); choosers answer from their own queues (cancelled when empty); a modal window
// is handed to the next queued hook, which drives its controls and closes it, or is rejected when
// no hook is queued. Nothing ever blocks.
class FakeDialogs final : public Dialogs {
public:
    using ModalHook = std::function<void(QDialog&)>;

    Answer show(const Message& message) override {
        shown.push_back(message);
        if (answers.empty()) return message.defaultAnswer;
        const Answer a = answers.front();
        answers.pop_front();
        return a;
    }
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

    QStringList texts() const {
        QStringList out;
        for (const Message& m : shown)
            out << m.text;
        return out;
    }

    std::deque<Answer> answers;
    std::deque<QString> folderAnswers;
    std::deque<QString> saveFileAnswers;
    std::deque<ModalHook> modalHooks;
    std::vector<Message> shown;
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

class FixedClock final : public Clock {
public:
    QDateTime now() const override { return time; }
    QDateTime time = QDateTime(QDate(2024, 5, 17), QTime(14, 30, 5));
};

// Draws from a queue; 0 when it is empty.
class ScriptedRandom final : public RandomSource {
public:
    double uniform() override {
        if (draws.empty()) return 0.0;
        const double d = draws.front();
        draws.pop_front();
        return d;
    }
    std::deque<double> draws;
};

// Records every command string, answers from `resultFor` (by command; `result` for the rest) and
// lets the test report how a playback ended.
class RecordingDevice final : public MultimediaDevice {
public:
    int sendString(const QString& command) override {
        sent << command;
        return resultFor.value(command, result);
    }
    void emitNotify(Notify how) { notify(how); }

    QStringList sent;
    int result = 0;
    QHash<QString, int> resultFor;
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
