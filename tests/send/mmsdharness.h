#pragma once

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <memory>
#include <vector>

namespace mms::test {

using namespace Qt::StringLiterals;

// The real mmsd-tng on private buses, with a fake ModemManager (python3-dbusmock) whose connected
// bearer is the loopback interface, and a loopback MMS centre (tests/send/loopback_mmsc.py). Nothing
// leaves 127.0.0.1; every process started here is ended by its own pid when the harness goes.
class MmsdHarness {
public:
    ~MmsdHarness() {
        for (auto it = processes_.rbegin(); it != processes_.rend(); ++it)
            end(**it);
        QDBusConnection::disconnectFromBus(busName_);
    }

    // The packages the harness needs and lacks, to skip with; empty when all are there.
    static QString missingPackages() {
        QStringList missing;
        if (!QFile::exists(u"/usr/bin/mmsdtng"_s)) missing << u"mmsd-tng"_s;
        if (QStandardPaths::findExecutable(u"dbus-daemon"_s).isEmpty()) missing << u"dbus"_s;
        if (!QFile::exists(u"/usr/lib/python3/dist-packages/dbusmock/__init__.py"_s))
            missing << u"python3-dbusmock"_s;
        return missing.join(u", "_s);
    }

    // Starts the buses, the modem, the MMS centre and (unless told not to) the daemon. An empty
    // string when all came up, else what did not.
    QString start(bool withDaemon = true, qint64 totalMaxAttachmentSize = 1100000) {
        systemBus_ = startBus();
        sessionBus_ = startBus();
        if (systemBus_.isEmpty() || sessionBus_.isEmpty()) return u"dbus-daemon did not start"_s;
        QProcessEnvironment env = environment();
        spawn(u"/usr/bin/python3"_s,
              {u"-m"_s, u"dbusmock"_s, u"--system"_s, u"--template"_s, source(u"fake_modemmanager.py"_s),
               u"--parameters"_s, uR"({"imsi": "310260000000001", "apn": "mms.test"})"_s},
              env);
        if (!startMmsCentre(0)) return u"the loopback MMS centre did not start"_s;
        if (!waitForName(systemBus_, u"org.freedesktop.ModemManager1"_s))
            return u"the fake ModemManager did not start"_s;
        // The daemon's modem settings, as on a phone but pointing at the loopback MMS centre.
        QDir().mkpath(dir_.filePath(u"home/.mms/modemmanager"_s));
        QFile settings(dir_.filePath(u"home/.mms/modemmanager/mms"_s));
        settings.open(QIODevice::WriteOnly);
        settings.write(u"[Modem Manager]\nCarrierMMSC=http://127.0.0.1:%1/mms\nMMS_APN=mms.test\n"
                       "CarrierMMSProxy=NULL\nDefaultModemNumber=NULL\nAutoProcessOnConnection=true\n"
                       "AutoProcessSMSWAP=false\nIMSI=310260000000001\n\n[Settings]\n"
                       "UseDeliveryReports=false\nTotalMaxAttachmentSize=%2\nMaxAttachments=25\n"
                       "AutoCreateSMIL=false\nForceCAres=false\n"_s.arg(port_)
                           .arg(totalMaxAttachmentSize)
                           .toUtf8());
        settings.close();
        if (!withDaemon) return {};
        env.insert(u"HOME"_s, dir_.filePath(u"home"_s));
        spawn(u"/usr/bin/mmsdtng"_s, {u"-d"_s}, env, dir_.filePath(u"mmsd.log"_s));
        if (!waitForName(sessionBus_, u"org.ofono.mms"_s)) return u"mmsdtng did not start: "_s + daemonLog();
        return {};
    }

    // The environment a client of the daemon runs in: the private buses.
    QProcessEnvironment environment() const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, systemBus_);
        env.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, sessionBus_);
        return env;
    }

    // The private session bus, for clients in the test's own process.
    QDBusConnection session() { return QDBusConnection::connectToBus(sessionBus_, busName_); }

    // The MMS centre goes away, comes back on the same port, or refuses what it is sent.
    void stopMmsCentre() { end(*mmsCentre_); }
    bool restartMmsCentre() { return startMmsCentre(port_); }
    void setRefusing() { QFile(dir_.filePath(u"mmsc/refuse"_s)).open(QIODevice::WriteOnly); }

    // The requests the MMS centre was sent, in order.
    QStringList requests() const {
        QStringList out;
        for (int n = 1; QFile::exists(dir_.filePath(u"mmsc/request%1.mms"_s.arg(n))); ++n)
            out << dir_.filePath(u"mmsc/request%1.mms"_s.arg(n));
        return out;
    }

    QString daemonLog() const {
        QFile log(dir_.filePath(u"mmsd.log"_s));
        return log.open(QIODevice::ReadOnly) ? QString::fromUtf8(log.readAll().right(4000)) : QString();
    }

private:
    static QString source(const QString& name) { return QStringLiteral(MMS_TEST_SEND_DIR "/") + name; }

    QProcess& spawn(const QString& program, const QStringList& args, const QProcessEnvironment& env,
                    const QString& log = QProcess::nullDevice()) {
        QProcess& p = *processes_.emplace_back(std::make_unique<QProcess>());
        p.setProcessEnvironment(env);
        if (log != QProcess::nullDevice()) p.setStandardOutputFile(log);
        p.setStandardErrorFile(log);
        p.start(program, args);
        p.waitForStarted();
        return p;
    }

    // Ends one started process by its pid: politely, then for good.
    static void end(QProcess& p) {
        if (p.state() == QProcess::NotRunning) return;
        p.terminate();
        if (!p.waitForFinished(3000)) p.kill();
        p.waitForFinished(3000);
    }

    // Starts `program` and reads the first line it prints: a bus address, a port.
    QString firstLine(const QString& program, const QStringList& args, QProcess** started = nullptr) {
        QProcess& p = spawn(program, args, QProcessEnvironment::systemEnvironment());
        if (started) *started = &p;
        return p.waitForReadyRead(15000) ? QString::fromUtf8(p.readLine()).trimmed() : QString();
    }
    QString startBus() {
        return firstLine(u"dbus-daemon"_s, {u"--config-file="_s + source(u"bus.conf"_s), u"--nofork"_s,
                                            u"--print-address=1"_s});
    }
    bool startMmsCentre(int port) {
        const QStringList args{source(u"loopback_mmsc.py"_s), dir_.filePath(u"mmsc"_s),
                               QString::number(port)};
        return (port_ = firstLine(u"/usr/bin/python3"_s, args, &mmsCentre_).toInt()) > 0;
    }

    bool waitForName(const QString& address, const QString& name) {
        const QString connection = busName_ + u"-wait"_s;
        QDBusConnectionInterface* bus = QDBusConnection::connectToBus(address, connection).interface();
        for (const QDeadlineTimer deadline(15000); !bus->isServiceRegistered(name) && !deadline.hasExpired();)
            QThread::msleep(50);
        const bool found = bus->isServiceRegistered(name);
        QDBusConnection::disconnectFromBus(connection);
        return found;
    }

    QTemporaryDir dir_;
    std::vector<std::unique_ptr<QProcess>> processes_;
    QProcess* mmsCentre_ = nullptr;
    QString systemBus_, sessionBus_;
    QString busName_ = u"mmsd-harness"_s;
    int port_ = 0;
};

} // namespace mms::test
