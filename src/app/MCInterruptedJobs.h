#pragma once

#include "MCJobJournal.h"
#include "MCSelection.h"

#include <QList>
#include <QObject>

#include <functional>

// Jobs an earlier Kestrane was killed before it finished, as its journal
// has them: what they had begun to write is removed as they are found, and
// they stay on record until run again or let go.
class MCInterruptedJobs : public QObject
{
    Q_OBJECT

public:
    MCInterruptedJobs(MCJobJournal &journal, std::function<void(const MCSelectionPtr &)> queueSelection, QObject *parent = nullptr);

    QList<MCJobJournal::Entry> find();
    void runAgain(const QList<MCJobJournal::Entry> &jobs);
    void forget(const QList<MCJobJournal::Entry> &jobs);
    // The window's question: run them again (OK) or let them go (Cancel).
    void offer();

private:
    MCJobJournal &m_journal;
    std::function<void(const MCSelectionPtr &)> m_queueSelection;
};
