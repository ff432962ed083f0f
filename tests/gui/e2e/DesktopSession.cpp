#include "DesktopSession.h"

#include <QtDBus>

namespace {

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
    m_xvfbMissing = xvfb.isEmpty();
    if (m_xvfbMissing) {
        m_failure = QStringLiteral("Xvfb is not installed");
        return false;
    }
    // Xvfb picks a free display number itself and names it once the screen
    // is ready, so two sessions started at once cannot take the same one.
    m_xvfb = std::make_unique<QProcess>();
    m_xvfb->setStandardErrorFile(m_home.filePath(QStringLiteral("xvfb.log")));
    m_xvfb->start(xvfb, {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"), QStringLiteral("0"),
                         QStringLiteral("1280x800x24"), QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    QByteArray number;
    if (m_xvfb->waitForStarted(5000)) {
        QDeadlineTimer deadline(15000);
        while (!number.endsWith('\n') && m_xvfb->state() == QProcess::Running && !deadline.hasExpired()) {
            m_xvfb->waitForReadyRead(200);
            number += m_xvfb->readAllStandardOutput();
        }
    }
    if (!number.endsWith('\n') || m_xvfb->state() != QProcess::Running) {
        stop(m_xvfb.get());
        m_xvfbMissing = true;
        m_failure = QStringLiteral("Xvfb could not start a screen here");
        return false;
    }
    m_environment.insert(QStringLiteral("DISPLAY"), QLatin1Char(':') + QString::fromLatin1(number.trimmed()));
    return true;
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
    const QDBusMessage reply = QDBusConnection::connectToBus(address, name).call(
        QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"), QStringLiteral("org.a11y.Bus"),
                                       QStringLiteral("GetAddress")),
        QDBus::Block, 10000);
    QDBusConnection::disconnectFromBus(name);
    if (reply.type() == QDBusMessage::ReplyMessage)
        m_accessibilityBus = reply.arguments().value(0).toString();
    if (m_accessibilityBus.isEmpty())
        m_failure = QStringLiteral("no accessibility bus (at-spi2-core is needed; scripts/setup.sh installs it)");
    return m_failure.isEmpty();
}

bool DesktopSession::run(const QString &program, const QStringList &arguments, int timeoutMs) const
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(program, arguments);
    return process.waitForFinished(timeoutMs) && process.exitCode() == 0;
}

void DesktopSession::click(const QPoint &screenPoint) const
{
    run(QStringLiteral("xdotool"), {QStringLiteral("mousemove"), QString::number(screenPoint.x()), QString::number(screenPoint.y()),
                                    QStringLiteral("click"), QStringLiteral("1")});
}

void DesktopSession::key(const QString &keys) const
{
    run(QStringLiteral("xdotool"), QStringList{QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("60")}
                                       + keys.split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

void DesktopSession::type(const QString &text) const
{
    run(QStringLiteral("xdotool"), {QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("40"), text});
}

bool DesktopSession::screenshot(const QString &path) const
{
    return run(QStringLiteral("import"), {QStringLiteral("-window"), QStringLiteral("root"), path}, 20000);
}
