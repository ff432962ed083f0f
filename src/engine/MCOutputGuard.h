#pragma once

#include <QList>
#include <QUrl>

// Editing steps compose their output and log names from their inputs' names;
// an unlucky input name (an earlier result joined again, a file called like
// our output) could make a tool write over the user's own file. Steps ask
// this before they start anything.
class MCOutputGuard
{
public:
    // Whether any written file is one of the inputs (the same file, also
    // through another spelling of its path or a symbolic link).
    static bool writesOverAnInput(const QList<QUrl> &written, const QList<QUrl> &inputs);
};
