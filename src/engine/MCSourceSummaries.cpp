#include "MCSourceSummaries.h"

#include <QFileInfo>

MCSourceSummaries::Entry MCSourceSummaries::read(const QString &path) const
{
    const QFileInfo file(path);
    if (m_reports) {
        if (const std::optional<QStringList> report = m_reports->report(file.absoluteFilePath()))
            return {file.size(), file.lastModified(), MCMediaSummary::fromReport(*report)};
    }
    return {file.size(), file.lastModified(), MCMediaSummary::of(path)};
}

bool MCSourceSummaries::unchanged(const Entry &entry, const QString &path)
{
    const QFileInfo file(path);
    return file.exists() && file.size() == entry.size && file.lastModified() == entry.modified;
}

void MCSourceSummaries::remember(const QStringList &paths)
{
    for (const QString &path : paths) {
        {
            QMutexLocker lock(&m_mutex);
            const auto known = m_entries.constFind(path);
            if (known != m_entries.cend() && unchanged(*known, path))
                continue;
        }
        // mediainfo runs unlocked: the check may ask for another source meanwhile.
        Entry entry = read(path);
        QMutexLocker lock(&m_mutex);
        m_entries.insert(path, std::move(entry));
    }
}

MCMediaSummary MCSourceSummaries::of(const QString &path)
{
    remember({path});
    QMutexLocker lock(&m_mutex);
    return m_entries.value(path).summary;
}
