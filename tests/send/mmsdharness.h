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

// The real mmsd-tng on private buses, with a fake ModemManager (python3-dbusmock) whose connected
// bearer is the loopback interface, and a loopback MMS centre (tests/send/loopback_mmsc.py). Nothing
// leaves 127.0.0.1; every process started here is ended by its own pid when the harness goes.
class MmsdHarness {
public:
    static constexpr int kStartMs = 15000;
    static inline const QString kApn = QStringLiteral("mms.test");
    static inline const QString kImsi = QStringLiteral("310260000000001");

    ~MmsdHarness() {
        for (auto it = processes_.rbegin(); it != processes_.rend(); ++it)
            end(**it);
        QDBusConnection::disconnectFromBus(busName_);
    }

    // The packages the harness needs and lacks, to skip with; empty when all are there.
    static QString missingPackages() {
        QStringList missing;
        if (!QFile::exists(QStringLiteral("/usr/bin/mmsdtng"))) missing << QStringLiteral("mmsd-tng");
        if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty())
            missing << QStringLiteral("dbus");
        if (!QFile::exists(QStringLiteral("/usr/lib/python3/dist-packages/dbusmock/__init__.py")))
            missing << QStringLiteral("python3-dbusmock");
        return missing.join(QStringLiteral(", "));
    }

    // Starts the buses, the modem, the MMS centre and (unless told not to) the daemon. An empty
    // string when all came up, else what did not.
    QString start(bool withDaemon = true, qint64 totalMaxAttachmentSize = 1100000) {
        if (!dir_.isValid()) return QStringLiteral("no scratch folder");
        systemBus_ = startBus();
        sessionBus_ = startBus();
        if (systemBus_.isEmpty() || sessionBus_.isEmpty()) return QStringLiteral("dbus-daemon did not start");
        QProcessEnvironment env = environment();
        QProcess& modem = spawn(QStringLiteral("/usr/bin/python3"),
                                {QStringLiteral("-m"), QStringLiteral("dbusmock"), QStringLiteral("--system"),
                                 QStringLiteral("--template"), source(QStringLiteral("fake_modemmanager.py")),
                                 QStringLiteral("--parameters"),
                                 QStringLiteral(R"({"imsi": "%1", "apn": "%2"})").arg(kImsi, kApn)},
                                env);
        Q_UNUSED(modem);
        if (!startMmsCentre(0)) return QStringLiteral("the loopback MMS centre did not start");
        if (!waitForName(systemBus_, QStringLiteral("org.freedesktop.ModemManager1")))
            return QStringLiteral("the fake ModemManager did not start");
        writeSettings(totalMaxAttachmentSize);
        if (!withDaemon) return {};
        env.insert(QStringLiteral("HOME"), dir_.filePath(QStringLiteral("home")));
        daemon_ = &spawn(QStringLiteral("/usr/bin/mmsdtng"), {QStringLiteral("-d")}, env,
                         dir_.filePath(QStringLiteral("mmsd.log")));
        if (!waitForName(sessionBus_, QStringLiteral("org.ofono.mms")))
            return QStringLiteral("mmsdtng did not start: ") + daemonLog();
        return {};
    }

    // The environment a client of the daemon runs in: the private buses.
    QProcessEnvironment environment() const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), systemBus_);
        env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), sessionBus_);
        return env;
    }

    // The private session bus, for clients in the test's own process.
    QDBusConnection session() { return QDBusConnection::connectToBus(sessionBus_, busName_); }

    // The MMS centre goes away, comes back on the same port, or refuses what it is sent.
    void stopMmsCentre() {
        if (mmsCentre_) end(*mmsCentre_);
    }
    bool restartMmsCentre() { return startMmsCentre(port_); }
    void setRefusing(bool refuse) {
        const QString flag = dir_.filePath(QStringLiteral("mmsc/refuse"));
        if (refuse)
            QFile(flag).open(QIODevice::WriteOnly);
        else
            QFile::remove(flag);
    }

    // The requests the MMS centre was sent, in order.
    QStringList requests() const {
        QStringList out;
        const QDir folder(dir_.filePath(QStringLiteral("mmsc")));
        for (int n = 1; folder.exists(QStringLiteral("request%1.mms").arg(n)); ++n)
            out << folder.filePath(QStringLiteral("request%1.mms").arg(n));
        return out;
    }

    QString daemonLog() const {
        QFile log(dir_.filePath(QStringLiteral("mmsd.log")));
        return log.open(QIODevice::ReadOnly) ? QString::fromUtf8(log.readAll().right(4000)) : QString();
    }
    bool daemonRunning() const { return daemon_ && daemon_->state() == QProcess::Running; }

private:
    static QString source(const QString& name) { return QStringLiteral(MMS_TEST_SEND_DIR "/") + name; }

    QProcess& spawn(const QString& program, const QStringList& args, const QProcessEnvironment& env,
                    const QString& log = {}) {
        processes_.push_back(std::make_unique<QProcess>());
        QProcess& p = *processes_.back();
        p.setProcessEnvironment(env);
        if (!log.isEmpty()) {
            p.setStandardOutputFile(log);
            p.setStandardErrorFile(log);
        } else {
            p.setStandardErrorFile(QProcess::nullDevice());
        }
        p.start(program, args);
        p.waitForStarted();
        return p;
    }

    // Ends one started process by its pid: politely, then for good.
    static void end(QProcess& p) {
        if (p.state() == QProcess::NotRunning) return;
        p.terminate();
        if (!p.waitForFinished(3000)) {
            p.kill();
            p.waitForFinished(3000);
        }
    }

    QString startBus() {
        QProcess& bus = spawn(QStringLiteral("dbus-daemon"),
                              {QStringLiteral("--config-file=") + source(QStringLiteral("bus.conf")),
                               QStringLiteral("--nofork"), QStringLiteral("--print-address=1")},
                              QProcessEnvironment::systemEnvironment());
        if (!bus.waitForReadyRead(5000)) return {};
        return QString::fromUtf8(bus.readLine()).trimmed();
    }

    bool startMmsCentre(int port) {
        const QString folder = dir_.filePath(QStringLiteral("mmsc"));
        QDir().mkpath(folder);
        QFile::remove(folder + QStringLiteral("/port"));
        mmsCentre_ = &spawn(QStringLiteral("/usr/bin/python3"),
                            {source(QStringLiteral("loopback_mmsc.py")), folder, QString::number(port)},
                            QProcessEnvironment::systemEnvironment());
        const QDeadlineTimer deadline(kStartMs);
        while (!deadline.hasExpired() && mmsCentre_->state() == QProcess::Running) {
            QFile file(folder + QStringLiteral("/port"));
            if (file.open(QIODevice::ReadOnly)) {
                port_ = file.readAll().toInt();
                return true;
            }
            QThread::msleep(50);
        }
        return false;
    }

    bool waitForName(const QString& address, const QString& name) {
        const QString connection = busName_ + QStringLiteral("-wait");
        bool found = false;
        {
            QDBusConnection bus = QDBusConnection::connectToBus(address, connection);
            const QDeadlineTimer deadline(kStartMs);
            while (!deadline.hasExpired() && !(found = bus.interface()->isServiceRegistered(name)))
                QThread::msleep(100);
        }
        QDBusConnection::disconnectFromBus(connection);
        return found;
    }

    // The daemon's modem settings, as on a phone but pointing at the loopback MMS centre.
    void writeSettings(qint64 totalMaxAttachmentSize) {
        const QString folder = dir_.filePath(QStringLiteral("home/.mms/modemmanager"));
        QDir().mkpath(folder);
        QFile settings(folder + QStringLiteral("/mms"));
        settings.open(QIODevice::WriteOnly);
        settings.write(QStringLiteral("[Modem Manager]\n"
                                      "CarrierMMSC=http://127.0.0.1:%1/mms\n"
                                      "MMS_APN=%2\n"
                                      "CarrierMMSProxy=NULL\n"
                                      "DefaultModemNumber=NULL\n"
                                      "AutoProcessOnConnection=true\n"
                                      "AutoProcessSMSWAP=false\n"
                                      "IMSI=%3\n\n"
                                      "[Settings]\n"
                                      "UseDeliveryReports=false\n"
                                      "TotalMaxAttachmentSize=%4\n"
                                      "MaxAttachments=25\n"
                                      "AutoCreateSMIL=false\n"
                                      "ForceCAres=false\n")
                           .arg(port_)
                           .arg(kApn, kImsi)
                           .arg(totalMaxAttachmentSize)
                           .toUtf8());
    }

    QTemporaryDir dir_;
    std::vector<std::unique_ptr<QProcess>> processes_;
    QProcess* mmsCentre_ = nullptr;
    QProcess* daemon_ = nullptr;
    QString systemBus_, sessionBus_;
    QString busName_ = QStringLiteral("mmsd-harness");
    int port_ = 0;
};

} // namespace mms::test
