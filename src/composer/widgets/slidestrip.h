#pragma once

#include <QWidget>

class QAction;
class QGroupBox;
class QLabel;
class QListView;
class QToolButton;

namespace mms {

class ComposerActions;
class ComposerDocument;
class Dialogs;
class Localisation;
class SizeGauge;
class SlideStripModel;

// The strip column: the slides as a list of thumbnails (lstSlide), the buttons of the strip
// commands, and the counters of slides and bytes with the size gauge. The strip shows the message
// through SlideStripModel and keeps only its selection: a selection the document did not make is
// the user's choice of a slide, reported with slidePicked.
class SlideStrip final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SlideStrip)

public:
    SlideStrip(ComposerDocument& document, const Localisation& loc, Dialogs& dialogs,
               ComposerActions& actions, QWidget* parent);

    void applyLanguage();
    const SlideStripModel& model() const { return *model_; }
    SizeGauge& gauge() const { return *sizeGauge; }
    // 1-based position of the selected item, 0 when the strip is empty.
    qint16 selected() const;
    // Makes item `position` the selected and highlighted item (without showing it).
    void select(qint16 position);
    void resetIconSize();
    // The counters: the number of slides and the running size estimate.
    void recount();

signals:
    void slidePicked(qint16 position);
    void slideDragged(qint16 from, qint16 to);
    void filesDropped(const QStringList& paths, qint16 position);

private:
    QLayout* buildButtons(ComposerActions& actions);
    QLayout* buildCounters(Dialogs& dialogs);

    QListView* lstSlide = nullptr;
    QToolButton* addCmd = nullptr;
    QToolButton* removeCmd = nullptr;
    QToolButton* playCmd = nullptr;
    QToolButton* ffCmd = nullptr;
    QToolButton* fCmd = nullptr;
    QToolButton* rCmd = nullptr;
    QToolButton* rrCmd = nullptr;
    QGroupBox* Frame1 = nullptr; // around lblSlide
    QGroupBox* Frame2 = nullptr; // around lblSize
    QLabel* lblSlide = nullptr;
    QLabel* lblSize = nullptr;
    SizeGauge* sizeGauge = nullptr;

    ComposerDocument& document_;
    const Localisation& loc_;
    SlideStripModel* model_ = nullptr;
    bool removing_ = false;
};

} // namespace mms
