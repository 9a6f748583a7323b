#include "composer/slidestripmodel.h"
#include "support/qtprint.h"

#include <QAbstractItemModelTester>
#include <QIdentityProxyModel>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

QImage filled(Qt::GlobalColor colour) {
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

// Each item as "<number>.<duration>s<thumbnail colour>", read back through the model interface.
QString items(const SlideStripModel& model) {
    QStringList out;
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex i = model.index(row);
        const QImage thumbnail = model.data(i, Qt::DecorationRole).value<QImage>();
        out << model.data(i).toString().remove(u' ') +
                   (thumbnail.pixel(0, 0) == qRgb(255, 0, 0) ? u'r' : u'b');
    }
    return out.join(u' ');
}

// The tester expects the neighbours of an inserted or removed row to keep their data; the strip
// renumbers them (and reports that with dataChanged just after), so the tester sees the labels without
// their number. The numbers are checked through items() below.
class WithoutNumbers final : public QIdentityProxyModel {
public:
    QVariant data(const QModelIndex& index, int role) const override {
        const QVariant v = QIdentityProxyModel::data(index, role);
        return role == Qt::DisplayRole ? QVariant(v.toString().section(u' ', -1)) : v;
    }
};

// The rows of the last dataChanged, as "first-last".
QString lastChange(const QSignalSpy& spy) {
    if (spy.isEmpty()) return u"none"_s;
    const QList<QVariant>& args = spy.last();
    return u"%1-%2"_s.arg(args[0].toModelIndex().row()).arg(args[1].toModelIndex().row());
}

} // namespace

TEST(SlideStripModel, StaysAValidModelAndRenumbersOnlyTheRowsThatMoved) {
    SlideStripModel model;
    WithoutNumbers unnumbered;
    unnumbered.setSourceModel(&model);
    // A broken signal sequence aborts the test run with the tester's message.
    QAbstractItemModelTester tester(&unnumbered, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    for (qint16 seconds : {1, 2, 3})
        model.appendSlide(filled(Qt::red), SlideDur::fromNumber(seconds));
    EXPECT_TRUE(changed.isEmpty());
    model.insertSlide(1, filled(Qt::blue), SlideDur::fromNumber(9));
    EXPECT_EQ(items(model), u"1.9sb 2.1sr 3.2sr 4.3sr"_s);
    EXPECT_EQ(lastChange(changed), u"1-3"_s);
    QPersistentModelIndex moved = model.index(0); // the view's selection follows such indexes
    model.moveSlide(1, 3);
    EXPECT_EQ(moved.row(), 2);
    EXPECT_EQ(items(model), u"1.1sr 2.2sr 3.9sb 4.3sr"_s);
    EXPECT_EQ(lastChange(changed), u"0-2"_s);
    moved = model.index(3);
    model.moveSlide(4, 2);
    EXPECT_EQ(moved.row(), 1);
    EXPECT_EQ(items(model), u"1.1sr 2.3sr 3.2sr 4.9sb"_s);
    EXPECT_EQ(lastChange(changed), u"1-3"_s);
    model.removeSlide(1);
    EXPECT_EQ(items(model), u"1.3sr 2.2sr 3.9sb"_s);
    EXPECT_EQ(lastChange(changed), u"0-2"_s);

    changed.clear();
    model.setDuration(2, SlideDur::fromNumber(2)); // unchanged: nothing to report
    model.removeSlide(4);
    model.moveSlide(1, 1);
    EXPECT_TRUE(changed.isEmpty());
    CSlide slides;
    for (qint16 seconds : {3, 7, 9})
        slides.InsertAtBack(SlideDur::fromNumber(seconds), {}, {}, {});
    model.refreshLabels(slides);
    EXPECT_EQ(items(model), u"1.3sr 2.7sr 3.9sb"_s);
    EXPECT_EQ(lastChange(changed), u"1-1"_s);
    model.clear();
    EXPECT_EQ(model.rowCount(), 0);
}
