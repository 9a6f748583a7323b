#include "composer/widgets/sizegauge.h"

#include "common/commontexts.h"
#include "common/filesize.h"
#include "common/localisation.h"
#include "common/widgets/platform.h"

#include <QActionGroup>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

namespace mms {

namespace {

QColor levelColour(GaugeLevel level) {
    switch (level) {
    case GaugeLevel::Normal:
        return QColor(0x1e, 0x8e, 0x3e); // green
    case GaugeLevel::Near:
        return QColor(0xf2, 0x99, 0x00); // amber
    default:
        return QColor(0xd9, 0x30, 0x25); // red
    }
}

} // namespace

// The bar itself: a rounded track, filled up to the limit at most.
class SizeGauge::Bar final : public QWidget {
public:
    explicit Bar(SizeGauge* gauge) : QWidget(gauge), gauge_(gauge) {
        setObjectName(QStringLiteral("gaugeBar"));
        setMinimumSize(60, 10);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.setRenderHint(QPainter::Antialiasing);
        const QRectF track = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
        p.setPen(QColor(0xda, 0xdc, 0xe0));
        p.setBrush(QColor(0xf1, 0xf3, 0xf4));
        p.drawRoundedRect(track, 4, 4);
        const double share = gauge_->limit() > 0 ? double(gauge_->size()) / double(gauge_->limit()) : 1.0;
        if (share <= 0) return;
        QRectF filled = track;
        filled.setWidth(qMax(8.0, track.width() * qMin(share, 1.0)));
        p.setPen(Qt::NoPen);
        p.setBrush(levelColour(gauge_->level()));
        p.drawRoundedRect(filled, 4, 4);
    }

private:
    SizeGauge* gauge_;
};

SizeGauge::SizeGauge(const Localisation& texts, Dialogs& dialogs, QWidget* parent)
    : QWidget(parent), loc_(texts), dialogs_(dialogs) {
    setObjectName(QStringLiteral("sizeGauge"));
    bar_ = new Bar(this);
    sizeLimitCmd = new QToolButton(this);
    sizeLimitCmd->setObjectName(QStringLiteral("sizeLimitCmd"));
    sizeLimitCmd->setPopupMode(QToolButton::InstantPopup);
    sizeLimitCmd->setAutoRaise(true);
    // The limit itself is the button's face; the menu arrow would only crowd it.
    sizeLimitCmd->setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; width: 0; }"));
    limitMenu_ = new QMenu(sizeLimitCmd);
    limitMenu_->setObjectName(QStringLiteral("limitMenu"));
    sizeLimitCmd->setMenu(limitMenu_);

    auto* group = new QActionGroup(this);
    for (size_t i = 0; i < kSizeLimitPresets.size(); ++i) {
        const qint64 preset = kSizeLimitPresets[i];
        QAction* action = limitMenu_->addAction(QString());
        action->setObjectName(QStringLiteral("mnu_limit%1").arg(preset / 1024));
        action->setCheckable(true);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, preset] { choose(preset); });
        presets_[i] = action;
    }
    limitMenu_->addSeparator();
    mnu_limitCustom = limitMenu_->addAction(QString());
    mnu_limitCustom->setObjectName(QStringLiteral("mnu_limitCustom"));
    mnu_limitCustom->setCheckable(true);
    group->addAction(mnu_limitCustom);
    connect(mnu_limitCustom, &QAction::triggered, this, [this] { chooseCustomLimit(); });

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(bar_, 1, Qt::AlignVCenter);
    layout->addWidget(sizeLimitCmd);
}

void SizeGauge::applyLanguage() {
    for (size_t i = 0; i < kSizeLimitPresets.size(); ++i)
        presets_[i]->setText(sizeText(loc_, kSizeLimitPresets[i]));
    mnu_limitCustom->setText(loc_.getMCrInterfaceStr(sizetext::kCustomLimit));
    sizeLimitCmd->setToolTip(loc_.getMCrInterfaceStr(sizetext::kSizeLimit));
    refresh();
}

void SizeGauge::setSize(qint64 bytes) {
    if (bytes == size_) return;
    size_ = bytes;
    refresh();
}

void SizeGauge::setLimit(qint64 bytes) {
    limit_ = bytes;
    refresh();
}

void SizeGauge::choose(qint64 bytes) {
    setLimit(bytes);
    emit limitChosen(bytes);
}

void SizeGauge::chooseCustomLimit() {
    QDialog dialog(window());
    dialog.setObjectName(QStringLiteral("frmSizeLimit"));
    dialog.setWindowTitle(loc_.getMCrInterfaceStr(sizetext::kSizeLimit));
    auto* label = new QLabel(loc_.getMCrInterfaceStr(sizetext::kLimitInKilobytes), &dialog);
    auto* txtLimit = new QSpinBox(&dialog);
    txtLimit->setObjectName(QStringLiteral("txtLimit"));
    txtLimit->setRange(kMinCustomLimitKB, kMaxCustomLimitKB);
    txtLimit->setValue(int(qBound<qint64>(kMinCustomLimitKB, limit_ / 1024, qint64(kMaxCustomLimitKB))));
    label->setBuddy(txtLimit);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    buttons->button(QDialogButtonBox::Ok)->setText(loc_.getMCrInterfaceStr(commontext::kOk));
    buttons->button(QDialogButtonBox::Cancel)->setText(loc_.getMCrInterfaceStr(commontext::kCancel));
    connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(label);
    layout->addWidget(txtLimit);
    layout->addWidget(buttons);
    dialogs_.runModal(dialog);
    if (dialog.result() == QDialog::Accepted)
        choose(qint64(txtLimit->value()) * 1024);
    else
        refresh(); // the menu goes back to the limit in force
}

void SizeGauge::refresh() {
    const auto preset = std::find(kSizeLimitPresets.begin(), kSizeLimitPresets.end(), limit_);
    if (preset != kSizeLimitPresets.end())
        presets_[size_t(preset - kSizeLimitPresets.begin())]->setChecked(true);
    else
        mnu_limitCustom->setChecked(true);
    try {
        sizeLimitCmd->setText(sizeText(loc_, limit_));
        setToolTip(loc_.getMCrInterfaceStr(sizetext::kGaugeTip)
                       .replace(QStringLiteral("%1"), sizeText(loc_, size_))
                       .replace(QStringLiteral("%2"), sizeText(loc_, limit_)));
        bar_->setToolTip(toolTip());
    } catch (const std::exception&) {
        // Before a language is loaded the gauge shows no texts.
    }
    bar_->update();
}

} // namespace mms
