#pragma once

#include <QHash>
#include <QString>
#include <QVariantMap>

#include <functional>

// How one kind of monitor loop turns its steps' status words into progress
// rows. Every job runs the same loop; only these choices differ.
struct MCMonitorPolicy
{
    // A finished step keeps its row ("Complete") or drops out of the table.
    bool keepFinishedRows = false;
    // "error" (no news in the log) repeats the step's row of the tick
    // before, or shows the last percentage read.
    bool errorShowsLastPercentage = false;
    // Counted monitors: the row's label carries a step counter that goes up
    // whenever the percentage falls back (the tool starts another pass).
    std::function<QString(const QString &stepName, int counter)> countedLabel;
    // Tools that print no progress answer heartbeat words; each has its row.
    QHash<QString, QVariantMap> heartbeatRows;

    // The job base's own loop: finished steps drop out, "error" repeats.
    static MCMonitorPolicy standard() { return {}; }
    // The start monitor: every step keeps its row.
    static MCMonitorPolicy start()
    {
        MCMonitorPolicy policy;
        policy.keepFinishedRows = true;
        return policy;
    }
    // Mux and multi-step monitors: the label counts the tool's passes.
    static MCMonitorPolicy counted(std::function<QString(const QString &, int)> label)
    {
        MCMonitorPolicy policy;
        policy.keepFinishedRows = true;
        policy.errorShowsLastPercentage = true;
        policy.countedLabel = std::move(label);
        return policy;
    }
    // The mux monitor: "Muxing Step #n".
    static MCMonitorPolicy muxSteps()
    {
        return counted([](const QString &, int counter) { return QStringLiteral("Muxing Step #%1").arg(counter); });
    }
    // The multi-step monitor: "<step> Step #n".
    static MCMonitorPolicy numberedSteps()
    {
        return counted(
            [](const QString &stepName, int counter) { return QStringLiteral("%1 Step #%2").arg(stepName).arg(counter); });
    }
};
