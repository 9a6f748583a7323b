#include "composer/widgets/frmmmsplayer.h"

#include "common/localisation.h"
#include "common/playbacktexts.h"
#include "common/widgets/platform.h"

#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPixmap>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace mms {

namespace {

constexpr int kZooms = 4;

QToolButton* playerButton(QWidget* parent, const char* objectName, const QIcon& icon) {
    auto* button = new QToolButton(parent);
    button->setObjectName(QLatin1String(objectName));
    button->setIcon(icon);
    button->setIconSize(QSize(22, 22));
    button->setAutoRaise(true);
    // The keys belong to the window: a focused button would take Space for itself.
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

// "m:ss" of the whole seconds still to come, counting a started second as whole.
QString timeLeftText(qint64 ms) {
    const qint64 seconds = (ms + 999) / 1000;
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

frmMMSPlayer::frmMMSPlayer(Platform& platform, const Localisation& texts, std::vector<ShowSlide> slides,
                           int start, QWidget* parent)
    : QDialog(parent), platform_(platform), texts_(texts),
      show_(std::move(slides), platform.clock, platform.device) {
    setObjectName(QStringLiteral("frmMMSPlayer"));
    buildUi();
    applyLanguage();
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, [this] { tick(); });
    show_.show(start);
    tick(); // slides of 0 seconds pass at once
}

frmMMSPlayer::~frmMMSPlayer() = default; // the show stops its sound

void frmMMSPlayer::buildUi() {
    auto* phone = new QFrame(this);
    phone->setObjectName(QStringLiteral("playerPhone"));
    phone->setStyleSheet(QStringLiteral("#playerPhone { background: #202124; border-radius: 18px; }"));
    picScreen = new QLabel(phone);
    picScreen->setObjectName(QStringLiteral("picScreen"));
    auto* phoneLayout = new QVBoxLayout(phone);
    phoneLayout->setContentsMargins(14, 22, 14, 22);
    phoneLayout->addWidget(picScreen);

    lblPosition = new QLabel(this);
    lblPosition->setObjectName(QStringLiteral("lblPosition"));
    lblTimeLeft = new QLabel(this);
    lblTimeLeft->setObjectName(QStringLiteral("lblTimeLeft"));
    auto* clock = new QLabel(this);
    clock->setPixmap(QIcon(QStringLiteral(":/icons/clock.svg")).pixmap(16, 16));
    auto* info = new QHBoxLayout;
    info->addWidget(lblPosition);
    info->addStretch(1);
    info->addWidget(clock);
    info->addWidget(lblTimeLeft);

    lblStatus = new QLabel(this);
    lblStatus->setObjectName(QStringLiteral("lblStatus"));
    lblStatus->setWordWrap(true);
    // Room for two lines, so that the window keeps its size as the status changes.
    lblStatus->setMinimumHeight(2 * lblStatus->fontMetrics().lineSpacing());
    lblStatus->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(phone, 0, Qt::AlignHCenter);
    layout->addLayout(info);
    layout->addWidget(lblStatus);
    layout->addLayout(buildControls());
}

QLayout* frmMMSPlayer::buildControls() {
    prevCmd = playerButton(this, "prevCmd", style()->standardIcon(QStyle::SP_MediaSkipBackward));
    pauseCmd = playerButton(this, "pauseCmd", style()->standardIcon(QStyle::SP_MediaPause));
    nextCmd = playerButton(this, "nextCmd", style()->standardIcon(QStyle::SP_MediaSkipForward));
    restartCmd = playerButton(this, "restartCmd", QIcon(QStringLiteral(":/icons/refresh.svg")));
    connect(prevCmd, &QToolButton::clicked, this, [this] { command(&SlideShow::previous); });
    connect(pauseCmd, &QToolButton::clicked, this, [this] { command(&SlideShow::togglePause); });
    connect(nextCmd, &QToolButton::clicked, this, [this] { command(&SlideShow::next); });
    connect(restartCmd, &QToolButton::clicked, this, [this] { command(&SlideShow::restart); });

    cboZoom = new QComboBox(this);
    cboZoom->setObjectName(QStringLiteral("cboZoom"));
    cboZoom->setFocusPolicy(Qt::NoFocus);
    for (int z = 1; z <= kZooms; ++z)
        cboZoom->addItem(QStringLiteral("%1\u00d7").arg(z), z);
    cboZoom->setCurrentIndex(zoom_ - 1);
    connect(cboZoom, &QComboBox::currentIndexChanged, this, [this](int index) {
        zoom_ = index + 1;
        renderScreen();
        adjustSize();
    });

    auto* buttons = new QHBoxLayout;
    for (QToolButton* button : {prevCmd, pauseCmd, nextCmd, restartCmd})
        buttons->addWidget(button);
    buttons->addStretch(1);
    buttons->addWidget(cboZoom);
    return buttons;
}

void frmMMSPlayer::applyLanguage() {
    using namespace playbacktext;
    setWindowTitle(texts_.getMCrInterfaceStr(kPlayMessage));
    prevCmd->setToolTip(texts_.getMCrInterfaceStr(kPreviousSlide));
    pauseCmd->setToolTip(texts_.getMCrInterfaceStr(kPauseResume));
    nextCmd->setToolTip(texts_.getMCrInterfaceStr(kNextSlide));
    restartCmd->setToolTip(texts_.getMCrInterfaceStr(kStartAgain));
    cboZoom->setToolTip(texts_.getMCrInterfaceStr(kZoom));
}

void frmMMSPlayer::tick() {
    show_.tick();
    refresh();
}

void frmMMSPlayer::command(void (SlideShow::*action)()) {
    (show_.*action)();
    tick();
}

void frmMMSPlayer::refresh() {
    using namespace playbacktext;
    if (show_.current() != rendered_) renderScreen();
    lblPosition->setText(QStringLiteral("%1 / %2").arg(show_.current() + 1).arg(show_.count()));
    lblTimeLeft->setText(timeLeftText(show_.msLeft()));

    QStringList status;
    if (show_.isPaused()) status << texts_.getMCrInterfaceStr(kPaused);
    if (show_.isFinished()) status << texts_.getMCrInterfaceStr(kMessageEnded);
    if (show_.isSilent()) status << texts_.getMCrInterfaceStr(kNoAudioOutput);
    lblStatus->setText(status.join(QLatin1Char('\n')));
    const bool stopped = show_.isPaused() || show_.isFinished();
    pauseCmd->setIcon(style()->standardIcon(stopped ? QStyle::SP_MediaPlay : QStyle::SP_MediaPause));

    if (stopped) {
        timer_.stop();
        if (show_.isFinished()) reportFailedSounds();
        return;
    }
    // Wake when the shown seconds change, which is also when the slide ends.
    const qint64 left = show_.msLeft();
    timer_.start(int(left % 1000 == 0 && left > 0 ? 1000 : left % 1000));
}

void frmMMSPlayer::renderScreen() {
    rendered_ = show_.current();
    // Drawn at the screen's own pixel density, so the zoomed screen stays sharp on HiDPI displays.
    const qreal ratio = devicePixelRatioF();
    const int pixels = std::max(1, qRound(zoom_ * ratio));
    QImage screen = renderPhoneScreen(show_.slide().screen, pixels);
    screen.setDevicePixelRatio(qreal(pixels) / zoom_);
    picScreen->setPixmap(QPixmap::fromImage(screen));
    picScreen->setFixedSize(kPhoneScreenSize * zoom_);
}

void frmMMSPlayer::reportFailedSounds() {
    const QStringList& failed = show_.failedSounds();
    if (failed.size() <= reported_) return;
    const QString names = failed.mid(reported_).join(QLatin1Char('\n'));
    reported_ = int(failed.size());
    platform_.dialogs.inform(
        texts_.getMCrErrStr(playbacktext::kSoundsSkipped).replace(QStringLiteral("%1"), names));
}

void frmMMSPlayer::done(int result) {
    timer_.stop();
    show_.stop();
    reportFailedSounds();
    QDialog::done(result);
}

void frmMMSPlayer::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Space:
        command(&SlideShow::togglePause);
        break;
    case Qt::Key_Left:
        command(&SlideShow::previous);
        break;
    case Qt::Key_Right:
        command(&SlideShow::next);
        break;
    case Qt::Key_Home:
        command(&SlideShow::restart);
        break;
    default:
        QDialog::keyPressEvent(event); // Esc closes
    }
}

} // namespace mms
