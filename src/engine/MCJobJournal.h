#pragma once

#include "MCSelection.h"

#include <QList>
#include <QString>

// The queue on disk: one small file per queued or running job in
// $XDG_STATE_HOME/kestrane/jobs, written whole or not at all, removed when
// the job ends. A file whose Kestrane is gone (killed, a power cut) names an
// interrupted job: its half-written private folder can be removed and the
// job offered again.
class MCJobJournal
{
public:
    explicit MCJobJournal(QString folder = defaultFolder());

    struct Entry
    {
        QString id;
        QString jobType;
        QString jobFileName;
        QString stagingFolder; // "" until the job started
        MCSelectionPtr selection;
    };

    // Records a queued job; answers its id ("" when it cannot be written).
    QString record(const QString &jobType, const QString &jobFileName, const MCSelection &selection);
    // The job started and writes into stagingFolder.
    void noteStarted(const QString &id, const QString &stagingFolder);
    // The job ended or left the queue.
    void forget(const QString &id);

    // Jobs of Kestranes that are no longer running, oldest first.
    QList<Entry> interruptedJobs() const;
    // Takes an interrupted job over for this Kestrane: what it had begun to
    // write is removed and the entry is held under a new id. False when
    // another Kestrane took it first.
    bool claim(Entry &entry);
    // Removes what an interrupted job had begun to write, and its entry.
    void clearUp(const Entry &entry);

    QString folder() const { return m_folder; }
    static QString defaultFolder();

private:
    bool write(const QString &id, const Entry &entry);
    static void removeStagingFolder(const Entry &entry);
    QString m_folder;
};
