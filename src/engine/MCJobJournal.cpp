#include "MCJobJournal.h"

#include "MCJobStaging.h"
#include "MCLog.h"
#include "MCSelectionJson.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <atomic>
#include <cstdio>

namespace {

std::atomic<int> nextEntry{1};

// When a process started, in clock ticks since boot: with the process
// number it tells this Kestrane from a later process that got its number.
qint64 startTimeOf(qint64 pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray line = stat.readAll();
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    // Field 22 of the line; the state (field 3) comes first after the name.
    return fields.size() > 19 ? fields.at(19).toLongLong() : -1;
}

bool isRunning(qint64 pid, qint64 startTime)
{
    return pid > 0 && startTime >= 0 && startTimeOf(pid) == startTime;
}

// An entry's name "PID-START-N" names the Kestrane that holds it; a claimed
// entry holds its new owner's name before its content is rewritten.
bool nameOwnerRuns(const QString &id)
{
    const QStringList parts = id.split(QLatin1Char('-'));
    return parts.size() == 3 && isRunning(parts.at(0).toLongLong(), parts.at(1).toLongLong());
}

QString newId()
{
    const qint64 pid = QCoreApplication::applicationPid();
    return QStringLiteral("%1-%2-%3").arg(pid).arg(startTimeOf(pid)).arg(nextEntry.fetch_add(1));
}

} // namespace

MCJobJournal::MCJobJournal(QString folder)
    : m_folder(std::move(folder))
{
}

QString MCJobJournal::defaultFolder()
{
    return MCLog::stateFolder() + QStringLiteral("/jobs");
}

QString MCJobJournal::record(const QString &jobType, const QString &jobFileName, const MCSelection &selection)
{
    const QString id = newId();
    Entry entry{id, jobType, jobFileName, QString(), std::make_shared<MCSelection>(selection)};
    return write(id, entry) ? id : QString();
}

bool MCJobJournal::write(const QString &id, const Entry &entry)
{
    if (!QDir().mkpath(m_folder))
        return false;
    const qint64 pid = QCoreApplication::applicationPid();
    const QJsonObject object{
        {QStringLiteral("pid"), pid},
        {QStringLiteral("processStart"), startTimeOf(pid)},
        {QStringLiteral("queuedAt"), QDateTime::currentDateTimeUtc().toString(Qt::ISODate)},
        {QStringLiteral("jobType"), entry.jobType},
        {QStringLiteral("jobFileName"), entry.jobFileName},
        {QStringLiteral("stagingFolder"), entry.stagingFolder},
        {QStringLiteral("selection"), MCSelectionJson::toJson(*entry.selection)},
    };
    QSaveFile file(QDir(m_folder).filePath(id + QStringLiteral(".json")));
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(object).toJson(QJsonDocument::Compact)) < 0
        || !file.commit()) {
        MCLog::line(QStringLiteral("Could not note the queued job in %1: %2").arg(file.fileName(), file.errorString()));
        return false;
    }
    return true;
}

void MCJobJournal::noteStarted(const QString &id, const QString &stagingFolder)
{
    if (id.isEmpty())
        return;
    QFile file(QDir(m_folder).filePath(id + QStringLiteral(".json")));
    if (!file.open(QIODevice::ReadOnly))
        return;
    QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    file.close();
    Entry entry{id, object.value(QStringLiteral("jobType")).toString(), object.value(QStringLiteral("jobFileName")).toString(),
                stagingFolder, MCSelectionJson::fromJson(object.value(QStringLiteral("selection")).toObject())};
    write(id, entry);
}

void MCJobJournal::forget(const QString &id)
{
    if (!id.isEmpty())
        QFile::remove(QDir(m_folder).filePath(id + QStringLiteral(".json")));
}

QList<MCJobJournal::Entry> MCJobJournal::interruptedJobs() const
{
    QList<Entry> entries;
    const QFileInfoList files = QDir(m_folder).entryInfoList({QStringLiteral("*.json")}, QDir::Files, QDir::Time | QDir::Reversed);
    for (const QFileInfo &info : files) {
        QFile file(info.absoluteFilePath());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
        if (nameOwnerRuns(info.completeBaseName())
            || isRunning(object.value(QStringLiteral("pid")).toInteger(), object.value(QStringLiteral("processStart")).toInteger(-1)))
            continue; // another Kestrane's queue, still at work
        const QJsonObject selection = object.value(QStringLiteral("selection")).toObject();
        if (selection.isEmpty()) {
            MCLog::line(QStringLiteral("Unreadable queue entry %1 dropped").arg(info.fileName()));
            file.remove();
            continue;
        }
        entries << Entry{info.completeBaseName(), object.value(QStringLiteral("jobType")).toString(),
                         object.value(QStringLiteral("jobFileName")).toString(),
                         object.value(QStringLiteral("stagingFolder")).toString(), MCSelectionJson::fromJson(selection)};
    }
    return entries;
}

bool MCJobJournal::claim(Entry &entry)
{
    const QString id = newId();
    // rename(2) moves the entry for one process only: a second Kestrane
    // that found the same interrupted job finds it gone and leaves it.
    const QByteArray from = QFile::encodeName(QDir(m_folder).filePath(entry.id + QStringLiteral(".json")));
    const QByteArray to = QFile::encodeName(QDir(m_folder).filePath(id + QStringLiteral(".json")));
    if (std::rename(from.constData(), to.constData()) != 0)
        return false;
    entry.id = id;
    removeStagingFolder(entry);
    entry.stagingFolder.clear();
    write(id, entry);
    return true;
}

void MCJobJournal::clearUp(const Entry &entry)
{
    removeStagingFolder(entry);
    forget(entry.id);
}

void MCJobJournal::removeStagingFolder(const Entry &entry)
{
    // Only ever a job's own private folder: never a path an entry merely names.
    const QFileInfo staging(entry.stagingFolder);
    if (!entry.stagingFolder.isEmpty() && staging.fileName().startsWith(MCJobStaging::folderPrefix()) && staging.isDir()
        && !staging.isSymLink()) {
        QDir(staging.absoluteFilePath()).removeRecursively();
        MCLog::line(QStringLiteral("Removed what the interrupted job of %1 had begun: %2").arg(entry.jobFileName, entry.stagingFolder));
    }
}
