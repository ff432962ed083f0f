// kestrane-cli against what a hostile environment does to it: names that are
// taken by links or stale files, a file system that fills up, a second
// Kestrane at the same time, and signals that end it half-way. Every case
// ends with the same checks: no tool of the job still runs, the source is
// unchanged, and nothing is reported done that is not.
#include "CliTestSupport.h"

#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A save folder with one source in it and settings of its own.
class Workspace
{
public:
    explicit Workspace(const QString &original)
        : settings(quietSettings(dir.path()))
        , source(path(QFileInfo(original).fileName()))
    {
        QFile::copy(original, source);
        sourceSum = testsupport::checksum(source);
    }

    QString path(const QString &name) const { return dir.path() + u'/' + name; }
    QStringList with(const QStringList &arguments) const { return QStringList{u"--settings"_s, settings} + arguments; }

    // Command lines of live processes that name this folder: tools of a job
    // that should have ended with its Kestrane. The parent-death signal
    // takes a moment, so they get a few seconds to go.
    QStringList leftoverProcesses() const
    {
        QElapsedTimer clock;
        clock.start();
        QStringList found;
        do {
            found.clear();
            QThread::msleep(100);
            for (QDirIterator procs(u"/proc"_s, QDir::Dirs | QDir::NoDotAndDotDot); procs.hasNext();) {
                const QString entry = procs.next();
                bool numeric = false;
                const qint64 pid = QFileInfo(entry).fileName().toLongLong(&numeric);
                QFile cmdline(entry + u"/cmdline"_s), stat(entry + u"/stat"_s);
                if (!numeric || pid == QCoreApplication::applicationPid() || !cmdline.open(QIODevice::ReadOnly)
                    || !stat.open(QIODevice::ReadOnly))
                    continue;
                QByteArray line = cmdline.readAll();
                const QByteArray status = stat.readAll();
                if (line.contains(dir.path().toUtf8()) && status.mid(status.lastIndexOf(')') + 2, 1) != "Z")
                    found << QString::fromUtf8(line.replace('\0', ' '));
            }
        } while (!found.isEmpty() && clock.elapsed() < 5000);
        return found;
    }

    void expectCleanEnd() const
    {
        EXPECT_EQ(testsupport::checksum(source), sourceSum);
        const QStringList left = leftoverProcesses();
        EXPECT_TRUE(left.isEmpty()) << left.join('\n').toStdString();
    }

    // What the folder holds besides the source and the settings.
    QStringList newEntries() const
    {
        QStringList entries = entriesIn(dir.path());
        entries.removeIf([this](const QString &name) {
            return name == QFileInfo(source).fileName() || name.startsWith(u"kestrane.ini"_s);
        });
        return entries;
    }

    QStringList stagingFolders() const { return QDir(dir.path()).entryList({u".kestrane-job-*"_s}, QDir::Dirs | QDir::Hidden); }

    QTemporaryDir dir;
    QString settings;
    QString source;
    QByteArray sourceSum;
};

// The names the CLI reported as completed results ("Completed: NAME (A, B)").
QStringList completedResults(const QString &out)
{
    static const QRegularExpression line(u"^Completed: .*? \\((.*)\\)$"_s, QRegularExpression::MultilineOption);
    QStringList results;
    for (QRegularExpressionMatchIterator it = line.globalMatch(out); it.hasNext();)
        results << it.next().captured(1).split(u", "_s);
    return results;
}

ino_t inodeOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
}

// A clip long enough for a two-pass conversion to be caught half-way.
QString slowClip()
{
    return cliClip(u"slow.avi"_s, u"-f lavfi -i testsrc2=s=640x480:r=25:d=20 -f lavfi -i sine=d=20:r=48000 -ac 2 "
                                  "-c:v mpeg4 -q:v 3 -c:a ac3"_s);
}

const QStringList kEncode = words(u"convert --video mpeg4 --bitrate 300 --audio mp3"_s);
const QStringList kSlowEncode = words(u"convert --video mpeg4-2pass --bitrate 1500 --audio mp3"_s);

// Runs a slow conversion, and once its tools are at work sends the signal;
// answers how the CLI ended and what it printed.
std::tuple<QProcess::ExitStatus, int, QString> interruptMidway(const Workspace &ws, int signalNumber)
{
    QProcess cli;
    cli.start(cliPath(), ws.with(kSlowEncode + QStringList{ws.source}));
    EXPECT_TRUE(cli.waitForStarted());
    EXPECT_TRUE(testsupport::waitUntil([&] { return !ws.stagingFolders().isEmpty(); }, 60000))
        << cli.readAllStandardError().toStdString();
    QThread::msleep(700);
    EXPECT_EQ(cli.state(), QProcess::Running) << "the job ended before the signal";
    ::kill(static_cast<pid_t>(cli.processId()), signalNumber);
    EXPECT_TRUE(cli.waitForFinished(60000));
    return {cli.exitStatus(), cli.exitCode(), QString::fromUtf8(cli.readAllStandardOutput())};
}

} // namespace

TEST(TakenOutputNames, HardLinksAndPlantedSymlinksAreNeverWrittenThrough)
{
    const Workspace ws(xvidAvi(u"linked.avi"_s));
    const QString second = ws.path(u"second.avi"_s);
    ASSERT_TRUE(QFile::copy(xvidAvi(u"joined-second.avi"_s), second));
    // The conversion's and the join's result names, both second names of the source.
    const QStringList taken{u"linked.avi.avi"_s, u"linked.avi.joined.avi"_s};
    for (const QString &name : taken)
        ASSERT_EQ(::link(QFile::encodeName(ws.source).constData(), QFile::encodeName(ws.path(name)).constData()), 0);

    for (const auto &[arguments, ms] : {std::pair(kEncode + QStringList{ws.source}, 2000.0),
                                        std::pair(QStringList{u"join"_s, ws.source, second}, 4000.0)}) {
        const CliResult result = runCli(ws.with(arguments));
        EXPECT_EQ(result.status, 0) << result.err.toStdString();
        const QStringList results = completedResults(result.out);
        ASSERT_EQ(results.size(), 1) << result.out.toStdString();
        EXPECT_FALSE(taken.contains(QFileInfo(results.first()).fileName()));
        EXPECT_NEAR(playingMs(results.first()), ms, 400.0) << "a join that read its own output back is longer";
    }
    for (const QString &name : taken)
        EXPECT_EQ(inodeOf(ws.path(name)), inodeOf(ws.source)) << name.toStdString();
    ws.expectCleanEnd();

    // A link planted at the result's name, pointing at something precious.
    const Workspace planted(xvidAvi(u"planted.avi"_s));
    const QString precious = planted.path(u"precious.txt"_s);
    QFile file(precious);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("keep me\n") == 8);
    file.close();
    ASSERT_TRUE(QFile::link(precious, planted.path(u"planted.avi.avi"_s)));
    const CliResult result = runCli(planted.with(kEncode + QStringList{planted.source}));
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("keep me\n"));
    EXPECT_TRUE(QFileInfo(planted.path(u"planted.avi.avi"_s)).isSymLink());
    planted.expectCleanEnd();
}

TEST(StaleResults, AFileOfAnEarlierRunNeverPassesAsThisRunsResult)
{
    const Workspace ws(xvidAvi(u"stale.avi"_s));
    // A piece an earlier split left, valid media of the right name.
    const QString stale = ws.path(u"stale.avi.split-0000.avi"_s);
    ASSERT_TRUE(QFile::copy(ws.source, stale));
    const QByteArray staleSum = testsupport::checksum(stale);

    const CliResult result = runCli(ws.with({u"split"_s, ws.source, u"--time"_s, u"00:00:05-00:00:09"_s}));
    EXPECT_NE(result.status, 0) << "a range past the end of a 2-second clip: " << result.out.toStdString();
    EXPECT_TRUE(completedResults(result.out).isEmpty()) << result.out.toStdString();
    EXPECT_EQ(testsupport::checksum(stale), staleSum);
    EXPECT_TRUE(ws.stagingFolders().isEmpty());
    ws.expectCleanEnd();
}

TEST(FullDisk, AResultCutShortByTheFileSizeLimitIsAFailure)
{
    const Workspace ws(slowClip());
    // A tiny file-size limit stands in for a save folder that fills up.
    QProcess cli;
    cli.start(u"bash"_s, QStringList{u"-c"_s, u"ulimit -f 256; exec \"$0\" \"$@\""_s, cliPath()}
                             + ws.with(kEncode + QStringList{u"--bitrate"_s, u"3000"_s, ws.source}));
    ASSERT_TRUE(cli.waitForFinished(120000));
    const QString out = QString::fromUtf8(cli.readAllStandardOutput());
    EXPECT_EQ(cli.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(cli.exitCode(), 1) << out.toStdString() << cli.readAllStandardError().toStdString();
    EXPECT_TRUE(out.contains(u"Failed: slow.avi"_s)) << out.toStdString();
    EXPECT_TRUE(completedResults(out).isEmpty());
    EXPECT_FALSE(QFile::exists(ws.path(u"slow.avi.avi"_s)));
    EXPECT_TRUE(ws.stagingFolders().isEmpty());
    ws.expectCleanEnd();
}

TEST(TwoKestranes, ConvertingTheSameSourceIntoOneFolderGiveTwoSoundResults)
{
    const Workspace ws(xvidAvi(u"twice.avi"_s, 3));
    const QStringList arguments = ws.with(words(u"convert --video mpeg4-2pass --bitrate 300 --audio mp3"_s) + QStringList{ws.source});
    QProcess first, second;
    first.start(cliPath(), arguments);
    second.start(cliPath(), arguments);
    QStringList results;
    for (QProcess *cli : {&first, &second}) {
        ASSERT_TRUE(cli->waitForFinished(120000));
        EXPECT_EQ(cli->exitCode(), 0) << cli->readAllStandardError().toStdString();
        results << completedResults(QString::fromUtf8(cli->readAllStandardOutput()));
    }
    ASSERT_EQ(results.size(), 2);
    EXPECT_NE(results.at(0), results.at(1));
    for (const QString &path : results) {
        EXPECT_NEAR(playingMs(path), 3000.0, 300.0) << path.toStdString();
        // Every frame there: not two writers' pieces of one file.
        EXPECT_EQ(testsupport::mediaInfo(path, u"Video"_s, u"FrameCount"_s), u"75"_s);
    }
    EXPECT_TRUE(ws.stagingFolders().isEmpty());
    ws.expectCleanEnd();
}

TEST(Signals, HangupAndBrokenPipeStopTheJobAsInterruptDoes)
{
    const Workspace ws(slowClip());
    const auto [status, code, out] = interruptMidway(ws, SIGHUP);
    EXPECT_EQ(status, QProcess::NormalExit);
    EXPECT_EQ(code, 128 + SIGHUP);
    EXPECT_TRUE(completedResults(out).isEmpty());
    EXPECT_TRUE(ws.newEntries().isEmpty()) << ws.newEntries().join(' ').toStdString();
    ws.expectCleanEnd();

    // "kestrane-cli ... | head -n 1": the reader leaves after the first line.
    QProcess pipeline;
    pipeline.start(u"bash"_s, QStringList{u"-c"_s, u"\"$0\" \"$@\" | head -n 1 >/dev/null; echo \"status ${PIPESTATUS[0]}\" >&2"_s,
                                          cliPath()}
                                  + ws.with(kSlowEncode + QStringList{ws.source}));
    ASSERT_TRUE(pipeline.waitForFinished(120000));
    EXPECT_TRUE(QString::fromUtf8(pipeline.readAllStandardError()).contains(u"status %1"_s.arg(128 + SIGPIPE)));
    EXPECT_TRUE(ws.newEntries().isEmpty()) << ws.newEntries().join(' ').toStdString();
    ws.expectCleanEnd();
}

TEST(Signals, AKilledRunLeavesNoToolAndResumeFinishesItsJob)
{
    const Workspace ws(slowClip());
    EXPECT_EQ(std::get<0>(interruptMidway(ws, SIGKILL)), QProcess::CrashExit);
    // Its tools die with it; what it had begun stays in its private folder.
    ws.expectCleanEnd();
    EXPECT_FALSE(QFile::exists(ws.path(u"slow.avi.avi"_s)));

    // Any later run names the interrupted job; --resume runs it again.
    CliResult result = runCli(ws.with({u"convert"_s, ws.path(u"absent.avi"_s)}));
    EXPECT_TRUE(result.err.contains(u"kestrane-cli --resume"_s)) << result.err.toStdString();
    result = runCli(ws.with({u"--resume"_s}));
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    ASSERT_EQ(completedResults(result.out), QStringList{ws.path(u"slow.avi.avi"_s)}) << result.out.toStdString();
    EXPECT_NEAR(playingMs(ws.path(u"slow.avi.avi"_s)), 20000.0, 500.0);
    EXPECT_TRUE(ws.stagingFolders().isEmpty()) << "the killed run's folder is cleared";
    result = runCli(ws.with({u"--resume"_s}));
    EXPECT_TRUE(result.err.contains(u"no interrupted jobs"_s)) << "a job is resumed once";
    ws.expectCleanEnd();
}
