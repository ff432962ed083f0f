#include "KestraneDriver.h"

#include "DesktopSession.h"

#include <QtCore>

#include <algorithm>

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
    environment.insert(QStringLiteral("KESTRANE_RESOURCES"), QString::fromLatin1(KESTRANE_E2E_RESOURCES));
    m_kestrane.setProcessEnvironment(environment);
    m_kestrane.setStandardOutputFile(logPath());
    m_kestrane.setStandardErrorFile(logPath());
    m_kestrane.start(QString::fromLatin1(KESTRANE_E2E_PROGRAM), {});
    if (!m_kestrane.waitForStarted(10000) || !waitFor(QStringLiteral("push button"), QStringLiteral("Open..."), 20000))
        return QStringLiteral("no window");
    // No window manager: the first click gives the window the focus.
    const Node *status = waitFor(QStringLiteral("label"), QStringLiteral("Drop Video File(s) in the Table Below"), 1000);
    if (!status)
        return QStringLiteral("no status line");
    m_session.click(status->centre());
    return {};
}

KestraneDriver::Node KestraneDriver::window() const
{
    return m_tree->read(QStringLiteral("Kestrane"));
}

QList<const KestraneDriver::Node *> KestraneDriver::look(const std::function<bool(const Node &)> &matches)
{
    m_last = window();
    return m_last.findAll(matches);
}

const KestraneDriver::Node *KestraneDriver::waitFor(const QString &role, const QString &name, int timeoutMs)
{
    return waitForWhere([&](const Node &node) { return node.role == role && node.name == name && node.showing; },
                        timeoutMs);
}

bool KestraneDriver::within(int timeoutMs, const std::function<bool()> &done)
{
    const QDeadlineTimer deadline(timeoutMs);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QThread::msleep(150);
    }
    return true;
}

const KestraneDriver::Node *KestraneDriver::waitForWhere(const std::function<bool(const Node &)> &matches, int timeoutMs)
{
    const Node *found = nullptr;
    within(timeoutMs, [&] { return (found = look(matches).value(0)) != nullptr; });
    return found;
}

bool KestraneDriver::clickOn(const QString &role, const QString &name)
{
    const Node *node = waitFor(role, name, 5000);
    if (!node || !node->enabled)
        return false;
    m_session.click(node->centre());
    return true;
}

bool KestraneDriver::openThroughDialog(const QString &path)
{
    m_session.key(QStringLiteral("ctrl+o"));
    if (!waitFor(QStringLiteral("dialog"), QStringLiteral("Select video file to open:"), 10000))
        return false;
    QThread::msleep(500);
    m_session.type(path);
    m_session.key(QStringLiteral("Return"));
    return waitFor(QStringLiteral("label"), path, 20000) != nullptr;
}

QList<KestraneDriver::TrackRow> KestraneDriver::trackRows()
{
    QList<TrackRow> rows;
    const QList<const Node *> infos = look([](const Node &node) {
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
    for (const TrackRow &row : rows) {
        if (!row.check.checked)
            m_session.click(QPoint(row.check.extents.left() + 10, row.check.centre().y()));
    }
    QThread::msleep(300);
    const QList<TrackRow> after = trackRows();
    return !after.isEmpty() && std::all_of(after.begin(), after.end(), [](const TrackRow &row) { return row.check.checked; });
}

const KestraneDriver::Node *KestraneDriver::queueCell(const QString &rowName, const QString &columnHeader)
{
    const QList<const Node *> headers = look([&](const Node &node) {
        return node.role == QLatin1String("column header") && node.name == columnHeader && node.showing;
    });
    const QList<const Node *> names = m_last.findAll([&](const Node &node) {
        return node.role == QLatin1String("cell") && node.name == rowName && node.showing;
    });
    if (headers.isEmpty() || names.isEmpty())
        return nullptr;
    const QPoint point(headers.first()->extents.center().x(), names.first()->extents.center().y());
    const QList<const Node *> cells = m_last.findAll([&](const Node &node) {
        return node.role == QLatin1String("cell") && node.showing && node.extents.contains(point);
    });
    return cells.isEmpty() ? nullptr : cells.first();
}

QString KestraneDriver::makeClip(const QString &name, int seconds, const QString &size, const QString &audioCodec)
{
    const QString path = QDir(m_work).filePath(name);
    const QString arguments = QStringLiteral("-nostdin -v error -f lavfi -i testsrc=size=%1:rate=25 -f lavfi -i sine=frequency=440 "
                                             "-t %2 -c:v libx264 -preset ultrafast -c:a %3")
                                  .arg(size)
                                  .arg(seconds)
                                  .arg(audioCodec);
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"), arguments.split(QLatin1Char(' ')) << path);
    return ffmpeg.waitForFinished(120000) && ffmpeg.exitCode() == 0 ? path : QString();
}
