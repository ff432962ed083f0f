#include "KestraneDriver.h"

#include "DesktopSession.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QThread>

KestraneDriver::KestraneDriver(const DesktopSession &session, QString workFolder)
    : m_session(session)
    , m_work(std::move(workFolder))
    , m_tree(std::make_unique<AccessibleTree>(session.accessibilityBus()))
{
}

KestraneDriver::~KestraneDriver()
{
    if (m_kestrane.state() != QProcess::NotRunning) {
        m_kestrane.kill();
        m_kestrane.waitForFinished(5000);
    }
}

QString KestraneDriver::logPath() const
{
    return QDir(m_work).filePath(QStringLiteral("kestrane.log"));
}

QString KestraneDriver::start()
{
    if (!m_tree->isConnected())
        return QStringLiteral("no accessibility bus");
    QProcessEnvironment environment = m_session.environment();
    environment.insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
    // What the program hands the desktop to open is noted, not opened.
    const QString bin = QDir(m_work).filePath(QStringLiteral("bin"));
    QDir().mkpath(bin);
    QFile opener(QDir(bin).filePath(QStringLiteral("xdg-open")));
    if (!opener.open(QIODevice::WriteOnly))
        return QStringLiteral("no xdg-open stand-in");
    opener.write(QStringLiteral("#!/bin/sh\nprintf '%s\\n' \"$1\" >> '%1'\n").arg(openedListPath()).toUtf8());
    opener.close();
    opener.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    environment.insert(QStringLiteral("PATH"), bin + QLatin1Char(':') + environment.value(QStringLiteral("PATH")));
    environment.insert(QStringLiteral("KESTRANE_RESOURCES"), QString::fromLatin1(KESTRANE_E2E_RESOURCES));
    m_kestrane.setProcessEnvironment(environment);
    m_kestrane.setStandardOutputFile(logPath());
    m_kestrane.setStandardErrorFile(logPath());
    m_kestrane.start(QString::fromLatin1(KESTRANE_E2E_PROGRAM), {});
    if (!m_kestrane.waitForStarted(10000))
        return QStringLiteral("kestrane did not start");
    if (!waitFor(QStringLiteral("push button"), QStringLiteral("Open..."), 20000))
        return QStringLiteral("no window");
    // No window manager: the first click gives the window the focus.
    const Node *status = find(QStringLiteral("label"), QStringLiteral("Drop Video File(s) in the Table Below"));
    if (!status)
        return QStringLiteral("no status line");
    click(status->centre());
    return {};
}

QString KestraneDriver::openedListPath() const
{
    return QDir(m_work).filePath(QStringLiteral("opened.txt"));
}

QStringList KestraneDriver::opened() const
{
    QFile list(openedListPath());
    if (!list.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(list.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

KestraneDriver::Node KestraneDriver::window() const
{
    return m_tree->read(QStringLiteral("Kestrane"));
}

const KestraneDriver::Node *KestraneDriver::find(const QString &role, const QString &name)
{
    m_last = window();
    return m_last.find(role, name);
}

const KestraneDriver::Node *KestraneDriver::findWhere(const std::function<bool(const Node &)> &matches)
{
    m_last = window();
    const QList<const Node *> found = m_last.findAll(matches);
    return found.isEmpty() ? nullptr : found.first();
}

const KestraneDriver::Node *KestraneDriver::waitFor(const QString &role, const QString &name, int timeoutMs)
{
    return waitForWhere([&](const Node &node) { return node.role == role && node.name == name && node.showing; },
                        timeoutMs);
}

const KestraneDriver::Node *KestraneDriver::waitForWhere(const std::function<bool(const Node &)> &matches, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    do {
        if (const Node *node = findWhere(matches))
            return node;
        QThread::msleep(200);
    } while (!deadline.hasExpired());
    return nullptr;
}

bool KestraneDriver::clickOn(const QString &role, const QString &name)
{
    const Node *node = waitFor(role, name, 5000);
    if (!node || !node->enabled)
        return false;
    click(node->centre());
    return true;
}

void KestraneDriver::click(const QPoint &point) const
{
    m_session.click(point);
}

void KestraneDriver::rightClick(const QPoint &point) const
{
    m_session.xdotool({QStringLiteral("mousemove"), QString::number(point.x()), QString::number(point.y()),
                       QStringLiteral("click"), QStringLiteral("3")});
}

void KestraneDriver::key(const QString &keys) const
{
    m_session.key(keys);
}

void KestraneDriver::type(const QString &text) const
{
    m_session.type(text);
}

bool KestraneDriver::openThroughDialog(const QString &path, const std::function<void()> &beforeReturn)
{
    key(QStringLiteral("ctrl+o"));
    if (!waitFor(QStringLiteral("dialog"), QStringLiteral("Select video file to open:"), 10000))
        return false;
    QThread::msleep(500);
    type(path);
    if (beforeReturn)
        beforeReturn();
    key(QStringLiteral("Return"));
    return waitFor(QStringLiteral("label"), path, 20000) != nullptr;
}

QList<KestraneDriver::TrackRow> KestraneDriver::trackRows()
{
    m_last = window();
    QList<TrackRow> rows;
    const QList<const Node *> infos = m_last.findAll([](const Node &node) {
        return node.role == QLatin1String("cell")
               && (node.name.startsWith(QLatin1String("Video:")) || node.name.startsWith(QLatin1String("Audio:")));
    });
    for (const Node *info : infos) {
        const QList<const Node *> checks = m_last.findAll([&](const Node &node) {
            return node.role == QLatin1String("cell") && node.extents.y() == info->extents.y()
                   && node.extents.right() < info->extents.left();
        });
        if (!checks.isEmpty())
            rows.append({*checks.first(), *info});
    }
    return rows;
}

bool KestraneDriver::tickAllTracks()
{
    const QList<TrackRow> rows = trackRows();
    if (rows.isEmpty())
        return false;
    for (const TrackRow &row : rows) {
        if (!row.check.checked)
            click(QPoint(row.check.extents.left() + 10, row.check.centre().y()));
    }
    QThread::msleep(300);
    for (const TrackRow &row : trackRows()) {
        if (!row.check.checked)
            return false;
    }
    return true;
}

const KestraneDriver::Node *KestraneDriver::queueCell(const QString &rowName, const QString &columnHeader)
{
    m_last = window();
    const QList<const Node *> headers = m_last.findAll([&](const Node &node) {
        return node.role == QLatin1String("column header") && node.name == columnHeader && node.showing;
    });
    const QList<const Node *> names = m_last.findAll([&](const Node &node) {
        return node.role == QLatin1String("cell") && node.name == rowName && node.showing;
    });
    if (headers.isEmpty() || names.isEmpty())
        return nullptr;
    const QRect column = headers.first()->extents;
    const int y = names.first()->extents.center().y();
    const QList<const Node *> cells = m_last.findAll([&](const Node &node) {
        return node.role == QLatin1String("cell") && node.showing && node.extents.contains(QPoint(column.center().x(), y));
    });
    return cells.isEmpty() ? nullptr : cells.first();
}

QString KestraneDriver::makeClip(const QString &name, int seconds, const QString &size, const QString &audioCodec)
{
    const QString path = QDir(m_work).filePath(name);
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"),
                 {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"),
                  QStringLiteral("lavfi"), QStringLiteral("-i"), QStringLiteral("testsrc=size=%1:rate=25").arg(size),
                  QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"), QStringLiteral("sine=frequency=440"),
                  QStringLiteral("-t"), QString::number(seconds), QStringLiteral("-c:v"), QStringLiteral("libx264"),
                  QStringLiteral("-preset"), QStringLiteral("ultrafast"), QStringLiteral("-c:a"),
                  audioCodec, path});
    if (!ffmpeg.waitForFinished(120000) || ffmpeg.exitCode() != 0)
        return {};
    return path;
}
