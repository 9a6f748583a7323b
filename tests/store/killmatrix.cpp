#include "store/killmatrix.h"

#include "package/archivereader.h"
#include "sound/midi_testfile.h"

#include <QBuffer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QProcess>

namespace mms::test::killmatrix {

namespace {

const QString kNoSpace = QStringLiteral("No space left on device");

QString describeFault(const QString& fault, const QString& what) {
    return fault + QStringLiteral(": ") + what;
}

void copyTree(const QString& from, const QString& to) {
    QDir().mkpath(to);
    QDirIterator it(from, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo entry(it.nextFileInfo());
        const QString target = to + QLatin1Char('/') + QDir(from).relativeFilePath(entry.filePath());
        if (entry.isDir())
            QDir().mkpath(target);
        else
            QFile::copy(entry.filePath(), target);
    }
}

// A picture with some detail, so that its conversion has work to do.
QByteArray picture(int size, const char* format) {
    QImage image(size, size, QImage::Format_RGB32);
    QPainter painter(&image);
    for (int y = 0; y < size; y += 8)
        for (int x = 0; x < size; x += 8)
            painter.fillRect(x, y, 8, 8, QColor::fromHsv((x * 7 + y * 3) % 360, 200, 100 + (x + y) % 150));
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) file.write(bytes);
}

// An export is dated when it is written: its members are compared instead of its bytes.
QByteArray contentOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return QByteArrayLiteral("<unreadable>");
    if (!path.endsWith(QLatin1String(".tpl"))) return file.readAll();
    QByteArray members = "<tar>";
    for (const ArchivedMember& m : readTar(path))
        members += m.name.toUtf8() + '\n' + m.bytes;
    return members;
}

QString differences(const QMap<QString, QByteArray>& seen, const QMap<QString, QByteArray>& wanted) {
    QStringList lines;
    for (auto it = seen.begin(); it != seen.end(); ++it)
        if (!wanted.contains(it.key()))
            lines << QStringLiteral("+") + it.key();
        else if (wanted.value(it.key()) != it.value())
            lines << QStringLiteral("~") + it.key();
    for (auto it = wanted.begin(); it != wanted.end(); ++it)
        if (!seen.contains(it.key())) lines << QStringLiteral("-") + it.key();
    return lines.join(QLatin1Char(' '));
}

} // namespace

Matrix::Matrix(QString binDir, QString scratch)
    : binDir_(std::move(binDir)), scratch_(std::move(scratch)), start_(scratch_ + QStringLiteral("/start")) {}

std::vector<Operation> Matrix::operations() {
    const QString lib = QStringLiteral("{home}/UserData/");
    const QString pic = lib + QStringLiteral("Picture/a.png"), pic2 = lib + QStringLiteral("Picture/b.jpg");
    const QString big = lib + QStringLiteral("Picture/big.bmp"),
                  tune = lib + QStringLiteral("Sound/tune.mid");
    const QStringList home{QStringLiteral("--home"), QStringLiteral("{home}")};
    const auto mmsc = [&](const char* name, const QStringList& args) {
        return Operation{QLatin1String(name), QStringLiteral("mmsc"), home + args};
    };
    const auto ops = [](const char* name, const QStringList& args) {
        return Operation{QLatin1String(name), QStringLiteral("store_ops"),
                         QStringList{QStringLiteral("{home}")} + args};
    };
    const QString s = QStringLiteral("--slide"), p = QStringLiteral("--pic"), t = QStringLiteral("--text"),
                  so = QStringLiteral("--sound");
    return {
        mmsc("save-new", {QStringLiteral("build"), s, p, pic, t, QStringLiteral("new"), so, tune,
                          QStringLiteral("--save"), QStringLiteral("fresh")}),
        mmsc("save-over-more",
             {QStringLiteral("build"), s, p, pic2, s, t, QStringLiteral("two"), s, p, pic, so, tune, s, t,
              QStringLiteral("four"), QStringLiteral("--save"), QStringLiteral("greeting")}),
        mmsc("save-over-fewer", {QStringLiteral("build"), s, t, QStringLiteral("only"),
                                 QStringLiteral("--save"), QStringLiteral("greeting")}),
        mmsc("save-converted",
             {QStringLiteral("build"), s, p, big, QStringLiteral("--save"), QStringLiteral("converted")}),
        ops("save-as", {QStringLiteral("saveas"), QStringLiteral("copy")}),
        ops("save-opened", {QStringLiteral("saveas"), QStringLiteral("greeting")}),
        ops("delete", {QStringLiteral("delete"), QStringLiteral("other")}),
        ops("open", {QStringLiteral("open"), QStringLiteral("other")}),
        ops("new", {QStringLiteral("new")}),
        mmsc("export", {QStringLiteral("export"), QStringLiteral("greeting"), QStringLiteral("{out}/g.tpl")}),
        mmsc("export-mms",
             {QStringLiteral("mms"), QStringLiteral("greeting"), QStringLiteral("{out}/g.mms")}),
        ops("draft", {QStringLiteral("draft"), QStringLiteral("later")}),
        mmsc("midi-crop", {QStringLiteral("crop"), tune, QStringLiteral("0.5"), QStringLiteral("2"),
                           QStringLiteral("{out}/short.mid")}),
        mmsc("picture-jpeg", {QStringLiteral("jpeg"), big, QStringLiteral("{out}/big.jpg")}),
        ops("sent-log", {QStringLiteral("sent"), QStringLiteral("greeting")}),
    };
}

bool Matrix::prepare(QString& error) {
    const QString home = start_ + QStringLiteral("/home");
    writeFile(home + QStringLiteral("/UserData/Picture/a.png"), picture(64, "PNG"));
    writeFile(home + QStringLiteral("/UserData/Picture/b.jpg"), picture(96, "JPEG"));
    writeFile(home + QStringLiteral("/UserData/Picture/big.bmp"), picture(320, "BMP"));
    writeFile(home + QStringLiteral("/UserData/Sound/tune.mid"), midifile::cMajorScale(8));
    QDir().mkpath(start_ + QStringLiteral("/out"));
    // Earlier exports, so that replacing one is tried too.
    writeFile(start_ + QStringLiteral("/out/g.mms"), "an earlier request");
    const QStringList lib{QStringLiteral("{home}/UserData/Picture/a.png"),
                          QStringLiteral("{home}/UserData/Sound/tune.mid")};
    const std::vector<Operation> setup{
        {QStringLiteral("store greeting"),
         QStringLiteral("mmsc"),
         {QStringLiteral("--home"), QStringLiteral("{home}"), QStringLiteral("build"),
          QStringLiteral("--subject"), QStringLiteral("Hello"), QStringLiteral("--slide"),
          QStringLiteral("--pic"), lib[0], QStringLiteral("--text"), QStringLiteral("first"),
          QStringLiteral("--slide"), QStringLiteral("--sound"), lib[1], QStringLiteral("--slide"),
          QStringLiteral("--text"), QStringLiteral("third"), QStringLiteral("--save"),
          QStringLiteral("greeting")}},
        {QStringLiteral("store other"),
         QStringLiteral("mmsc"),
         {QStringLiteral("--home"), QStringLiteral("{home}"), QStringLiteral("build"),
          QStringLiteral("--slide"), QStringLiteral("--text"), QStringLiteral("other"),
          QStringLiteral("--save"), QStringLiteral("other")}},
        {QStringLiteral("open greeting"),
         QStringLiteral("store_ops"),
         {QStringLiteral("{home}"), QStringLiteral("open"), QStringLiteral("greeting")}},
        {QStringLiteral("draft"),
         QStringLiteral("store_ops"),
         {QStringLiteral("{home}"), QStringLiteral("draft"), QStringLiteral("before")}},
        {QStringLiteral("sent log"),
         QStringLiteral("store_ops"),
         {QStringLiteral("{home}"), QStringLiteral("sent"), QStringLiteral("other")}},
        {QStringLiteral("start"),
         QStringLiteral("store_ops"),
         {QStringLiteral("{home}"), QStringLiteral("start")}},
    };
    for (const Operation& op : setup) {
        const Run r = start(op, home, {}, {});
        if (r.exitCode != 0) {
            error = op.name + QStringLiteral(": ") + r.err;
            return false;
        }
    }
    return true;
}

Matrix::Run Matrix::start(const Operation& op, const QString& home, const QString& fault,
                          const QString& log) const {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.remove(QStringLiteral("MMS_FAULT"));
    env.remove(QStringLiteral("MMS_FAULT_LOG"));
    if (!fault.isEmpty()) env.insert(QStringLiteral("MMS_FAULT"), fault);
    if (!log.isEmpty()) env.insert(QStringLiteral("MMS_FAULT_LOG"), log);
    p.setProcessEnvironment(env);
    QStringList args = op.args;
    const QString out = QFileInfo(home).absolutePath() + QStringLiteral("/out");
    for (QString& a : args)
        a.replace(QStringLiteral("{home}"), home).replace(QStringLiteral("{out}"), out);
    p.start(binDir_ + QLatin1Char('/') + op.program, args);
    if (!p.waitForFinished(60000)) {
        p.kill(); // this child only, by its own pid
        p.waitForFinished();
        return {-1, true, QStringLiteral("did not finish")};
    }
    const bool crashed = p.exitStatus() == QProcess::CrashExit;
    return {crashed ? -1 : p.exitCode(), crashed, QString::fromLocal8Bit(p.readAllStandardError()).trimmed()};
}

QString Matrix::copyOfStart(const QString& tag) const {
    const QString run = scratch_ + QLatin1Char('/') + tag;
    QDir(run).removeRecursively();
    copyTree(start_, run);
    return run + QStringLiteral("/home");
}

Matrix::Snapshot Matrix::visible(const QString& home) const {
    const QString run = QFileInfo(home).absolutePath();
    Snapshot files;
    QDirIterator it(run, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo entry(it.nextFileInfo());
        const QString rel = QDir(run).relativeFilePath(entry.filePath());
        // Temp is checked on its own; upload.tpl is the export's own hand-over file, replaced each time.
        if (rel == QLatin1String("home/Temp") || rel.startsWith(QLatin1String("home/Temp/")) ||
            rel == QLatin1String("home/upload.tpl"))
            continue;
        files.insert(rel, entry.isDir() ? QByteArrayLiteral("<folder>") : contentOf(entry.filePath()));
    }
    return files;
}

Matrix::Snapshot Matrix::temp(const QString& home) const {
    Snapshot entries;
    QDirIterator it(home + QStringLiteral("/Temp"), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        entries.insert(QDir(home).relativeFilePath(it.next()), {});
    return entries;
}

QString Matrix::check(const QString& home, const Snapshot& before, const Snapshot& after, bool mayBeAfter,
                      bool mayBeBefore) const {
    const Snapshot seen = visible(home);
    QStringList problems;
    if (!(mayBeBefore && seen == before) && !(mayBeAfter && seen == after))
        problems << QStringLiteral("neither before nor after: ") +
                        differences(seen, mayBeBefore ? before : after);
    const Snapshot library = visible(start_ + QStringLiteral("/home"));
    for (auto it = library.begin(); it != library.end(); ++it)
        if (it.key().contains(QLatin1String("/UserData/Picture")) ||
            it.key().contains(QLatin1String("/UserData/Sound")))
            if (seen.value(it.key()) != it.value())
                problems << QStringLiteral("library file touched: ") + it.key();
    if (const Snapshot left = temp(home); left != temp(start_ + QStringLiteral("/home")))
        problems << QStringLiteral("left in Temp: ") + QStringList(left.keys()).join(QLatin1Char(' '));
    return problems.join(QStringLiteral("; "));
}

Outcome Matrix::run(const Operation& op, int stride) const {
    Outcome outcome{op.name, 0, 0, 0, {}};
    const Operation restart{QStringLiteral("start"),
                            QStringLiteral("store_ops"),
                            {QStringLiteral("{home}"), QStringLiteral("start")}};
    const QString log = scratch_ + QLatin1Char('/') + op.name + QStringLiteral(".log");
    QFile::remove(log);
    const QString reference = copyOfStart(op.name);
    const Snapshot before = visible(reference);
    if (const Run r = start(op, reference, {}, log); r.exitCode != 0) {
        outcome.faults << describeFault(QStringLiteral("no fault"), r.err);
        return outcome;
    }
    QFile counted(log);
    outcome.points = counted.open(QIODevice::ReadOnly) ? int(counted.readAll().count('\n')) : 0;
    (void)start(restart, reference, {}, {});
    const Snapshot after = visible(reference);
    if (const QString problem = check(reference, before, after, true, false); !problem.isEmpty())
        outcome.faults << describeFault(QStringLiteral("no fault"), problem);

    for (int k = 1; k <= outcome.points; k += stride) {
        const QString kill = QStringLiteral("kill:%1").arg(k), full = QStringLiteral("enospc:%1").arg(k);
        QString home = copyOfStart(op.name + QStringLiteral("-k"));
        ++outcome.killed;
        if (const Run r = start(op, home, kill, {}); !r.crashed)
            outcome.faults << describeFault(kill,
                                            QStringLiteral("the program was not stopped (") + r.err + u')');
        if (const Run r = start(restart, home, {}, {}); r.exitCode != 0)
            outcome.faults << describeFault(kill, QStringLiteral("the next start failed: ") + r.err);
        if (const QString problem = check(home, before, after, true, true); !problem.isEmpty())
            outcome.faults << describeFault(kill, problem);

        home = copyOfStart(op.name + QStringLiteral("-f"));
        ++outcome.diskFull;
        const Run r = start(op, home, full, {});
        // A step that fails reports the full disk and changes nothing; one whose failure does not
        // matter (scratch that cannot be removed) lets the operation succeed.
        if (r.exitCode != 0 && !r.err.contains(kNoSpace))
            outcome.faults << describeFault(full, QStringLiteral("failed without saying why: ") + r.err);
        const bool succeeded = r.exitCode == 0;
        (void)start(restart, home, {}, {});
        if (const QString problem = check(home, before, after, succeeded, !succeeded); !problem.isEmpty())
            outcome.faults << describeFault(full, problem);
    }
    QDir(scratch_ + QLatin1Char('/') + op.name).removeRecursively();
    QDir(scratch_ + QLatin1Char('/') + op.name + QStringLiteral("-k")).removeRecursively();
    QDir(scratch_ + QLatin1Char('/') + op.name + QStringLiteral("-f")).removeRecursively();
    return outcome;
}

} // namespace mms::test::killmatrix
