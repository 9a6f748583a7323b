// The message size against the limit: the gauge beside the size counter, the media lengths measured
// again where a file may have changed outside the program, and the question before exporting a
// message over the limit. A keystroke never measures files: the list keeps a running total.

#include "common/filesize.h"
#include "common/localisation.h"
#include "composer/sizelimit.h"
#include "composer/widgets/frmmmsmain.h"
#include "composer/widgets/sizegauge.h"

#include <QEvent>
#include <exception>

namespace mms {

void frmMMSMain::remeasureMessage() {
    slides_.remeasureAll();
    refreshCounters();
}

// The window comes back to the front: a library file may have been edited meanwhile.
void frmMMSMain::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) remeasureMessage();
    QMainWindow::changeEvent(event);
}

bool frmMMSMain::goOnDespiteSize() {
    remeasureMessage();
    qint64 size = 0;
    try {
        size = slides_.runningTotalSize(QString(), QString(), state_.txtsubject);
    } catch (const std::exception&) {
        size = std::numeric_limits<qint64>::max(); // beyond counting is beyond any limit
    }
    if (!isOverLimit(size, sizeGauge->limit())) return true;
    const QString text = loc_.getMCrPromptStr(sizetext::kPromptExportOverLimit)
                             .replace(QStringLiteral("%1"), sizeText(loc_, size))
                             .replace(QStringLiteral("%2"), sizeText(loc_, sizeGauge->limit()));
    return platform_.dialogs.show(Message{text, loc_.getMCrInterfaceStr(0), Buttons::YesNo, Icon::Question,
                                          Answer::No}) == Answer::Yes;
}

} // namespace mms
