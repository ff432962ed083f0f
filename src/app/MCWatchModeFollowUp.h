#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

class MCJob;

// Follows each movie watch mode hands to the intake until a job made from
// it has completed. A movie the intake refused (half-written, not a movie),
// or whose job was never queued or failed, is to be tried again once it
// has held its size for another scan; after maxAttempts tries it is given
// up, so a damaged file is not converted forever.
class MCWatchModeFollowUp
{
public:
    static constexpr int maxAttempts = 3;

    // graceMs: how long after the hand-on a job must have appeared.
    explicit MCWatchModeFollowUp(int graceMs);

    enum class Verdict { TryAgain, GiveUp };
    struct Outcome
    {
        QUrl file;
        Verdict verdict;
        QString reason;
    };

    // The intake took the movie; jobs with a serial above newestSerial
    // made from it are its own.
    void handedOn(const QUrl &file, quint64 newestSerial);
    // The intake refused the movie at once.
    Outcome refused(const QUrl &file, const QString &reason);
    // Looks at the queue: forgets movies whose job completed; answers the
    // ones whose job failed or never came.
    QList<Outcome> check(const QList<MCJob *> &jobs);

    // Movies given up, as "PATH: REASON", oldest first.
    const QStringList &givenUp() const { return m_givenUp; }
    static quint64 newestSerial(const QList<MCJob *> &jobs);

private:
    struct Pending
    {
        QUrl file;
        quint64 newestSerial;
        QElapsedTimer since;
    };
    Outcome failed(const QUrl &file, const QString &reason);
    static const MCJob *jobOf(const Pending &pending, const QList<MCJob *> &jobs);

    int m_graceMs;
    QList<Pending> m_pending;
    QHash<QString, int> m_attempts;
    QStringList m_givenUp;
};
