#include "MCWatchModeFollowUp.h"

#include "MCJob.h"

#include <algorithm>

MCWatchModeFollowUp::MCWatchModeFollowUp(int graceMs)
    : m_graceMs(graceMs)
{
}

quint64 MCWatchModeFollowUp::newestSerial(const QList<MCJob *> &jobs)
{
    quint64 newest = 0;
    for (const MCJob *job : jobs)
        newest = std::max(newest, job->jobSerial());
    return newest;
}

void MCWatchModeFollowUp::handedOn(const QUrl &file, quint64 newestSerial)
{
    Pending pending{file, newestSerial, {}};
    pending.since.start();
    m_pending << pending;
}

MCWatchModeFollowUp::Outcome MCWatchModeFollowUp::refused(const QUrl &file, const QString &reason)
{
    return failed(file, reason);
}

const MCJob *MCWatchModeFollowUp::jobOf(const Pending &pending, const QList<MCJob *> &jobs)
{
    const QString path = pending.file.toLocalFile();
    for (const MCJob *job : jobs) {
        if (job->jobSerial() > pending.newestSerial && job->jobSelection && job->jobSelection->videoTrackFilePath == path)
            return job;
    }
    return nullptr;
}

QList<MCWatchModeFollowUp::Outcome> MCWatchModeFollowUp::check(const QList<MCJob *> &jobs)
{
    QList<Outcome> outcomes;
    for (auto pending = m_pending.begin(); pending != m_pending.end();) {
        const MCJob *job = jobOf(*pending, jobs);
        QString reason;
        bool ended = false;
        if (!job && pending->since.elapsed() >= m_graceMs) {
            reason = QStringLiteral("no job was queued for it");
            ended = true;
        } else if (job && job->jobStatus() == QStringLiteral("Completed") && !job->hasFailed()) {
            m_attempts.remove(pending->file.toLocalFile());
            ended = true;
        } else if (job && job->hasFailed()) {
            reason = job->failureReason();
            ended = true;
        }
        if (!ended) {
            ++pending;
            continue;
        }
        const QUrl file = pending->file;
        pending = m_pending.erase(pending);
        if (!reason.isEmpty())
            outcomes << failed(file, reason);
    }
    return outcomes;
}

MCWatchModeFollowUp::Outcome MCWatchModeFollowUp::failed(const QUrl &file, const QString &reason)
{
    const int attempts = ++m_attempts[file.toLocalFile()];
    if (attempts < maxAttempts)
        return {file, Verdict::TryAgain, reason};
    m_attempts.remove(file.toLocalFile());
    m_givenUp << QStringLiteral("%1: %2").arg(file.toLocalFile(), reason);
    return {file, Verdict::GiveUp, reason};
}
