#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <vector>

// Runs each writing operation of the program in a child process, stopping it with SIGKILL before
// each of its disk steps in turn (and failing each step with a full disk in turn), then starts the
// program again and checks what the user is left with.
namespace mms::test::killmatrix {

// One operation as a command line: `program` ("mmsc" or "store_ops") in `binDir`, with "{home}" and
// "{out}" in `args` standing for the workspace and a folder outside it.
struct Operation {
    QString name;
    QString program;
    QStringList args;
};

struct Outcome {
    QString operation;
    int points = 0;     // disk steps the operation takes when nothing goes wrong
    int killed = 0;     // kill points tried
    int diskFull = 0;   // full-disk points tried
    QStringList faults; // what went wrong, one line each
};

class Matrix {
public:
    // Builds the shared starting workspace: a library, two stored messages, the working copy of one
    // of them, a draft and a sent log. False (with `error`) when a setup step fails.
    Matrix(QString binDir, QString scratch);
    bool prepare(QString& error);

    static std::vector<Operation> operations();
    // Tries every `stride`-th point (1 for all) of `op`.
    Outcome run(const Operation& op, int stride = 1) const;

private:
    struct Run {
        int exitCode = -1;
        bool crashed = false;
        QString err;
    };
    Run start(const Operation& op, const QString& home, const QString& fault, const QString& log) const;
    QString copyOfStart(const QString& tag) const;
    // What is wrong with `home` after a run that may leave the state `before` or `after` it.
    QString check(const QString& home, const QMap<QString, QByteArray>& before,
                  const QMap<QString, QByteArray>& after, bool mayBeAfter, bool mayBeBefore) const;

    QString binDir_;
    QString scratch_;
    QString start_;
};

} // namespace mms::test::killmatrix
