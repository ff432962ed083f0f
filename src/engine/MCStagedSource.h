#pragma once

#include <QString>

// MP4Box names some results after the file it reads and writes them beside
// it (extracted tracks, the pieces of a split). To have them made in a job's
// private folder instead, and never beside the user's file, the tool reads
// the source through a link placed there.
class MCStagedSource
{
public:
    // A link called `name` in `folder` that leads to `source`; an entry of
    // that name already there (made for an earlier step of the same job) is
    // used again. Where the folder's file system holds no links, a copy.
    // "" when neither can be made.
    static QString linkInto(const QString &folder, const QString &source, const QString &name);
};
