#pragma once

#include <QString>

// Why a path given on the command line cannot be read as an input file, in
// the system's own words ("No such file or directory", "Too many levels of
// symbolic links", "Permission denied", ...), or "" when it can.
class MCInputFileCheck
{
public:
    static QString problem(const QString &path);
};
