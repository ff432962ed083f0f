#include "MCInterruptedJobs.h"

#include "MCAlertCenter.h"

#include <QPointer>

MCInterruptedJobs::MCInterruptedJobs(MCJobJournal &journal, std::function<void(const MCSelectionPtr &)> queueSelection, QObject *parent)
    : QObject(parent)
    , m_journal(journal)
    , m_queueSelection(std::move(queueSelection))
{
}

QList<MCJobJournal::Entry> MCInterruptedJobs::find()
{
    QList<MCJobJournal::Entry> claimed;
    for (MCJobJournal::Entry job : m_journal.interruptedJobs()) {
        // Two Kestranes started together must not both offer the same job.
        if (m_journal.claim(job))
            claimed << job;
    }
    return claimed;
}

void MCInterruptedJobs::runAgain(const QList<MCJobJournal::Entry> &jobs)
{
    for (const MCJobJournal::Entry &job : jobs) {
        m_journal.forget(job.id);
        if (m_queueSelection)
            m_queueSelection(job.selection);
    }
}

void MCInterruptedJobs::forget(const QList<MCJobJournal::Entry> &jobs)
{
    for (const MCJobJournal::Entry &job : jobs)
        m_journal.forget(job.id);
}

void MCInterruptedJobs::offer()
{
    const QList<MCJobJournal::Entry> jobs = find();
    if (jobs.isEmpty())
        return;
    QStringList names;
    for (const MCJobJournal::Entry &job : jobs)
        names << QStringLiteral("%1 (%2)").arg(job.jobFileName, job.jobType);
    MCAlert alert;
    alert.message = jobs.size() == 1 ? QStringLiteral("Kestrane was stopped before a job had finished.")
                                     : QStringLiteral("Kestrane was stopped before %1 jobs had finished.").arg(jobs.size());
    alert.informativeText = names.join(QLatin1Char('\n'))
                            + QStringLiteral("\n\nWhat they had begun to write has been removed. Run them again?");
    alert.buttons = {QStringLiteral("OK"), QStringLiteral("Cancel")};
    MCAlertCenter::instance().present(alert, [self = QPointer<MCInterruptedJobs>(this), jobs](int code) {
        if (!self)
            return;
        if (code == MCAlertFirstButtonReturn)
            self->runAgain(jobs);
        else
            self->forget(jobs);
    });
}
