#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

// What a finished tool left: its exit status (-1 when it crashed or hung)
// and its output.
struct ProcessResult
{
    int status = -1;
    QByteArray bytes; // standard output as it came
    QString out;
    QString err;

    bool ok() const { return status == 0; }
    // The last non-empty line of standard error, trimmed.
    QString lastErrorLine() const;
};

// Runs a program without a shell and waits for it (from any thread).
ProcessResult runProcess(const QString &program, const QStringList &arguments,
                         const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment(),
                         int timeoutMs = 240000);

// Runs a command line through bash.
ProcessResult runShell(const QString &command);
