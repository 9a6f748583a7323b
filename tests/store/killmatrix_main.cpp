// The whole crash and full-disk matrix, by hand: kill_matrix [OPERATION...]. Prints, for each
// operation, its disk steps, the kill and full-disk points tried and what went wrong; exit status 1
// when anything did.

#include "store/killmatrix.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTextStream>

using namespace mms::test::killmatrix;

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv); // the pictures of the library are drawn
    QTextStream out(stdout);
    const QStringList only = QCoreApplication::arguments().mid(1);
    QTemporaryDir scratch;
    Matrix matrix(QCoreApplication::applicationDirPath(), scratch.path());
    if (QString error; !matrix.prepare(error)) {
        out << "setup failed: " << error << Qt::endl;
        return 1;
    }
    int failures = 0;
    for (const Operation& op : Matrix::operations()) {
        if (!only.isEmpty() && !only.contains(op.name)) continue;
        const Outcome o = matrix.run(op);
        out << qSetFieldWidth(16) << Qt::left << o.operation << qSetFieldWidth(0) << " steps " << o.points
            << ", killed at " << o.killed << ", disk full at " << o.diskFull << ": "
            << (o.faults.isEmpty() ? QStringLiteral("ok")
                                   : QString::number(o.faults.size()) + QStringLiteral(" faults"))
            << Qt::endl;
        for (const QString& fault : o.faults)
            out << "    " << fault << Qt::endl;
        failures += int(o.faults.size());
    }
    return failures == 0 ? 0 : 1;
}
