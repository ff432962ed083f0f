#pragma once

#include <QHash>
#include <QString>
#include <QVariantList>

#include <cstdio>
#include <optional>

// Shows the queue's work. On a terminal: one live line per step with a bar
// and the step's status text, redrawn in place; otherwise plain lines when a
// step's status moves on. Quiet mode prints only the summary of each job.
class MCProgressPrinter
{
public:
    enum class Mode { Live, Plain, Quiet };

    explicit MCProgressPrinter(Mode mode, std::FILE *out = stdout);

    // Live on a terminal, Plain otherwise, Quiet when asked.
    static Mode modeFor(std::FILE *out, bool quiet);

    void jobStarted(const QString &name, const QString &jobType, int number, int total);
    // The running job's progress rows ("Step", "Progress").
    void progress(const QVariantList &rows);
    // "Completed: NAME (results)" and "Failed: NAME: REASON (log: PATH)".
    void jobCompleted(const QString &name, const QString &results);
    void jobFailed(const QString &name, const QString &reason, const QString &logPath);
    // A line of its own between jobs (not in quiet mode).
    void note(const QString &text);

    // "[#####...]" of the given width for a percentage.
    static QString bar(std::optional<double> percent, int width);
    static QString liveLine(const QString &step, const QString &status);

private:
    void print(const QString &text);
    void eraseLiveLines();

    Mode m_mode;
    std::FILE *m_out;
    int m_liveLines = 0;
    QHash<QString, QString> m_lastPlain; // step -> what was last printed for it
};
