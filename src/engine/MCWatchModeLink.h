#pragma once

#include <QString>
#include <QStringList>

// What the queue needs of the watch-folder mode: a file Kestrane itself
// writes into the watched folder must never be taken up as new input.
class MCWatchModeLink
{
public:
    virtual ~MCWatchModeLink() = default;

    virtual bool appIsInWatchMode() const = 0;
    // Lower-case extensions of the files the watch mode takes up.
    virtual QStringList movieExtensionsList() const = 0;
    // Marks a path as already known (baseWatchFolderMovieList).
    virtual void appendToBaseWatchFolderMovieList(const QString &path) = 0;
};
