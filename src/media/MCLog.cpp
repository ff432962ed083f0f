#include "MCLog.h"

#include "MCTerminalText.h"

#include <QDir>
#include <QFile>
#include <QMutex>
#include <QStandardPaths>
#include <QTextStream>

#include <cstdio>

namespace {

QMutex logMutex;

} // namespace

QString MCLog::stateFolder()
{
    QString base = qEnvironmentVariable("XDG_STATE_HOME");
    if (base.isEmpty())
        base = QDir::homePath() + QStringLiteral("/.local/state");
    return base + QStringLiteral("/kestrane");
}

QString MCLog::logFilePath()
{
    return stateFolder() + QStringLiteral("/kestrane.log");
}

void MCLog::line(const QString &text)
{
    QMutexLocker lock(&logMutex);
    // Lines carry file names and titles; shown raw, their control
    // characters would act on the terminal reading the log.
    const QByteArray bytes = MCTerminalText::escapedLine(text).toUtf8() + '\n';
    if (qEnvironmentVariable("KESTRANE_LOG_QUIET") != QStringLiteral("1")) {
        std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
        std::fflush(stderr);
    }
    static QFile file;
    if (!file.isOpen()) {
        QDir().mkpath(stateFolder());
        file.setFileName(logFilePath());
        if (!file.open(QIODevice::Append))
            return;
    }
    file.write(bytes);
    file.flush();
}

void MCLog::lines(const QString &text)
{
    const QStringList all = text.split(QLatin1Char('\n'));
    for (const QString &entry : all)
        line(entry);
}
