#include "MCHelpers.h"

#include "MCAlertCenter.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStringDecoder>

#include <csignal>

#include <unistd.h>

namespace {

// Commands run through bash: Debian's /bin/sh (dash) has no "&>".
const QString kShell = QStringLiteral("/bin/bash");

QString firstExistingFolder(const QStringList &candidates)
{
    for (const QString &candidate : candidates) {
        if (QFileInfo(candidate).isDir())
            return QDir(candidate).absolutePath();
    }
    return {};
}

struct ShellResult
{
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

// QProcess drains both pipes while it waits, so a chatty tool can never
// fill a pipe and block; the background pattern returns as soon as the
// shell has printed the process number.
// A time limit (in ms, -1 none) ends the shell and everything it started
// when it is passed; the answer is then empty.
ShellResult runShell(const QString &command, const QString &workingDirectory, int timeLimitMs = -1)
{
    QProcess process;
    process.setProgram(kShell);
    process.setArguments({QStringLiteral("-c"), command});
    if (!workingDirectory.isEmpty())
        process.setWorkingDirectory(workingDirectory);
    // Its own process group, so that the tool goes with the shell.
    process.setChildProcessModifier([] { ::setpgid(0, 0); });
    process.start();
    if (!process.waitForStarted(-1))
        return {-1, {}, process.errorString().toUtf8()};
    process.closeWriteChannel();
    if (!process.waitForFinished(timeLimitMs)) {
        ::kill(-static_cast<pid_t>(process.processId()), SIGKILL);
        process.waitForFinished(-1);
        return {};
    }
    ShellResult result;
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

QString resultText(const ShellResult &result)
{
    return MCHelpers::decodeToolOutput(result.exitCode == 0 ? result.out : result.err);
}

} // namespace

QString MCHelpers::resourceFolderPath()
{
    const QString fromEnvironment = qEnvironmentVariable("KESTRANE_RESOURCES");
    if (!fromEnvironment.isEmpty())
        return QDir(fromEnvironment).absolutePath();
    const QString appDir = QCoreApplication::instance()
                               ? QCoreApplication::applicationDirPath()
                               : QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget().section('/', 0, -2);
    return firstExistingFolder({appDir + QStringLiteral("/../resources"),
                                appDir + QStringLiteral("/../share/kestrane/resources")});
}

QUrl MCHelpers::urlOfApp(const QString &name)
{
    const QString folder = resourceFolderPath();
    const QString lower = name.toLower();
    if (lower.startsWith(QStringLiteral("mkv")))
        return QUrl::fromLocalFile(folder + QStringLiteral("/Frameworks/") + lower);
    if (name == QStringLiteral("mp4box"))
        return QUrl::fromLocalFile(folder + QStringLiteral("/mp4boxUpdated/MP4box"));
    const QString path = folder + QLatin1Char('/') + lower;
    if (folder.isEmpty() || !QFileInfo::exists(path))
        return {};
    return QUrl::fromLocalFile(path);
}

QString MCHelpers::commandFromOptions(const QString &head, const MCOptionList &options)
{
    QString command = head;
    for (const QVariant &option : options) {
        if (option.typeId() == QMetaType::QUrl)
            command += QLatin1Char(' ') + doubleQuotedFormOf(option.toUrl().toLocalFile());
        else if (option.typeId() == QMetaType::QString && !option.toString().isEmpty())
            command += QLatin1Char(' ') + option.toString();
    }
    return command;
}

QString MCHelpers::headForTool(const QUrl &tool, const MCOptionList &options)
{
    const QString toolPath = doubleQuotedFormOf(tool.toLocalFile());
    const QString toolName = QFileInfo(tool.toLocalFile()).fileName().toLower();
    // C.UTF-8 exists on every Debian system; en_US.UTF-8 may not be generated.
    if (toolName.contains(QStringLiteral("mkv")))
        return QStringLiteral("export LANG=C.UTF-8; ") + toolPath;
    if (toolName.contains(QStringLiteral("ffmpeg"))) {
        for (const QVariant &option : options) {
            if (option.typeId() == QMetaType::QString && option.toString().contains(QStringLiteral("ass="))) {
                const QString fonts = resourceFolderPath() + QStringLiteral("/fonts");
                return QStringLiteral("export FONTCONFIG_PATH=%1; export FONTCONFIG_FILE=%2;")
                           .arg(doubleQuotedFormOf(fonts), doubleQuotedFormOf(fonts + QStringLiteral("/fonts.conf")))
                       + toolPath;
            }
        }
    }
    return toolPath;
}

QString MCHelpers::decodeToolOutput(const QByteArray &bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8(bytes);
    if (utf8.hasError()) {
        text.clear();
        for (const char byte : bytes)
            text += QChar(static_cast<unsigned char>(byte) & 0x7f);
    }
    if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    return text;
}

QString MCHelpers::doUnixCommand(const QString &head, const MCOptionList &options)
{
    return resultText(runShell(commandFromOptions(head, options), {}));
}

QString MCHelpers::doShellScriptFor(const QUrl &tool, const MCOptionList &options)
{
    return doShellScriptFor(tool, options, -1);
}

QString MCHelpers::doShellScriptFor(const QUrl &tool, const MCOptionList &options, int timeLimitMs)
{
    const QString command = commandFromOptions(headForTool(tool, options), options);
    // Tools start in the folder that holds Kestrane's executable folder.
    const QString workingDirectory = QCoreApplication::instance()
                                         ? QDir(QCoreApplication::applicationDirPath() + QStringLiteral("/..")).absolutePath()
                                         : QString();
    return resultText(runShell(command, workingDirectory, timeLimitMs));
}

QString MCHelpers::singleQuotedFormOf(const QString &text)
{
    QString escaped = text;
    escaped.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return QLatin1Char('\'') + escaped + QLatin1Char('\'');
}

QString MCHelpers::doubleQuotedFormOf(const QString &text)
{
    QString escaped;
    escaped.reserve(text.size() + 2);
    for (const QChar c : text) {
        if (c == QLatin1Char('"') || c == QLatin1Char('$') || c == QLatin1Char('`') || c == QLatin1Char('\\'))
            escaped += QLatin1Char('\\');
        escaped += c;
    }
    return QLatin1Char('"') + escaped + QLatin1Char('"');
}

bool MCHelpers::isStringInteger(const QString &text)
{
    if (text == QStringLiteral("0"))
        return true;
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    if (i < text.size() && (text.at(i) == QLatin1Char('+') || text.at(i) == QLatin1Char('-')))
        ++i;
    bool nonZero = false;
    for (; i < text.size() && text.at(i).isDigit(); ++i) {
        if (text.at(i) != QLatin1Char('0'))
            nonZero = true;
    }
    return nonZero;
}

bool MCHelpers::processIsRunning(const QString &pid)
{
    if (pid.trimmed().toLongLong() == 0)
        return false;
    // A finished tool whose parent is gone can linger as a zombie where the
    // init process does not reap; a zombie has ended, so it counts as gone.
    const QString state = doUnixCommand(QStringLiteral("ps"),
                                        {QStringLiteral("-o stat="), QStringLiteral("-p"), QString::number(pid.trimmed().toLongLong())});
    return !state.trimmed().isEmpty() && !state.trimmed().startsWith(QLatin1Char('Z'));
}

bool MCHelpers::fileExistsAtURL(const QUrl &url)
{
    const QString path = url.toLocalFile();
    return !path.isEmpty() && QFileInfo::exists(path);
}

bool MCHelpers::directoryPathExistsFor(const QString &path)
{
    QString expanded = path;
    if (expanded.startsWith(QLatin1Char('~')))
        expanded.replace(0, 1, QDir::homePath());
    return !expanded.isEmpty() && QFileInfo(expanded).isDir();
}

void MCHelpers::showTimedNotice(const QString &message, const QString &informativeText, double seconds)
{
    MCAlert alert;
    alert.message = message;
    alert.informativeText = informativeText;
    alert.timeoutSeconds = seconds;
    MCAlertCenter::instance().present(alert);
}
