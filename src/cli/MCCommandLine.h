#pragma once

#include <QStringList>

struct MCCliOptions;

// kestrane-cli's commands: parses the arguments and runs one command.
class MCCommandLine
{
public:
    explicit MCCommandLine(QStringList arguments);

    // The exit status: 0 done, 1 a file or job failed, 2 bad usage.
    int run();

    static QString helpText();
    static QString versionText();

private:
    static int inspect(const MCCliOptions &options);

    QStringList m_arguments;
};
