#include "MCCliResume.h"

#include "MCAppDelegate.h"
#include "MCTerminalText.h"

int MCCliResume::runAgain(MCAppDelegate &app)
{
    const QList<MCJobJournal::Entry> jobs = app.interruptedJobs();
    if (jobs.isEmpty()) {
        MCTerminalText::print(stderr, QStringLiteral("kestrane-cli: no interrupted jobs to resume\n"));
        return 0;
    }
    app.runInterruptedJobsAgain(jobs);
    return static_cast<int>(jobs.size());
}

void MCCliResume::tellOfInterruptedJobs(MCAppDelegate &app)
{
    const QList<MCJobJournal::Entry> jobs = app.interruptedJobs();
    if (jobs.isEmpty())
        return;
    QString text = QStringLiteral("kestrane-cli: %1 job(s) of an earlier run did not finish; what they had begun to "
                                  "write has been removed. Run 'kestrane-cli --resume' to run them again:\n")
                       .arg(jobs.size());
    for (const MCJobJournal::Entry &job : jobs)
        text += QStringLiteral("  %1 (%2)\n").arg(MCTerminalText::escapedLine(job.jobFileName), job.jobType);
    MCTerminalText::print(stderr, text);
}
