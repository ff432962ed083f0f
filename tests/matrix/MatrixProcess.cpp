#include "MatrixProcess.h"

#include <QProcess>

QString ProcessResult::lastErrorLine() const
{
    const QStringList lines = err.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
        if (!line->trimmed().isEmpty())
            return line->trimmed();
    }
    return QStringLiteral("(no message)");
}

ProcessResult runProcess(const QString &program, const QStringList &arguments,
                         const QProcessEnvironment &environment, int timeoutMs)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    process.closeWriteChannel();
    ProcessResult result;
    if (!process.waitForStarted()) {
        result.err = QStringLiteral("cannot start %1").arg(program);
        return result;
    }
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        result.err = QStringLiteral("%1 did not end within %2 s").arg(program).arg(timeoutMs / 1000);
        return result;
    }
    result.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.bytes = process.readAllStandardOutput();
    result.out = QString::fromUtf8(result.bytes);
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

ProcessResult runShell(const QString &command)
{
    return runProcess(QStringLiteral("/bin/bash"), {QStringLiteral("-c"), command});
}
