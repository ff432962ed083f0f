#pragma once

#include <QStringList>

// kestrane-cli's commands: parses the arguments and runs one command.
class MCCommandLine
{
public:
    explicit MCCommandLine(QStringList arguments);

    // The exit status: 0 done, 1 a file or job failed, 2 bad usage.
    int run();

private:
    int inspect(const QStringList &files);
    static void printHelp();

    QStringList m_arguments;
};
