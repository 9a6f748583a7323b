// A fast share of the crash and full-disk matrix (build/bin/kill_matrix runs all of it): every few
// disk steps of each writing operation, the program is stopped or meets a full disk, is started
// again, and must leave the old or the new state, whole, with nothing left over.

#include "store/killmatrix.h"
#include "support/qtprint.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace mms::test::killmatrix {
namespace {

TEST(KillMatrix, EveryWritingOperationLeavesTheOldOrTheNewStateAfterACrashOrAFullDisk) {
    QTemporaryDir scratch;
    Matrix matrix(QStringLiteral(MMS_BIN_DIR), scratch.path());
    QString error;
    ASSERT_TRUE(matrix.prepare(error)) << error.toStdString();
    for (const Operation& op : Matrix::operations()) {
        SCOPED_TRACE(op.name.toStdString());
        // Coprime with the usual step counts, so that each kind of step is hit somewhere.
        const Outcome o = matrix.run(op, 7);
        EXPECT_GT(o.points, 0);
        EXPECT_EQ(o.faults, QStringList());
    }
}

} // namespace
} // namespace mms::test::killmatrix
