#pragma once

#include <QString>

// Kestrane's line log: every line goes to stderr and to
// $XDG_STATE_HOME/kestrane/kestrane.log. KESTRANE_LOG_QUIET=1 keeps stderr quiet.
class MCLog
{
public:
    static void line(const QString &text);
    static void lines(const QString &text); // one entry per line of text
    static QString logFilePath();
    // $XDG_STATE_HOME/kestrane (~/.local/state/kestrane): what Kestrane keeps
    // between runs that is not a setting.
    static QString stateFolder();
};
