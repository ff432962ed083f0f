#pragma once

#include "MCMediaSummary.h"
#include "MCReportCache.h"

#include <QDateTime>
#include <QHash>
#include <QMutex>
#include <QStringList>

#include <memory>

// What mediainfo says of a job's sources, read while its tool runs so the
// check of the result does not wait for it. A source that changed since it
// was read (size or time) is read again. A source the intake inspected is
// read from the intake's report instead of running mediainfo again.
class MCSourceSummaries
{
public:
    void useReports(std::shared_ptr<const MCReportCache> reports) { m_reports = std::move(reports); }
    // Reads every path not known yet. Blocks; safe on any thread.
    void remember(const QStringList &paths);
    // The remembered summary while the file is unchanged, else a new read.
    MCMediaSummary of(const QString &path);

private:
    struct Entry
    {
        qint64 size = -1;
        QDateTime modified;
        MCMediaSummary summary;
    };
    Entry read(const QString &path) const;
    static bool unchanged(const Entry &entry, const QString &path);

    std::shared_ptr<const MCReportCache> m_reports;
    QMutex m_mutex;
    QHash<QString, Entry> m_entries;
};
