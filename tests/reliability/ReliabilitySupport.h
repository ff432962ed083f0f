#pragma once

#include "CliTestSupport.h"

#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>

#include <csignal>

// A save folder with one source in it, settings of its own, and the checks
// every hostile case ends with.
class Workspace
{
public:
    explicit Workspace(const QString &source)
    {
        settings = quietSettings(dir.path());
        this->source = path(QFileInfo(source).fileName());
        QFile::copy(source, this->source);
        sourceSum = testsupport::checksum(this->source);
    }

    QString path(const QString &name) const { return dir.path() + QLatin1Char('/') + name; }
    QStringList withSettings(const QStringList &arguments) const { return QStringList{QStringLiteral("--settings"), settings} + arguments; }

    // Command lines of processes still running that name this folder: a
    // tool of a job that should have ended with its Kestrane.
    QStringList leftoverProcesses() const
    {
        QStringList found;
        const QByteArray folder = dir.path().toUtf8();
        QDirIterator procs(QStringLiteral("/proc"), QDir::Dirs | QDir::NoDotAndDotDot);
        while (procs.hasNext()) {
            const QString entry = procs.next();
            bool numeric = false;
            const qint64 pid = QFileInfo(entry).fileName().toLongLong(&numeric);
            if (!numeric || pid == QCoreApplication::applicationPid())
                continue;
            QFile cmdline(entry + QStringLiteral("/cmdline"));
            if (!cmdline.open(QIODevice::ReadOnly))
                continue;
            QByteArray line = cmdline.readAll();
            if (line.contains(folder) && !isZombie(entry))
                found << QString::fromUtf8(line.replace('\0', ' '));
        }
        return found;
    }

    // Waits for the tools to follow their Kestrane out (the parent-death
    // signal takes a moment), then answers what remains.
    QStringList leftoverProcessesAfterWait() const
    {
        QElapsedTimer clock;
        clock.start();
        QStringList left = leftoverProcesses();
        while (!left.isEmpty() && clock.elapsed() < 5000) {
            QThread::msleep(100);
            left = leftoverProcesses();
        }
        return left;
    }

    bool sourceUnchanged() const { return testsupport::checksum(source) == sourceSum; }

    // What the folder holds besides the source and the settings: results,
    // leftovers, private folders.
    QStringList newEntries() const
    {
        QStringList entries = entriesIn(dir.path());
        entries.removeIf([this](const QString &name) {
            return name == QFileInfo(source).fileName() || name.startsWith(QStringLiteral("kestrane.ini"));
        });
        return entries;
    }

    QTemporaryDir dir;
    QString settings;
    QString source;
    QByteArray sourceSum;

private:
    static bool isZombie(const QString &procEntry)
    {
        QFile stat(procEntry + QStringLiteral("/stat"));
        if (!stat.open(QIODevice::ReadOnly))
            return true;
        const QByteArray text = stat.readAll();
        const qsizetype close = text.lastIndexOf(')');
        return close > 0 && text.mid(close + 2, 1) == "Z";
    }
};

// The names the CLI reported as completed results ("Completed: NAME (A, B)").
inline QStringList completedResults(const QString &out)
{
    static const QRegularExpression line(QStringLiteral("^Completed: .*? \\((.*)\\)$"), QRegularExpression::MultilineOption);
    QStringList results;
    QRegularExpressionMatchIterator it = line.globalMatch(out);
    while (it.hasNext())
        results << it.next().captured(1).split(QStringLiteral(", "));
    return results;
}

inline double durationMs(const QString &path)
{
    return testsupport::mediaInfo(path, QStringLiteral("General"), QStringLiteral("Duration")).toDouble();
}

// A clip long enough for a two-pass conversion to be caught half-way.
inline QString slowClip()
{
    const QString dir = cliMediaDir();
    const QString path = dir + QStringLiteral("/slow.avi");
    if (QFile::exists(path))
        return path;
    return testsupport::ffmpeg(dir, QStringLiteral("slow.avi"),
                               QStringLiteral("-f lavfi -i testsrc2=s=640x480:r=25:d=20 -f lavfi -i sine=d=20:r=48000 -ac 2 "
                                              "-c:v mpeg4 -q:v 3 -c:a ac3"));
}

inline QStringList slowConversion(const QString &source)
{
    return {QStringLiteral("convert"), QStringLiteral("--video"), QStringLiteral("mpeg4-2pass"), QStringLiteral("--bitrate"),
            QStringLiteral("1500"), QStringLiteral("--audio"), QStringLiteral("mp3"), source};
}

// Entries of a job's private working folder in dir.
inline QStringList stagingFolders(const QString &dir)
{
    return QDir(dir).entryList({QStringLiteral(".kestrane-job-*")}, QDir::Dirs | QDir::Hidden);
}
