#include "DesktopSession.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QPoint>
#include <QStandardPaths>
#include <QThread>

namespace {

bool waitFor(const std::function<bool()> &done, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!done()) {
        if (deadline.hasExpired())
            return done();
        QThread::msleep(50);
    }
    return true;
}

void stop(QProcess *process)
{
    if (!process || process->state() == QProcess::NotRunning)
        return;
    process->terminate();
    if (!process->waitForFinished(3000)) {
        process->kill();
        process->waitForFinished(3000);
    }
}

} // namespace

DesktopSession::DesktopSession()
{
    if (!m_home.isValid()) {
        m_failure = QStringLiteral("no temporary folder");
        return;
    }
    m_environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
        const QString folder = m_home.filePath(QString::fromLatin1(name).toLower());
        QDir().mkpath(folder);
        QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        m_environment.insert(QString::fromLatin1(name), folder);
    }
    m_environment.insert(QStringLiteral("HOME"), m_home.path());
    m_environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    m_environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    m_environment.insert(QStringLiteral("LANG"), QStringLiteral("C.UTF-8"));
    for (const char *tool : {"xdotool", "import", "dbus-daemon"}) {
        if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty()) {
            m_failure = QStringLiteral("%1 is not installed (scripts/setup.sh installs it)").arg(QString::fromLatin1(tool));
            return;
        }
    }
    if (startXvfb())
        startSessionBus();
}

DesktopSession::~DesktopSession()
{
    stop(m_bus.get());
    stop(m_xvfb.get());
}

bool DesktopSession::startXvfb()
{
    const QString xvfb = QStandardPaths::findExecutable(QStringLiteral("Xvfb"));
    if (xvfb.isEmpty()) {
        m_xvfbMissing = true;
        m_failure = QStringLiteral("Xvfb is not installed");
        return false;
    }
    // A display number nobody uses: no lock file, no socket. A start that
    // fails may have lost a race for the number; after three, Xvfb cannot run here.
    int attempts = 0;
    for (int number = 140; number < 240 && attempts < 3; ++number) {
        if (QFile::exists(QStringLiteral("/tmp/.X%1-lock").arg(number))
            || QFile::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(number)))
            continue;
        ++attempts;
        m_display = QStringLiteral(":%1").arg(number);
        m_xvfb = std::make_unique<QProcess>();
        m_xvfb->setStandardOutputFile(m_home.filePath(QStringLiteral("xvfb.log")));
        m_xvfb->setStandardErrorFile(m_home.filePath(QStringLiteral("xvfb.log")));
        m_xvfb->start(xvfb, {m_display, QStringLiteral("-screen"), QStringLiteral("0"), QStringLiteral("1280x800x24"),
                             QStringLiteral("-nolisten"), QStringLiteral("tcp")});
        const QString socket = QStringLiteral("/tmp/.X11-unix/X%1").arg(number);
        // waitForFinished keeps the process's state current while waiting.
        if (m_xvfb->waitForStarted(5000)
            && waitFor([&] { return QFile::exists(socket) || m_xvfb->waitForFinished(50); }, 10000)
            && m_xvfb->state() == QProcess::Running) {
            m_environment.insert(QStringLiteral("DISPLAY"), m_display);
            return true;
        }
        stop(m_xvfb.get());
    }
    m_xvfbMissing = true;
    m_failure = QStringLiteral("Xvfb could not start a screen here");
    return false;
}

bool DesktopSession::startSessionBus()
{
    m_bus = std::make_unique<QProcess>();
    m_bus->setProcessEnvironment(m_environment);
    m_bus->start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                 QStringLiteral("--print-address=1")});
    if (!m_bus->waitForReadyRead(10000)) {
        m_failure = QStringLiteral("dbus-daemon did not start");
        return false;
    }
    const QString address = QString::fromLatin1(m_bus->readLine()).trimmed();
    m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
    // Where the accessibility bus is; asking starts it.
    const QString name = QStringLiteral("e2e-session");
    QString accessibility;
    {
        QDBusConnection session = QDBusConnection::connectToBus(address, name);
        const QDBusMessage reply = session.call(
            QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                           QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")),
            QDBus::Block, 10000);
        if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty())
            accessibility = reply.arguments().first().toString();
    }
    QDBusConnection::disconnectFromBus(name);
    if (accessibility.isEmpty()) {
        m_failure = QStringLiteral("no accessibility bus (at-spi2-core is needed; scripts/setup.sh installs it)");
        return false;
    }
    m_accessibilityBus = accessibility;
    return true;
}

QString DesktopSession::xdotool(const QStringList &arguments) const
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(QStringLiteral("xdotool"), arguments);
    if (!process.waitForFinished(10000) || process.exitCode() != 0)
        return {};
    return QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
}

void DesktopSession::click(const QPoint &screenPoint) const
{
    xdotool({QStringLiteral("mousemove"), QString::number(screenPoint.x()), QString::number(screenPoint.y()),
             QStringLiteral("click"), QStringLiteral("1")});
}

void DesktopSession::key(const QString &keys) const
{
    xdotool({QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("60"), keys});
}

void DesktopSession::type(const QString &text) const
{
    xdotool({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("40"), text});
}

bool DesktopSession::screenshot(const QString &path) const
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(QStringLiteral("import"), {QStringLiteral("-window"), QStringLiteral("root"), path});
    return process.waitForFinished(20000) && process.exitCode() == 0;
}
