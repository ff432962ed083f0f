#pragma once

#include "MCSelection.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <cstdio>

class MCQueueController;
class MCVideoFile;

// --dry-run: instead of queuing, each started selection is described (the
// tracks it carries and what each becomes, the job type) and its jobs are
// built on a private queue whose steps compose their tool commands without
// starting anything; the commands are printed. No file is written.
class MCDryRun : public QObject
{
    Q_OBJECT
public:
    explicit MCDryRun(std::FILE *out = stdout, QObject *parent = nullptr);
    ~MCDryRun() override;

    // Takes a started selection: the description now (the file and its
    // tracks as they are at this moment), the commands later in run().
    void take(const MCSelectionPtr &selection, const MCVideoFile &file);
    // Composes and prints the commands of every selection taken, in order.
    // Answers whether every job composed at least one command.
    bool run();

    static QString describe(const MCSelection &selection, const MCVideoFile &file);

private:
    QStringList composeCommands(const MCSelectionPtr &selection);
    void print(const QString &text);

    struct Pending
    {
        MCSelectionPtr selection;
        QString description;
    };

    std::FILE *m_out;
    QList<Pending> m_pending;
    MCQueueController *m_queue;
    QStringList m_commands;
};
