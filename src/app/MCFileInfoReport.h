#pragma once

#include "MCHelpers.h"

#include <QList>
#include <QStringList>
#include <QUrl>

// "Save File Info": mediainfo's full report of each file written beside it
// (or into the preferred folder) as "NAME.info.txt".
class MCFileInfoReport : public MCHelpers
{
public:
    // Answers the paths written; a report that could not be written is said
    // in a notice, not only logged.
    QStringList save(const QList<QUrl> &files, const QString &preferredFolder) const;
};
