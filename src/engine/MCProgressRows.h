#pragma once

#include "MCMonitorPolicy.h"

#include <QMutex>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

// Turns the status words a monitor tick reads from a job's steps into the
// progress table's rows, as the monitor's policy says. It remembers the rows
// of the tick before and the counted monitors' step counter and last
// percentage. Guarded: the main thread resets it for a new phase while the
// monitor thread reads it.
class MCProgressRows
{
public:
    static QVariantMap row(const QString &step, const QString &progress);

    // A new phase: the counter starts at 1, the percentage at 0.
    void resetCounters();
    int stepCounter() const;
    int lastValue() const;

    // The rows of the tick that ends, for "error" to repeat.
    void beginTick(const QVariantList &previousRows);
    QVariantList previousRows() const;
    // The row for one step's status at its position in the table; empty
    // when the policy drops a finished step's row.
    QVariantMap rowFor(const MCMonitorPolicy &policy, const QString &stepName, QString status, qsizetype position);

private:
    mutable QMutex m_mutex;
    QVariantList m_previousRows;
    int m_stepCounter = 1;
    int m_lastValue = 0;
};
