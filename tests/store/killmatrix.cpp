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
#include <functional>

using namespace Qt::StringLiterals;

namespace mms::test::killmatrix {

namespace {

// Every entry below `root`, by its path relative to `relativeTo`.
using Snapshot = QMap<QString, QByteArray>;

template <typename Visit> void walk(const QString& root, const QString& relativeTo, Visit visit) {
    QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo entry(it.nextFileInfo());
        visit(QDir(relativeTo).relativeFilePath(entry.filePath()), entry);
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
    if (!file.open(QIODevice::ReadOnly)) return "<unreadable>";
    if (!path.endsWith(".tpl"_L1)) return file.readAll();
    QByteArray members = "<tar>";
    for (const ArchivedMember& m : readTar(path))
        members += m.name.toUtf8() + '\n' + m.bytes;
    return members;
}

QString differences(const Snapshot& seen, const Snapshot& wanted) {
    QStringList lines;
    for (auto it = seen.begin(); it != seen.end(); ++it)
        if (wanted.value(it.key(), "<none>") != it.value())
            lines << (wanted.contains(it.key()) ? u"~"_s : u"+"_s) + it.key();
    for (auto it = wanted.begin(); it != wanted.end(); ++it)
        if (!seen.contains(it.key())) lines << u"-"_s + it.key();
    return lines.join(u' ');
}

// "{lib}" stands for the library, the picture and sound folders below UserData.
Operation mmsc(const char* name, const char* args) {
    return {QLatin1String(name), u"mmsc"_s, (u"--home {home} "_s + QLatin1String(args)).split(u' ')};
}
Operation ops(const char* name, const char* args) {
    return {QLatin1String(name), u"store_ops"_s, (u"{home} "_s + QLatin1String(args)).split(u' ')};
}

// Everything the user can see (the workspace but Temp, the folder outside it), path -> bytes.
Snapshot visible(const QString& home) {
    Snapshot files;
    walk(QFileInfo(home).absolutePath(), QFileInfo(home).absolutePath(),
         [&](const QString& rel, const QFileInfo& entry) {
             // Temp is checked on its own; upload.tpl is the export's own hand-over file, replaced
             // each time.
             if (rel == "home/Temp"_L1 || rel.startsWith("home/Temp/"_L1) || rel == "home/upload.tpl"_L1)
                 return;
             files.insert(rel, entry.isDir() ? "<folder>" : contentOf(entry.filePath()));
         });
    return files;
}

Snapshot temp(const QString& home) {
    Snapshot entries;
    walk(home + u"/Temp"_s, home, [&](const QString& rel, const QFileInfo&) { entries.insert(rel, {}); });
    return entries;
}

} // namespace

Matrix::Matrix(QString binDir, QString scratch)
    : binDir_(std::move(binDir)), scratch_(std::move(scratch)), start_(scratch_ + u"/start"_s) {}

std::vector<Operation> Matrix::operations() {
    return {
        mmsc("save-new", "build --slide --pic {lib}/Picture/a.png --text new --sound {lib}/Sound/tune.mid "
                         "--save fresh"),
        mmsc("save-over-more", "build --slide --pic {lib}/Picture/b.jpg --slide --text two --slide --pic "
                               "{lib}/Picture/a.png --sound {lib}/Sound/tune.mid --slide --text four --save "
                               "greeting"),
        mmsc("save-over-fewer", "build --slide --text only --save greeting"),
        mmsc("save-converted", "build --slide --pic {lib}/Picture/big.bmp --save converted"),
        ops("save-as", "saveas copy"),
        ops("save-opened", "saveas greeting"),
        ops("delete", "delete other"),
        ops("open", "open other"),
        ops("new", "new"),
        mmsc("export", "export greeting {out}/g.tpl"),
        mmsc("export-mms", "mms greeting {out}/g.mms"),
        ops("draft", "draft later"),
        mmsc("midi-crop", "crop {lib}/Sound/tune.mid 0.5 2 {out}/short.mid"),
        mmsc("picture-jpeg", "jpeg {lib}/Picture/big.bmp {out}/big.jpg"),
        ops("sent-log", "sent greeting"),
    };
}

bool Matrix::prepare(QString& error) {
    const QString home = start_ + u"/home"_s;
    writeFile(home + u"/UserData/Picture/a.png"_s, picture(64, "PNG"));
    writeFile(home + u"/UserData/Picture/b.jpg"_s, picture(96, "JPEG"));
    writeFile(home + u"/UserData/Picture/big.bmp"_s, picture(320, "BMP"));
    writeFile(home + u"/UserData/Sound/tune.mid"_s, midifile::cMajorScale(8));
    // An earlier export, so that replacing one is tried too.
    writeFile(start_ + u"/out/g.mms"_s, "an earlier request");
    const Operation setup[] = {
        mmsc("store greeting", "build --subject Hello --slide --pic {lib}/Picture/a.png --text first --slide "
                               "--sound {lib}/Sound/tune.mid --slide --text third --save greeting"),
        mmsc("store other", "build --slide --text other --save other"),
        ops("open greeting", "open greeting"),
        ops("draft", "draft before"),
        ops("sent log", "sent other"),
        ops("start", "start"),
    };
    for (const Operation& op : setup)
        if (const Run r = start(op, home, {}, {}); r.exitCode != 0) {
            error = op.name + u": "_s + r.err;
            return false;
        }
    return true;
}

Matrix::Run Matrix::start(const Operation& op, const QString& home, const QString& fault,
                          const QString& log) const {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    env.remove(u"MMS_FAULT"_s);
    env.remove(u"MMS_FAULT_LOG"_s);
    if (!fault.isEmpty()) env.insert(u"MMS_FAULT"_s, fault);
    if (!log.isEmpty()) env.insert(u"MMS_FAULT_LOG"_s, log);
    p.setProcessEnvironment(env);
    QStringList args = op.args;
    for (QString& a : args)
        a.replace(u"{lib}"_s, home + u"/UserData"_s)
            .replace(u"{home}"_s, home)
            .replace(u"{out}"_s, QFileInfo(home).absolutePath() + u"/out"_s);
    p.start(binDir_ + u'/' + op.program, args);
    if (!p.waitForFinished(60000)) {
        p.kill(); // this child only, by its own pid
        p.waitForFinished();
        return {-1, true, u"did not finish"_s};
    }
    const bool crashed = p.exitStatus() == QProcess::CrashExit;
    return {crashed ? -1 : p.exitCode(), crashed, QString::fromLocal8Bit(p.readAllStandardError()).trimmed()};
}

QString Matrix::copyOfStart(const QString& tag) const {
    const QString run = scratch_ + u'/' + tag;
    QDir(run).removeRecursively();
    walk(start_, start_, [&](const QString& rel, const QFileInfo& entry) {
        const QString target = run + u'/' + rel;
        QDir().mkpath(entry.isDir() ? target : QFileInfo(target).absolutePath());
        if (!entry.isDir()) QFile::copy(entry.filePath(), target);
    });
    return run + u"/home"_s;
}

QString Matrix::check(const QString& home, const Snapshot& before, const Snapshot& after, bool mayBeAfter,
                      bool mayBeBefore) const {
    const Snapshot seen = visible(home);
    QStringList problems;
    if (!(mayBeBefore && seen == before) && !(mayBeAfter && seen == after))
        problems << u"neither before nor after: "_s + differences(seen, mayBeBefore ? before : after);
    const Snapshot library = visible(start_ + u"/home"_s);
    for (auto it = library.begin(); it != library.end(); ++it)
        if (it.key().contains("/UserData/Picture"_L1) || it.key().contains("/UserData/Sound"_L1))
            if (seen.value(it.key()) != it.value()) problems << u"library file touched: "_s + it.key();
    if (const Snapshot left = temp(home); left != temp(start_ + u"/home"_s))
        problems << u"left in Temp: "_s + QStringList(left.keys()).join(u' ');
    return problems.join(u"; "_s);
}

Outcome Matrix::run(const Operation& op, int stride) const {
    Outcome outcome{op.name, 0, 0, 0, {}};
    const QString log = scratch_ + u'/' + op.name + u".log"_s;
    QFile::remove(log);
    const Snapshot before = visible(copyOfStart(op.name));
    Snapshot after;
    // Runs `op` from the starting state with `fault` (none, kill:K or enospc:K), starts the program
    // again and notes against the fault what `judge` says of the run and what the user is left with.
    struct Verdict {
        QString problem;
        bool mayBeAfter, mayBeBefore;
    };
    const auto attempt = [&](const QString& fault, const std::function<Verdict(const Run&)>& judge) {
        const QString home = copyOfStart(op.name);
        const Verdict v = judge(start(op, home, fault, fault.isEmpty() ? log : QString()));
        QStringList problems{v.problem};
        if (const Run r = start(ops("start", "start"), home, {}, {}); r.exitCode != 0)
            problems << u"the next start failed: "_s + r.err;
        if (fault.isEmpty()) after = visible(home);
        problems << check(home, before, after, v.mayBeAfter, v.mayBeBefore);
        problems.removeAll(QString());
        for (const QString& problem : problems)
            outcome.faults << (fault.isEmpty() ? u"no fault"_s : fault) + u": "_s + problem;
        return problems.isEmpty();
    };
    const auto succeeds = [](const Run& r) {
        return Verdict{r.exitCode ? u"exit status %1: "_s.arg(r.exitCode) + r.err : QString(), true, false};
    };
    if (!attempt({}, succeeds)) return outcome;
    QFile counted(log);
    outcome.points = counted.open(QIODevice::ReadOnly) ? int(counted.readAll().count('\n')) : 0;
    for (int k = 1; k <= outcome.points; k += stride) {
        ++outcome.killed;
        attempt(u"kill:%1"_s.arg(k), [](const Run& r) {
            return Verdict{r.crashed ? QString() : u"the program was not stopped ("_s + r.err + u')', true,
                           true};
        });
        // A step that fails reports the full disk and changes nothing; one whose failure does not
        // matter (scratch that cannot be removed) lets the operation succeed.
        ++outcome.diskFull;
        attempt(u"enospc:%1"_s.arg(k), [](const Run& r) {
            const bool ok = r.exitCode == 0, said = r.err.contains("No space left on device"_L1);
            return Verdict{ok || said ? QString() : u"failed without saying why: "_s + r.err, ok, !ok};
        });
    }
    QDir(scratch_ + u'/' + op.name).removeRecursively();
    return outcome;
}

} // namespace mms::test::killmatrix
