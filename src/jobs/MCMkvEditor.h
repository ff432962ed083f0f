#pragma once

#include "MCMkvmergeStep.h"

// Joins MKV files into one, or splits one by a time range, by size or by
// duration, with mkvmerge.
class MCMkvEditor : public MCMkvmergeStep
{
public:
    MCMkvEditor();

    // "AVI Joining" and "AVI Splitting"; any other job type, and a split
    // type or value mkvmerge cannot serve, answer "error" and start nothing.
    QString startConversionFor(const MCSelectionPtr &selection) override;

    QStringList findMismatchedProperetiesFor(const QList<QUrl> &urls) const;

    // The --split option for the selection's split values; empty when they
    // cannot be served.
    static QString splitOptionFor(const MCSelection &selection);

private:
    QString startSplitting();
    QString startJoining();
};
