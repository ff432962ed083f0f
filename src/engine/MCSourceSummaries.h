#pragma once

#include "MCMediaSummary.h"

#include <QDateTime>
#include <QHash>
#include <QMutex>
#include <QStringList>

// What mediainfo says of a job's sources, read while its tool runs so the
// check of the result does not wait for it. A source that changed since it
// was read (size or time) is read again.
class MCSourceSummaries
{
public:
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
    static Entry read(const QString &path);
    static bool unchanged(const Entry &entry, const QString &path);

    QMutex m_mutex;
    QHash<QString, Entry> m_entries;
};
