#pragma once

#include "composer/sizelimit.h"

#include <QWidget>
#include <array>

class QAction;
class QMenu;
class QToolButton;

namespace mms {

class Dialogs;
class Localisation;

// The message size against the limit, beside the size counter: a bar filled to the share of the
// limit the estimate takes, amber above 90 % and red above 100 %, with the size and the limit in its
// tooltip; and a button showing the limit whose menu offers the common carrier limits and a custom
// one (asked for in a small modal window).
class SizeGauge final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SizeGauge)

public:
    SizeGauge(const Localisation& texts, Dialogs& dialogs, QWidget* parent = nullptr);

    void applyLanguage();
    void setSize(qint64 bytes);
    void setLimit(qint64 bytes);
    qint64 size() const { return size_; }
    qint64 limit() const { return limit_; }
    GaugeLevel level() const { return gaugeLevel(size_, limit_); }

signals:
    // The user chose another limit; the gauge shows it already.
    void limitChosen(qint64 bytes);

private:
    class Bar;
    void choose(qint64 bytes);
    void chooseCustomLimit();
    void refresh();

    Bar* bar_ = nullptr;
    QToolButton* sizeLimitCmd = nullptr;
    QMenu* limitMenu_ = nullptr;
    std::array<QAction*, kSizeLimitPresets.size()> presets_{};
    QAction* mnu_limitCustom = nullptr;

    const Localisation& loc_;
    Dialogs& dialogs_;
    qint64 size_ = 0;
    qint64 limit_ = kDefaultSizeLimit;
};

} // namespace mms
