#pragma once

#include <QDateTime>
#include <QList>
#include <QMutex>
#include <QString>
#include <QStringList>

#include <optional>

// What the inspection tools said of recent files (mediainfo's report, and
// whether mkvinfo found header removal), kept while the file is unchanged.
// One cache is shared by the loaded file and the files asked about before
// loading, so a dropped file is inspected once, whichever thread asked first.
class MCReportCache
{
public:
    std::optional<QStringList> report(const QString &path) const;
    void storeReport(const QString &path, const QStringList &lines);
    std::optional<bool> headerRemoval(const QString &path) const;
    void storeHeaderRemoval(const QString &path, bool found);

private:
    struct Entry
    {
        QString path;
        QDateTime modified;
        qint64 size = -1;
        std::optional<QStringList> lines;
        std::optional<bool> headerRemoval;
    };

    // The entry for the file as it is now; a changed file's entry is stale.
    const Entry *current(const QString &path) const;
    Entry &entryFor(const QString &path);

    mutable QMutex m_mutex;
    QList<Entry> m_entries;
};
