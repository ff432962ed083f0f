// Prints how much time kestrane-cli adds around the tools it runs:
// (a) one conversion of a 60-second clip against the same MEncoder command
//     run by hand, and
// (b) a batch of 100 two-second clips against the same commands run back to
//     back.
// The commands by hand are the ones the CLI's dry run prints, so both sides
// do the same work. Figures only; nothing here passes or fails.
#include "MCPreferences.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cstdio>
#include <algorithm>
#include <functional>

namespace {

int runShell(const QString &command)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(QStringLiteral("/bin/bash"), {QStringLiteral("-c"), command});
    process.waitForFinished(-1);
    return process.exitCode();
}

QString cliPath()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/kestrane-cli");
}

QString runCli(const QStringList &arguments, int *status = nullptr)
{
    QProcess process;
    process.start(cliPath(), arguments);
    process.waitForFinished(-1);
    if (status)
        *status = process.exitCode();
    return QString::fromUtf8(process.readAllStandardOutput());
}

// The tool commands of a dry run, each made to run in the foreground.
QStringList dryRunCommands(const QStringList &arguments)
{
    QStringList commands;
    static const QRegularExpression line(QStringLiteral("^  command: (.*)$"), QRegularExpression::MultilineOption);
    QRegularExpressionMatchIterator it = line.globalMatch(runCli(QStringList{QStringLiteral("--dry-run")} + arguments));
    while (it.hasNext()) {
        QString command = it.next().captured(1);
        command.remove(QRegularExpression(QStringLiteral("\\s*&\\s*echo \\$!\\s*$")));
        commands << command;
    }
    return commands;
}

void clearFolder(const QString &path)
{
    QDir(path).removeRecursively();
    QDir().mkpath(path);
}

double timed(const std::function<void()> &work)
{
    QElapsedTimer clock;
    clock.start();
    work();
    return clock.elapsed() / 1000.0;
}

void compare(const char *what, const QStringList &cliArguments, const QString &saveDir)
{
    const QStringList commands = dryRunCommands(cliArguments);
    if (commands.isEmpty()) {
        std::printf("%s: the dry run printed no command\n", what);
        return;
    }
    // Best of three, the two sides taking turns, so a moment of load on the
    // machine does not decide the figure.
    double byHand = 1e9;
    double throughCli = 1e9;
    int status = 0;
    for (int round = 0; round < 3; ++round) {
        byHand = std::min(byHand, timed([&] {
            for (const QString &command : commands)
                runShell(command);
        }));
        clearFolder(saveDir);
        throughCli = std::min(throughCli, timed([&] { runCli(cliArguments, &status); }));
        clearFolder(saveDir);
    }
    std::printf("%s (best of 3)\n  %lld tool commands by hand: %.2f s\n  kestrane-cli (exit %d):      %.2f s = %.3fx\n", what,
                static_cast<long long>(commands.size()), byHand, status, throughCli, throughCli / byHand);
    std::fflush(stdout);
    clearFolder(saveDir);
}

QString makeClip(const QString &dir, const QString &name, int seconds, const QString &size)
{
    const QString pcm = dir + QStringLiteral("/pcm.avi");
    const QString path = dir + QLatin1Char('/') + name;
    runShell(QStringLiteral("ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc2=s=%1:r=25:d=%2 -f lavfi -i sine=d=%2:r=48000 "
                            "-ac 2 -c:v mpeg4 -vtag XVID -q:v 5 -c:a pcm_s16le '%3' && "
                            "mencoder '%3' -ovc copy -oac mp3lame -lameopts cbr:br=128 -o '%4' >/dev/null 2>&1")
                 .arg(size)
                 .arg(seconds)
                 .arg(pcm, path));
    QFile::remove(pcm);
    return path;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    // bench_cli [CLIPS]: the batch's size (100 by default).
    const int clipCount = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 100;
    QTemporaryDir dir;
    qputenv("XDG_STATE_HOME", dir.filePath(QStringLiteral("state")).toUtf8());
    const QString settings = dir.filePath(QStringLiteral("settings.ini"));
    {
        MCPreferences preferences(settings);
        preferences.keepLogsFlag = false;
        preferences.savePreferencesToDefaults();
        // A batch needs a settings preset other than "Manual".
        preferences.saveUserPresetSettingsListFor({QVariantMap{
            {QStringLiteral("pName"), QStringLiteral("Bench")}, {QStringLiteral("pDevice"), QStringLiteral("General")},
            {QStringLiteral("pTypeOfProcessIndex"), 0}, {QStringLiteral("pVideoActionIndex"), 1},
            {QStringLiteral("pVideoBitRate"), QStringLiteral("800")}, {QStringLiteral("pVideoBitRateIndex"), 1},
            {QStringLiteral("pStereoActionIndex"), 1}, {QStringLiteral("pStereoBitRate"), QStringLiteral("128")},
            {QStringLiteral("pSurroundActionIndex"), 1}, {QStringLiteral("pSurroundBitRate"), QStringLiteral("384")},
            {QStringLiteral("pSubAction"), QStringLiteral("Extract")}, {QStringLiteral("isEditable"), true}}});
    }
    const QString saveDir = dir.filePath(QStringLiteral("save"));
    clearFolder(saveDir);
    const QStringList common{QStringLiteral("--settings"), settings, QStringLiteral("--save-dir"), saveDir, QStringLiteral("--quiet"),
                             QStringLiteral("convert"), QStringLiteral("--selection-preset"), QStringLiteral("First Track"),
                             QStringLiteral("--settings-preset"), QStringLiteral("Bench")};

    std::printf("Generating a 60-second 640x360 clip and %d two-second 160x120 clips...\n", clipCount);
    std::fflush(stdout);
    const QString sixty = makeClip(dir.path(), QStringLiteral("sixty.avi"), 60, QStringLiteral("640x360"));
    const QString clips = dir.filePath(QStringLiteral("clips"));
    QDir().mkpath(clips);
    const QString two = makeClip(dir.path(), QStringLiteral("two.avi"), 2, QStringLiteral("160x120"));
    QStringList batch;
    for (int i = 0; i < clipCount; ++i) {
        batch << clips + QStringLiteral("/clip-%1.avi").arg(i, 3, 10, QLatin1Char('0'));
        QFile::copy(two, batch.last());
    }

    compare("(a) one 60-second conversion", common + QStringList{sixty}, saveDir);
    compare(QStringLiteral("(b) a batch of %1 two-second conversions").arg(clipCount).toUtf8().constData(), common + batch, saveDir);
    return 0;
}
