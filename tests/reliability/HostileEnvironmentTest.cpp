// kestrane-cli against what a hostile environment does to it: names that are
// taken by links or stale files, a file system that fills up, a second
// Kestrane at the same time, and signals that end it half-way. Every case
// ends with the same three checks: no tool of the job still runs, the
// source is unchanged, and nothing is reported done that is not.
#include "ReliabilitySupport.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

const QStringList kEncode{QStringLiteral("--video"), QStringLiteral("mpeg4"), QStringLiteral("--bitrate"), QStringLiteral("300"),
                          QStringLiteral("--audio"), QStringLiteral("mp3")};

ino_t inodeOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
}

void expectCleanEnd(const Workspace &ws)
{
    EXPECT_TRUE(ws.sourceUnchanged());
    const QStringList left = ws.leftoverProcessesAfterWait();
    EXPECT_TRUE(left.isEmpty()) << left.join('\n').toStdString();
}

// Runs a slow conversion, and once its tools are at work sends signal.
struct Interrupted
{
    int exitCode = -1;
    QProcess::ExitStatus exitStatus = QProcess::NormalExit;
    QString out;
};

Interrupted interruptMidway(const Workspace &ws, int signalNumber)
{
    QProcess cli;
    cli.start(cliPath(), ws.withSettings(slowConversion(ws.source)));
    EXPECT_TRUE(cli.waitForStarted());
    const bool working = testsupport::waitUntil([&] { return !stagingFolders(ws.dir.path()).isEmpty(); }, 60000);
    EXPECT_TRUE(working) << cli.readAllStandardError().toStdString();
    QThread::msleep(700);
    EXPECT_EQ(cli.state(), QProcess::Running) << "the job ended before the signal";
    ::kill(static_cast<pid_t>(cli.processId()), signalNumber);
    EXPECT_TRUE(cli.waitForFinished(60000));
    return {cli.exitCode(), cli.exitStatus(), QString::fromUtf8(cli.readAllStandardOutput())};
}

} // namespace

TEST(TakenOutputNames, HardLinksAndPlantedSymlinksAreNeverWrittenThrough)
{
    const Workspace ws(xvidAvi(QStringLiteral("linked.avi")));
    const QString second = ws.path(QStringLiteral("second.avi"));
    ASSERT_TRUE(QFile::copy(xvidAvi(QStringLiteral("joined-second.avi")), second));
    // The conversion's and the join's result names, both second names of the source.
    for (const QString &name : {QStringLiteral("linked.avi.avi"), QStringLiteral("linked.avi.joined.avi")})
        ASSERT_EQ(::link(QFile::encodeName(ws.source).constData(), QFile::encodeName(ws.path(name)).constData()), 0);

    CliResult result = runCli(ws.withSettings(QStringList{QStringLiteral("convert")} + kEncode + QStringList{ws.source}));
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    QStringList results = completedResults(result.out);
    ASSERT_EQ(results.size(), 1) << result.out.toStdString();
    EXPECT_NE(QFileInfo(results.first()).fileName(), QStringLiteral("linked.avi.avi"));
    EXPECT_NEAR(durationMs(results.first()), 2000.0, 300.0);

    result = runCli(ws.withSettings({QStringLiteral("join"), ws.source, second}));
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    results = completedResults(result.out);
    ASSERT_EQ(results.size(), 1) << result.out.toStdString();
    EXPECT_NEAR(durationMs(results.first()), 4000.0, 400.0) << "the join read its own output back";
    for (const QString &name : {QStringLiteral("linked.avi.avi"), QStringLiteral("linked.avi.joined.avi")})
        EXPECT_EQ(inodeOf(ws.path(name)), inodeOf(ws.source)) << name.toStdString();

    // A link planted at the result's name, pointing at something precious.
    const Workspace planted(xvidAvi(QStringLiteral("planted.avi")));
    const QString precious = planted.path(QStringLiteral("precious.txt"));
    QFile file(precious);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("keep me\n");
    file.close();
    ASSERT_TRUE(QFile::link(precious, planted.path(QStringLiteral("planted.avi.avi"))));
    result = runCli(planted.withSettings(QStringList{QStringLiteral("convert")} + kEncode + QStringList{planted.source}));
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    QFile reread(precious);
    ASSERT_TRUE(reread.open(QIODevice::ReadOnly));
    EXPECT_EQ(reread.readAll(), QByteArray("keep me\n"));
    EXPECT_TRUE(QFileInfo(planted.path(QStringLiteral("planted.avi.avi"))).isSymLink());
    expectCleanEnd(ws);
    expectCleanEnd(planted);
}

TEST(StaleResults, AFileOfAnEarlierRunNeverPassesAsThisRunsResult)
{
    const Workspace ws(xvidAvi(QStringLiteral("stale.avi")));
    // A piece an earlier split left, valid media of the right name.
    const QString stale = ws.path(QStringLiteral("stale.avi.split-0000.avi"));
    ASSERT_TRUE(QFile::copy(ws.source, stale));
    const QByteArray staleSum = testsupport::checksum(stale);

    const CliResult result = runCli(ws.withSettings({QStringLiteral("split"), ws.source, QStringLiteral("--time"),
                                                     QStringLiteral("00:00:05-00:00:09")}));
    EXPECT_NE(result.status, 0) << "a range past the end of a 2-second clip: " << result.out.toStdString();
    EXPECT_TRUE(completedResults(result.out).isEmpty()) << result.out.toStdString();
    EXPECT_EQ(testsupport::checksum(stale), staleSum);
    EXPECT_TRUE(stagingFolders(ws.dir.path()).isEmpty());
    expectCleanEnd(ws);
}

TEST(FullDisk, AResultCutShortByTheFileSizeLimitIsAFailure)
{
    const Workspace ws(slowClip());
    // A tiny file-size limit stands in for a save folder that fills up.
    QProcess cli;
    cli.start(QStringLiteral("bash"), QStringList{QStringLiteral("-c"), QStringLiteral("ulimit -f 256; exec \"$0\" \"$@\""), cliPath()}
                                          + ws.withSettings(QStringList{QStringLiteral("convert")} + kEncode
                                                            + QStringList{QStringLiteral("--bitrate"), QStringLiteral("3000"), ws.source}));
    ASSERT_TRUE(cli.waitForFinished(120000));
    const QString out = QString::fromUtf8(cli.readAllStandardOutput());
    EXPECT_EQ(cli.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(cli.exitCode(), 1) << out.toStdString() << cli.readAllStandardError().toStdString();
    EXPECT_TRUE(out.contains(QStringLiteral("Failed: slow.avi"))) << out.toStdString();
    EXPECT_TRUE(completedResults(out).isEmpty());
    EXPECT_FALSE(QFile::exists(ws.path(QStringLiteral("slow.avi.avi"))));
    EXPECT_TRUE(stagingFolders(ws.dir.path()).isEmpty());
    expectCleanEnd(ws);
}

TEST(TwoKestranes, ConvertingTheSameSourceIntoOneFolderGiveTwoSoundResults)
{
    const Workspace ws(xvidAvi(QStringLiteral("twice.avi"), 3));
    const QStringList arguments = ws.withSettings({QStringLiteral("convert"), QStringLiteral("--video"), QStringLiteral("mpeg4-2pass"),
                                                   QStringLiteral("--bitrate"), QStringLiteral("300"), QStringLiteral("--audio"),
                                                   QStringLiteral("mp3"), ws.source});
    QProcess first;
    QProcess second;
    first.start(cliPath(), arguments);
    second.start(cliPath(), arguments);
    ASSERT_TRUE(first.waitForFinished(120000));
    ASSERT_TRUE(second.waitForFinished(120000));
    EXPECT_EQ(first.exitCode(), 0) << first.readAllStandardError().toStdString();
    EXPECT_EQ(second.exitCode(), 0) << second.readAllStandardError().toStdString();
    const QStringList results = completedResults(QString::fromUtf8(first.readAllStandardOutput()))
                                + completedResults(QString::fromUtf8(second.readAllStandardOutput()));
    ASSERT_EQ(results.size(), 2);
    EXPECT_NE(results.at(0), results.at(1));
    for (const QString &path : results) {
        EXPECT_NEAR(durationMs(path), 3000.0, 300.0) << path.toStdString();
        // Every frame there: not two writers' pieces of one file.
        EXPECT_EQ(testsupport::mediaInfo(path, QStringLiteral("Video"), QStringLiteral("FrameCount")), QStringLiteral("75"));
    }
    EXPECT_TRUE(stagingFolders(ws.dir.path()).isEmpty());
    expectCleanEnd(ws);
}

TEST(Signals, HangupAndBrokenPipeStopTheJobAsInterruptDoes)
{
    const Workspace ws(slowClip());
    const Interrupted hangup = interruptMidway(ws, SIGHUP);
    EXPECT_EQ(hangup.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(hangup.exitCode, 128 + SIGHUP);
    EXPECT_TRUE(completedResults(hangup.out).isEmpty());
    EXPECT_TRUE(ws.newEntries().isEmpty()) << ws.newEntries().join(' ').toStdString();
    expectCleanEnd(ws);

    // "kestrane-cli ... | head -n 1": the reader leaves after the first line.
    const QString script = QStringLiteral("\"$0\" \"$@\" | head -n 1 >/dev/null; echo \"status ${PIPESTATUS[0]}\" >&2");
    QProcess pipeline;
    pipeline.start(QStringLiteral("bash"), QStringList{QStringLiteral("-c"), script, cliPath()} + ws.withSettings(slowConversion(ws.source)));
    ASSERT_TRUE(pipeline.waitForFinished(120000));
    EXPECT_TRUE(QString::fromUtf8(pipeline.readAllStandardError()).contains(QStringLiteral("status %1").arg(128 + SIGPIPE)));
    EXPECT_TRUE(ws.newEntries().isEmpty()) << ws.newEntries().join(' ').toStdString();
    expectCleanEnd(ws);
}

TEST(Signals, AKilledRunLeavesNoToolAndResumeFinishesItsJob)
{
    const Workspace ws(slowClip());
    const Interrupted killed = interruptMidway(ws, SIGKILL);
    EXPECT_EQ(killed.exitStatus, QProcess::CrashExit);
    // Its tools die with it; what it had begun stays in its private folder.
    expectCleanEnd(ws);
    EXPECT_FALSE(QFile::exists(ws.path(QStringLiteral("slow.avi.avi"))));

    // Any later run names the interrupted job; --resume runs it again.
    CliResult result = runCli(ws.withSettings({QStringLiteral("convert"), ws.path(QStringLiteral("absent.avi"))}));
    EXPECT_TRUE(result.err.contains(QStringLiteral("kestrane-cli --resume"))) << result.err.toStdString();
    result = runCli(ws.withSettings({QStringLiteral("--resume")}));
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    const QStringList results = completedResults(result.out);
    ASSERT_EQ(results, QStringList{ws.path(QStringLiteral("slow.avi.avi"))}) << result.out.toStdString();
    EXPECT_NEAR(durationMs(results.first()), 20000.0, 500.0);
    EXPECT_TRUE(stagingFolders(ws.dir.path()).isEmpty()) << "the killed run's folder is cleared";
    result = runCli(ws.withSettings({QStringLiteral("--resume")}));
    EXPECT_TRUE(result.err.contains(QStringLiteral("no interrupted jobs"))) << "a job is resumed once";
    expectCleanEnd(ws);
}
