#include "MCCommandLine.h"

#include "MCVideoFile.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <cstdio>

namespace {

void printOut(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
}

void printError(const QString &text)
{
    const QByteArray bytes = (text + QLatin1Char('\n')).toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
}

} // namespace

MCCommandLine::MCCommandLine(QStringList arguments)
    : m_arguments(std::move(arguments))
{
}

int MCCommandLine::run()
{
    QStringList rest = m_arguments.mid(1);
    if (rest.isEmpty()) {
        printHelp();
        return 2;
    }
    const QString command = rest.takeFirst();
    if (command == QStringLiteral("--help") || command == QStringLiteral("-h")) {
        printHelp();
        return 0;
    }
    if (command == QStringLiteral("--version")) {
        printOut(QStringLiteral("kestrane-cli %1\n").arg(QCoreApplication::applicationVersion()));
        return 0;
    }
    if (command == QStringLiteral("inspect"))
        return inspect(rest);
    printError(QStringLiteral("kestrane-cli: unknown command '%1' (see --help)").arg(command));
    return 2;
}

int MCCommandLine::inspect(const QStringList &files)
{
    if (files.isEmpty()) {
        printError(QStringLiteral("kestrane-cli inspect: no file given"));
        return 2;
    }
    int status = 0;
    for (const QString &path : files) {
        MCVideoFile file;
        const QString answer = file.initializeForURL(QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()));
        if (answer != QStringLiteral("OK")) {
            printError(QStringLiteral("%1: %2").arg(path, answer));
            status = 1;
            continue;
        }
        printOut(file.stringFromFileProperties());
    }
    return status;
}

void MCCommandLine::printHelp()
{
    printOut(QStringLiteral("Usage: kestrane-cli COMMAND [OPTION]... FILE...\n"
                            "Convert and edit video files with Kestrane's presets and jobs, without a window.\n\n"
                            "Commands:\n"
                            "  inspect FILE...   print each file's properties and tracks\n\n"
                            "  --help            show this help and exit\n"
                            "  --version         show the version and exit\n"));
}
