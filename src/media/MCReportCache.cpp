#include "MCReportCache.h"

#include <QFileInfo>
#include <QMutexLocker>

namespace {

// A batch dropped at once is far smaller; older answers are read again.
constexpr qsizetype kKeptFiles = 64;

} // namespace

const MCReportCache::Entry *MCReportCache::current(const QString &path) const
{
    const QFileInfo file(path);
    for (const Entry &entry : m_entries) {
        if (entry.path == path)
            return entry.modified == file.lastModified() && entry.size == file.size() ? &entry : nullptr;
    }
    return nullptr;
}

MCReportCache::Entry &MCReportCache::entryFor(const QString &path)
{
    const QFileInfo file(path);
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        Entry &entry = m_entries[i];
        if (entry.path != path)
            continue;
        if (entry.modified != file.lastModified() || entry.size != file.size())
            entry = {path, file.lastModified(), file.size(), {}, {}};
        return entry;
    }
    if (m_entries.size() >= kKeptFiles)
        m_entries.removeFirst();
    m_entries.append({path, file.lastModified(), file.size(), {}, {}});
    return m_entries.last();
}

std::optional<QStringList> MCReportCache::report(const QString &path) const
{
    const QMutexLocker lock(&m_mutex);
    const Entry *entry = current(path);
    return entry ? entry->lines : std::nullopt;
}

void MCReportCache::storeReport(const QString &path, const QStringList &lines)
{
    const QMutexLocker lock(&m_mutex);
    entryFor(path).lines = lines;
}

std::optional<bool> MCReportCache::headerRemoval(const QString &path) const
{
    const QMutexLocker lock(&m_mutex);
    const Entry *entry = current(path);
    return entry ? entry->headerRemoval : std::nullopt;
}

void MCReportCache::storeHeaderRemoval(const QString &path, bool found)
{
    const QMutexLocker lock(&m_mutex);
    entryFor(path).headerRemoval = found;
}
