#include "sound/widgets/frmmmscropmidi.h"

#include "common/commontexts.h"
#include "common/localisation.h"
#include "common/soundtexts.h"
#include "common/widgets/platform.h"
#include "common/workspace.h"
#include "model/filelength.h"
#include "sound/midicrop.h"
#include "sound/midiplayer.h"

#include <QAction>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace mms {

namespace {

constexpr qint64 kSizeLimit = 102400;

// Seconds rounded to one decimal, as the mark boxes show them ("3.4").
QString tenths(qint64 ms) {
    return QString::number(double(qRound64(double(ms) / 100.0)) / 10.0, 'f', 1);
}

// A mark box's seconds: its text without the trailing "s".
double markSeconds(const QLineEdit* box) {
    QString text = box->text();
    text.chop(1);
    return text.trimmed().toDouble();
}

} // namespace

frmMMSCropMIDI::frmMMSCropMIDI(const Localisation& texts, Dialogs& dialogs, PlayerControl& player,
                               QWidget* parent)
    : QDialog(parent), texts_(texts), dialogs_(dialogs), player_(player),
      ownDecoder_(std::make_unique<MidiDecoder>()), decoder_(ownDecoder_.get()) {
    buildControls();
    Form_Load();
}

frmMMSCropMIDI::frmMMSCropMIDI(const Localisation& texts, Dialogs& dialogs, QWidget* parent)
    : QDialog(parent), texts_(texts), dialogs_(dialogs), ownPlayer_(std::make_unique<MidiPlayer>()),
      player_(*ownPlayer_), ownDecoder_(std::make_unique<MidiDecoder>()), decoder_(ownDecoder_.get()) {
    buildControls();
    Form_Load();
}

frmMMSCropMIDI::~frmMMSCropMIDI() {
    disconnect(&player_, nullptr, this, nullptr);
    player_.stop();
    player_.close();
}

QString frmMMSCropMIDI::formatTime(qint64 ms) {
    const qint64 t = qRound64(double(ms) / 1000.0);
    return QStringLiteral("%1:%2")
        .arg((t / 60) % 60, 2, 10, QLatin1Char('0'))
        .arg(t % 60, 2, 10, QLatin1Char('0'));
}

void frmMMSCropMIDI::buildControls() {
    setObjectName(QStringLiteral("frmMMSCropMIDI"));
    setModal(true);
    Label4 = new QLabel(this);
    txtName = new QLineEdit(this);
    txtName->setReadOnly(true);
    buildPlayerFrame();
    buildCropFrame();

    auto* nameRow = new QHBoxLayout;
    nameRow->addWidget(Label4);
    nameRow->addWidget(txtName, 1);
    auto* root = new QVBoxLayout(this);
    root->addLayout(nameRow);
    root->addWidget(Frame1);
    root->addWidget(Frame2);
    setMinimumWidth(460);

    // The open and close commands have no buttons of their own: the composer opens the tune, and
    // closing the window closes it.
    MnuOpen = new QAction(this);
    MnuClose = new QAction(this);
    MnuClose->setEnabled(false);
    addAction(MnuOpen);
    addAction(MnuClose);
    connectControls();

    const std::pair<QObject*, const char*> names[] = {
        {txtName, "txtName"},       {MMControl1, "MMControl1"}, {Slider1, "Slider1"},
        {Label1, "Label1"},         {Label2, "Label2"},         {Label3, "Label3"},
        {Label4, "Label4"},         {Label5, "Label5"},         {Label6, "Label6"},
        {Label7, "Label7"},         {Frame1, "Frame1"},         {Frame2, "Frame2"},
        {Command1, "Command1"},     {Command2, "Command2"},     {Command3, "Command3"},
        {Command4, "Command4"},     {lblStatus, "lblStatus"},   {txtCropStart, "txtCropStart"},
        {txtCropEnd, "txtCropEnd"}, {MnuOpen, "MnuOpen"},       {MnuClose, "MnuClose"}};
    for (const auto& [control, name] : names)
        control->setObjectName(QLatin1String(name));
}

// The player: its transport buttons, the position slider, the times and the status line.
void frmMMSCropMIDI::buildPlayerFrame() {
    Frame1 = new QGroupBox(this);
    MMControl1 = new QWidget(Frame1);
    auto transportButton = [this](QStyle::StandardPixmap icon, const char* name) {
        auto* b = new QToolButton(MMControl1);
        b->setObjectName(QLatin1String(name));
        b->setIcon(style()->standardIcon(icon));
        b->setAutoRaise(true);
        b->setEnabled(false);
        return b;
    };
    MMControl1Prev = transportButton(QStyle::SP_MediaSkipBackward, "MMControl1Prev");
    MMControl1Play = transportButton(QStyle::SP_MediaPlay, "MMControl1Play");
    MMControl1Stop = transportButton(QStyle::SP_MediaStop, "MMControl1Stop");
    auto* transport = new QHBoxLayout(MMControl1);
    transport->setContentsMargins(0, 0, 0, 0);
    transport->addWidget(MMControl1Prev);
    transport->addWidget(MMControl1Play);
    transport->addWidget(MMControl1Stop);

    Slider1 = new QSlider(Qt::Horizontal, Frame1);
    Slider1->setRange(0, 0);
    Slider1->setEnabled(false);
    Label1 = new QLabel(QStringLiteral("00:00"), Frame1);
    Label2 = new QLabel(Frame1);
    Label2->setAlignment(Qt::AlignHCenter);
    Label3 = new QLabel(Frame1);
    Label3->setAlignment(Qt::AlignRight);
    Label5 = new QLabel(Frame1);
    lblStatus = new QLabel(Frame1);

    auto* player = new QGridLayout(Frame1);
    auto* sliderRow = new QHBoxLayout;
    sliderRow->addWidget(MMControl1);
    sliderRow->addWidget(Slider1, 1);
    player->addLayout(sliderRow, 0, 0, 1, 3);
    player->addWidget(Label1, 1, 0);
    player->addWidget(Label2, 1, 1);
    player->addWidget(Label3, 1, 2);
    auto* statusRow = new QHBoxLayout;
    statusRow->addWidget(Label5);
    statusRow->addWidget(lblStatus, 1);
    player->addLayout(statusRow, 2, 0, 1, 3);
}

// The marks and the commands that play the marked stretch and crop it.
void frmMMSCropMIDI::buildCropFrame() {
    Frame2 = new QGroupBox(this);
    Label7 = new QLabel(Frame2);
    Label6 = new QLabel(Frame2);
    txtCropStart = new QLineEdit(Frame2);
    txtCropEnd = new QLineEdit(Frame2);
    for (QLineEdit* box : {txtCropStart, txtCropEnd}) {
        box->setReadOnly(true);
        box->setMaximumWidth(90);
    }
    Command1 = new QPushButton(Frame2);
    Command2 = new QPushButton(Frame2);
    Command3 = new QPushButton(Frame2);
    Command4 = new QPushButton(Frame2);
    Command1->setIcon(style()->standardIcon(QStyle::SP_MediaPlay));
    Command3->setEnabled(false);
    Command1->setEnabled(false);
    Command4->setEnabled(false);
    Command4->setDefault(true);

    auto* crop = new QGridLayout(Frame2);
    crop->addWidget(Label7, 0, 0);
    crop->addWidget(txtCropStart, 0, 1);
    crop->addWidget(Command2, 0, 2);
    crop->addWidget(Label6, 1, 0);
    crop->addWidget(txtCropEnd, 1, 1);
    crop->addWidget(Command3, 1, 2);
    auto* actions = new QHBoxLayout;
    actions->addWidget(Command1);
    actions->addStretch(1);
    actions->addWidget(Command4);
    crop->addLayout(actions, 2, 0, 1, 4);
    crop->setColumnStretch(3, 1);
}

void frmMMSCropMIDI::connectControls() {
    connect(MnuOpen, &QAction::triggered, this, [this] { MnuOpen_Click(); });
    connect(MnuClose, &QAction::triggered, this, [this] { MnuClose_Click(); });
    connect(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    connect(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    connect(Command3, &QPushButton::clicked, this, [this] { Command3_Click(); });
    connect(Command4, &QPushButton::clicked, this, [this] { Command4_Click(); });
    connect(MMControl1Prev, &QToolButton::clicked, this, [this] {
        player_.prev();
        MMControl1_StatusUpdate();
    });
    connect(MMControl1Play, &QToolButton::clicked, this, [this] {
        (void)player_.play();
        updatePlayerButtons();
    });
    connect(MMControl1Stop, &QToolButton::clicked, this, [this] {
        player_.stop();
        updatePlayerButtons();
    });
    connect(Slider1, &QSlider::sliderReleased, this, [this] { Slider1_Released(); });
    connect(&player_, &PlayerControl::statusUpdate, this, [this] { MMControl1_StatusUpdate(); });
}

void frmMMSCropMIDI::Form_Load() {
    isPreviewing = false;
    validflag = false;
    setWindowTitle(texts_.getMCrInterfaceStr(soundtext::kCropMidi));
    Command1->setText(texts_.getMCrInterfaceStr(soundtext::kPlaySelection));
    Command2->setText(texts_.getMCrInterfaceStr(soundtext::kSetStart));
    Command3->setText(texts_.getMCrInterfaceStr(soundtext::kSetEnd));
    Command4->setText(texts_.getMCrInterfaceStr(soundtext::kCrop));
    Label5->setText(texts_.getMCrInterfaceStr(soundtext::kStatusLabel));
    Label4->setText(texts_.getMCrInterfaceStr(soundtext::kTuneLabel));
    Frame1->setTitle(texts_.getMCrInterfaceStr(soundtext::kPlayerFrame));
    Frame2->setTitle(texts_.getMCrInterfaceStr(soundtext::kSelectionFrame));
    Label7->setText(texts_.getMCrInterfaceStr(soundtext::kStartLabel));
    Label6->setText(texts_.getMCrInterfaceStr(soundtext::kEndLabel));
    MMControl1Play->setToolTip(texts_.getMCrInterfaceStr(commontext::kPlaySound));
    MMControl1Stop->setToolTip(texts_.getMCrInterfaceStr(commontext::kStopSound));
}

void frmMMSCropMIDI::MnuOpen_Click() {
    const Status opened = player_.open(txtName->text());
    if (!opened) {
        dialogs_.inform(
            texts_.getMCrErrStr(soundtext::kErrSoundNotRead).replace(QStringLiteral("%1"), opened.message()));
    } else {
        MnuClose->setEnabled(true);
        Slider1->setEnabled(true);
    }
    showStatusLine();
    isPreviewing = false;
    updatePlayerButtons();
}

void frmMMSCropMIDI::MnuClose_Click() {
    player_.close();
    MnuClose->setEnabled(false);
    updatePlayerButtons();
}

void frmMMSCropMIDI::showStatusLine() {
    lblStatus->setText(texts_.getMCrInterfaceStr(soundtext::kPosition) + QLatin1Char(' ') +
                       formatTime(player_.position()) + QStringLiteral(" / ") + formatTime(player_.length()));
}

void frmMMSCropMIDI::MMControl1_StatusUpdate() {
    showStatusLine();
    const double stopSeconds =
        (!txtCropEnd->text().isEmpty() && isPreviewing) ? markSeconds(txtCropEnd) : 10000.0;
    const qint64 position = player_.position();
    const qint64 length = player_.length();
    Slider1->setMaximum(int(qRound64(double(length) / 1000.0)));
    // The player stops a stretch exactly at its end mark, so equality is the test for "reached".
    if (position != qRound64(stopSeconds * 1000.0) && position != length) {
        if (!Slider1->isSliderDown()) Slider1->setValue(int(qRound64(double(position) / 1000.0)));
    } else {
        player_.prev();
        Slider1->setValue(0);
    }
    Label1->setText(QStringLiteral("00:00"));
    Label2->setText(formatTime(qRound64(double(length) / 2.0)));
    Label3->setText(formatTime(length));
    updatePlayerButtons();
}

void frmMMSCropMIDI::Command2_Click() {
    txtCropStart->setText(tenths(player_.position()) + QLatin1Char('s'));
    Command3->setEnabled(true);
}

void frmMMSCropMIDI::Command3_Click() {
    if (txtCropStart->text().isEmpty()) return;
    const QString end = tenths(player_.position());
    if (markSeconds(txtCropStart) >= end.toDouble()) {
        dialogs_.inform(texts_.getMCrErrStr(soundtext::kErrCropEndNotAfterStart));
        return;
    }
    txtCropEnd->setText(end + QLatin1Char('s'));
    Command1->setEnabled(true);
    Command4->setEnabled(true);
}

void frmMMSCropMIDI::Command1_Click() {
    const double start = markSeconds(txtCropStart);
    const double end = markSeconds(txtCropEnd);
    if (end <= start) {
        dialogs_.inform(texts_.getMCrErrStr(soundtext::kErrCropEndNotAfterStart));
        return;
    }
    player_.stop();
    player_.setFrom(qRound64(start * 1000.0));
    player_.setTo(qRound64(end * 1000.0));
    (void)player_.play();
    isPreviewing = true;
    updatePlayerButtons();
}

void frmMMSCropMIDI::Command4_Click() {
    player_.stop();
    validflag = false;
    decoder_->setMessageSink(&dialogs_);
    const CropTexts refusals{texts_.getMCrErrStr(soundtext::kErrCropEndNotAfterStart),
                             texts_.getMCrErrStr(soundtext::kErrCropEndBeyondTune),
                             texts_.getMCrErrStr(soundtext::kErrCropStartBeforeTune)};
    if (cropMidi(*decoder_, txtName->text(), outfilename, txtCropStart->text(), txtCropEnd->text(), refusals,
                 dialogs_)) {
        player_.close();
        validflag = true;
    } else {
        dialogs_.inform(texts_.getMCrErrStr(soundtext::kErrCropFailed));
    }
    done(validflag ? Accepted : Rejected);
}

void frmMMSCropMIDI::done(int result) {
    player_.stop();
    player_.close();
    MnuClose->setEnabled(false);
    QDialog::done(result);
}

void frmMMSCropMIDI::Slider1_Released() {
    if (!player_.isOpen()) return;
    const bool wasPlaying = player_.isPlaying();
    player_.seek(qint64(Slider1->value()) * 1000);
    if (wasPlaying) (void)player_.play();
    showStatusLine();
}

void frmMMSCropMIDI::updatePlayerButtons() {
    const bool open = player_.isOpen();
    const bool playing = open && player_.isPlaying();
    MMControl1Prev->setEnabled(open);
    MMControl1Play->setEnabled(open && !playing);
    MMControl1Stop->setEnabled(playing);
}

QString cropOutputPath(const QString& appFolder, double uniform) {
    const int number = int(uniform * 90000.0) + 10000;
    return workspace::tmpMid(appFolder) + QLatin1Char('/') + QString::number(number) + QStringLiteral(".mid");
}

QString runCropWindow(Platform& platform, const Localisation& texts, const QString& appFolder,
                      const QString& inputPath, QWidget* parent, PlayerControl* player,
                      MidiDecoder* decoder) {
    // A cropped tune already on a slide may hold the drawn name: draw again rather than replace it.
    QString output = cropOutputPath(appFolder, platform.random.uniform());
    for (int attempt = 0; attempt < 100 && QFileInfo::exists(output); ++attempt)
        output = cropOutputPath(appFolder, platform.random.uniform());
    auto window = player ? std::make_unique<frmMMSCropMIDI>(texts, platform.dialogs, *player, parent)
                         : std::make_unique<frmMMSCropMIDI>(texts, platform.dialogs, parent);
    if (decoder) window->setDecoder(*decoder);
    window->txtName->setText(inputPath);
    window->outfilename = output;
    window->validflag = false;
    window->MnuOpen_Click();
    platform.dialogs.runModal(*window);
    if (!window->validflag) return QString();
    if (fileLength(output) >= kSizeLimit) {
        platform.dialogs.inform(texts.getMCrErrStr(soundtext::kErrSoundTooLarge));
        return QString();
    }
    return output;
}

} // namespace mms
