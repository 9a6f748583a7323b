#include "composer/widgets/slidestrip.h"

#include "common/localisation.h"
#include "composer/composerdocument.h"
#include "composer/composertexts.h"
#include "composer/sizelimit.h"
#include "composer/slidepicture.h"
#include "composer/slidestripmodel.h"
#include "composer/widgets/composeractions.h"
#include "composer/widgets/sizegauge.h"
#include "composer/widgets/slidestripview.h"

#include <QAction>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

namespace mms {

namespace {

QToolButton* stripButton(QWidget* parent, const char* objectName, QAction* command) {
    auto* button = new QToolButton(parent);
    button->setObjectName(QLatin1String(objectName));
    button->setDefaultAction(command);
    button->setIconSize(QSize(20, 20));
    button->setAutoRaise(true);
    return button;
}

// Holds a counter outside any layout. The counters change with every command, and a label in a
// layout has the whole window laid out again for each new text; the holder takes the place the
// label had and gives the label all of it.
class CounterHolder final : public QWidget {
public:
    CounterHolder(QLabel* label, QWidget* parent) : QWidget(parent), label_(label) {
        label->setParent(this);
        setSizePolicy(label->sizePolicy());
    }
    QSize sizeHint() const override { return label_->sizeHint(); }
    QSize minimumSizeHint() const override { return label_->minimumSizeHint(); }

protected:
    void resizeEvent(QResizeEvent*) override { label_->setGeometry(rect()); }

private:
    QLabel* label_;
};

} // namespace

SlideStrip::SlideStrip(ComposerDocument& document, const Localisation& loc, Dialogs& dialogs,
                       ComposerActions& actions, QWidget* parent)
    : QWidget(parent), document_(document), loc_(loc) {
    // Connected before the strip's model, so that the flag is up before the view hears of the
    // removal (it moves its current item then) and down only after the model has finished.
    connect(&document.message(), &MessageModel::aboutToRemove, this, [this] { removing_ = true; });
    model_ = new SlideStripModel(document.message(), this);
    connect(&document.message(), &MessageModel::removed, this, [this] { removing_ = false; });
    setObjectName(QStringLiteral("stripColumn"));
    auto* view = new SlideStripView(this);
    lstSlide = view;
    lstSlide->setObjectName(QStringLiteral("lstSlide"));
    lstSlide->setModel(model_);
    lstSlide->setViewMode(QListView::ListMode);
    lstSlide->setIconSize(kStripThumbnailSize);
    lstSlide->setUniformItemSizes(true);
    lstSlide->setSpacing(2);
    lstSlide->setSelectionMode(QAbstractItemView::SingleSelection);
    lstSlide->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lstSlide->setMinimumWidth(200);
    // A current item that differs from the document's current slide is the user's choice; the one
    // Qt picks by itself while the selected slide's row goes is not (the document shows the slide
    // that follows once the removal is done).
    connect(lstSlide->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& i) {
                if (i.isValid() && !removing_ && i.row() + 1 != document_.current())
                    emit slidePicked(static_cast<qint16>(i.row() + 1));
            });
    // A Ctrl-click can deselect the only selected item; the strip always keeps one.
    connect(lstSlide->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        const QModelIndex current = lstSlide->currentIndex();
        if (current.isValid() && !lstSlide->selectionModel()->isSelected(current))
            lstSlide->selectionModel()->select(current, QItemSelectionModel::ClearAndSelect);
    });
    connect(view, &SlideStripView::slideDropped, this, [this](int from, int to) {
        emit slideDragged(static_cast<qint16>(from), static_cast<qint16>(to));
    });
    connect(view, &SlideStripView::filesDropped, this, [this](const QStringList& paths, int position) {
        emit filesDropped(paths, static_cast<qint16>(position));
    });
    // Insert, Delete and the moves act on the strip while it has the focus.
    lstSlide->addActions({actions.add_slide, actions.rm_slide, actions.sendfront, actions.sendfwd,
                          actions.sendbwd, actions.sendback});

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 4, 8);
    layout->addWidget(lstSlide, 1);
    layout->addLayout(buildButtons(actions));
    layout->addLayout(buildCounters(dialogs));
    connect(&document.message(), &MessageModel::sizeChanged, this, [this] { recount(); });
}

QLayout* SlideStrip::buildButtons(ComposerActions& actions) {
    addCmd = stripButton(this, "addCmd", actions.add_slide);
    removeCmd = stripButton(this, "removeCmd", actions.rm_slide);
    playCmd = stripButton(this, "playCmd", actions.mnu_play);
    ffCmd = stripButton(this, "ffCmd", actions.sendfront);
    fCmd = stripButton(this, "fCmd", actions.sendfwd);
    rCmd = stripButton(this, "rCmd", actions.sendbwd);
    rrCmd = stripButton(this, "rrCmd", actions.sendback);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(2);
    for (QToolButton* b : {addCmd, removeCmd, playCmd})
        buttons->addWidget(b);
    buttons->addStretch(1);
    for (QToolButton* b : {ffCmd, fCmd, rCmd, rrCmd})
        buttons->addWidget(b);
    return buttons;
}

QLayout* SlideStrip::buildCounters(Dialogs& dialogs) {
    Frame1 = new QGroupBox(this);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    lblSlide = new QLabel(Frame1);
    lblSlide->setObjectName(QStringLiteral("lblSlide"));
    Frame2 = new QGroupBox(this);
    Frame2->setObjectName(QStringLiteral("Frame2"));
    lblSize = new QLabel(Frame2);
    lblSize->setObjectName(QStringLiteral("lblSize"));
    // The counters change with every command; their width must not move the window's columns.
    for (QLabel* counter : {lblSlide, lblSize})
        counter->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    (new QVBoxLayout(Frame1))->addWidget(new CounterHolder(lblSlide, Frame1));
    sizeGauge = new SizeGauge(loc_, dialogs, Frame2);
    connect(sizeGauge, &SizeGauge::limitChosen, this, [this](qint64 bytes) {
        document_.setSizeLimit(bytes);
        writeSizeLimitSetting(bytes);
    });
    auto* sizeLayout = new QVBoxLayout(Frame2);
    sizeLayout->addWidget(new CounterHolder(lblSize, Frame2));
    sizeLayout->addWidget(sizeGauge);
    auto* counters = new QHBoxLayout;
    counters->addWidget(Frame1, 2);
    counters->addWidget(Frame2, 3);
    return counters;
}

void SlideStrip::applyLanguage() {
    Frame1->setTitle(loc_.getMCrInterfaceStr(composertext::kSlidesFrame));
    Frame2->setTitle(loc_.getMCrInterfaceStr(composertext::kMessageSizeFrame));
    sizeGauge->applyLanguage();
    recount();
}

qint16 SlideStrip::selected() const {
    const QModelIndex current = lstSlide->currentIndex();
    return current.isValid() ? static_cast<qint16>(current.row() + 1) : qint16(0);
}

void SlideStrip::select(qint16 position) {
    if (position < 1 || position > model_->count()) return;
    const QModelIndex index = model_->index(position - 1);
    lstSlide->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    lstSlide->scrollTo(index);
}

void SlideStrip::resetIconSize() {
    lstSlide->setIconSize(kStripThumbnailSize);
}

// Running figures: a keystroke neither walks the list nor measures a file.
void SlideStrip::recount() {
    if (loc_.texts().interface.isEmpty()) return; // before the language is read
    const QString total = loc_.getMCrInterfaceStr(composertext::kTotal) + QStringLiteral(" : ");
    if (document_.message().isEmpty()) {
        lblSlide->setText(total + QLatin1Char('0'));
        lblSize->setText(total + QStringLiteral("0 byte"));
        sizeGauge->setSize(0);
        return;
    }
    // Beyond the counters' range they keep their last values.
    const std::optional<qint32> size = document_.runningSize();
    if (!size) return;
    lblSlide->setText(total + QString::number(document_.message().slides().runningSlideCount()));
    lblSize->setText(total + QString::number(*size) + QStringLiteral("bytes"));
    sizeGauge->setSize(*size);
}

} // namespace mms
