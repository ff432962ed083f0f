// Kestrane as a person uses it: the real program on its own X screen,
// driven by real pointer and key events, read through what it shows to a
// screen reader. Each flow saves a screenshot and the accessible tree into
// the test's output folder when it fails.
#include "AccessibleTree.h"
#include "DesktopSession.h"
#include "KestraneDriver.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QUrl>

#include <iostream>

namespace {

using Node = AccessibleTree::Node;

// The processes (other than this test) whose command line names the file.
QList<qint64> toolsWorkingOn(const QString &file)
{
    QList<qint64> found;
    const QByteArray name = file.toLocal8Bit();
    for (const QString &entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        bool number = false;
        const qint64 pid = entry.toLongLong(&number);
        if (!number || pid == QCoreApplication::applicationPid())
            continue;
        QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(pid));
        if (commandLine.open(QIODevice::ReadOnly) && commandLine.readAll().split('\0').contains(name))
            found << pid;
    }
    return found;
}

// The scheduler state of a process ("T" when stopped, "" when gone).
QString processState(qint64 pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return {};
    const QString line = QString::fromLatin1(stat.readAll());
    return line.mid(line.lastIndexOf(QLatin1Char(')')) + 2, 1);
}

QString outputFolder()
{
    const QString folder = qEnvironmentVariable("KESTRANE_E2E_OUTPUT", QDir::currentPath() + QStringLiteral("/e2e-output"));
    QDir().mkpath(folder);
    return folder;
}

// ffprobe's answer for the first stream of a kind ("v" or "a"), e.g. its codec name.
QString probe(const QString &file, const QString &stream, const QString &entry)
{
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"), {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                                              stream + QStringLiteral(":0"), QStringLiteral("-show_entries"),
                                              QStringLiteral("stream=") + entry, QStringLiteral("-of"),
                                              QStringLiteral("default=nw=1:nk=1"), file});
    ffprobe.waitForFinished(30000);
    return QString::fromLocal8Bit(ffprobe.readAllStandardOutput()).trimmed();
}

class KestraneEndToEnd : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { session = new DesktopSession; }
    static void TearDownTestSuite()
    {
        delete session;
        session = nullptr;
    }

    void SetUp() override
    {
        if (session->xvfbMissing())
            GTEST_SKIP() << "SKIPPED, the window is not driven here: " << session->failure().toStdString();
        ASSERT_TRUE(session->failure().isEmpty()) << session->failure().toStdString();
        ASSERT_TRUE(work.isValid());
        kestrane = std::make_unique<KestraneDriver>(*session, work.path());
    }

    void TearDown() override
    {
        const QString name = QString::fromLatin1(::testing::UnitTest::GetInstance()->current_test_info()->name());
        if (HasFailure() && kestrane) {
            const QString base = outputFolder() + QLatin1Char('/') + name;
            session->screenshot(base + QStringLiteral(".png"));
            QFile dump(base + QStringLiteral(".txt"));
            if (dump.open(QIODevice::WriteOnly))
                dump.write(AccessibleTree::dump(kestrane->window()).toUtf8());
            QFile::remove(base + QStringLiteral(".log"));
            QFile::copy(kestrane->logPath(), base + QStringLiteral(".log"));
            std::cerr << "Screenshot, accessible tree and log: " << base.toStdString() << ".{png,txt,log}\n";
        }
        kestrane.reset();
    }

    void startKestrane()
    {
        const QString failure = kestrane->start();
        ASSERT_TRUE(failure.isEmpty()) << failure.toStdString();
    }

    // With KESTRANE_E2E_STEPS set, every step is photographed too, to look at.
    void step(const QString &name) const
    {
        if (qEnvironmentVariableIsSet("KESTRANE_E2E_STEPS"))
            session->screenshot(outputFolder() + QStringLiteral("/step-") + name + QStringLiteral(".png"));
    }

    // A clip opened through the Open dialog with all its tracks ticked.
    void openAndTick(const QString &clip)
    {
        ASSERT_TRUE(kestrane->openThroughDialog(clip)) << "the clip did not load";
        ASSERT_TRUE(kestrane->tickAllTracks()) << "the tracks could not be ticked";
    }

    QString statusOf(const QString &fileName)
    {
        const Node *cell = kestrane->queueCell(fileName, QStringLiteral("Status"));
        return cell ? cell->name : QString();
    }

    bool waitForStatus(const QString &fileName, const QString &status, int timeoutMs)
    {
        QDeadlineTimer deadline(timeoutMs);
        while (statusOf(fileName) != status) {
            if (deadline.hasExpired())
                return false;
            QThread::msleep(200);
        }
        return true;
    }

    static DesktopSession *session;
    QTemporaryDir work;
    std::unique_ptr<KestraneDriver> kestrane;
};

DesktopSession *KestraneEndToEnd::session = nullptr;

TEST_F(KestraneEndToEnd, ConvertsAClipOpenedThroughTheOpenDialogToMpeg4)
{
    const QString clip = kestrane->makeClip(QStringLiteral("holiday.avi"), 120);
    ASSERT_FALSE(clip.isEmpty());
    ASSERT_NO_FATAL_FAILURE(startKestrane());

    // File > Open... by its key, and the path typed into Qt's own dialog.
    ASSERT_TRUE(kestrane->openThroughDialog(clip, [&] { step(QStringLiteral("open-dialog")); })) << "the clip did not load";
    step(QStringLiteral("loaded"));

    // The video ticked with the pointer, the audio with Space on its row.
    QList<KestraneDriver::TrackRow> rows = kestrane->trackRows();
    ASSERT_EQ(rows.size(), 2);
    kestrane->click(QPoint(rows.at(0).check.extents.left() + 10, rows.at(0).check.centre().y()));
    kestrane->click(rows.at(1).info.centre());
    kestrane->key(QStringLiteral("space"));
    QThread::msleep(300);
    rows = kestrane->trackRows();
    ASSERT_EQ(rows.size(), 2);
    EXPECT_TRUE(rows.at(0).check.checked) << "the click did not tick the video";
    EXPECT_TRUE(rows.at(1).check.checked) << "Space did not tick the audio";

    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("radio button"), QStringLiteral("MPEG-4 (1 pass)")));
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("push button"), QStringLiteral("Convert"))) << "Convert is not enabled";
    ASSERT_TRUE(waitForStatus(QStringLiteral("holiday.avi"), QStringLiteral("Running"), 20000)) << "the job did not start";
    step(QStringLiteral("running"));

    // Paused, every tool working on the clip is stopped and the row says so;
    // resumed, they go on to the end.
    QList<qint64> tools;
    QDeadlineTimer starting(15000);
    while ((tools = toolsWorkingOn(clip)).isEmpty() && !starting.hasExpired())
        QThread::msleep(100);
    ASSERT_FALSE(tools.isEmpty()) << "no tool works on the clip";
    const auto allInState = [&](bool stopped) {
        QDeadlineTimer deadline(5000);
        do {
            bool all = true;
            for (const qint64 pid : toolsWorkingOn(clip))
                all = all && (processState(pid) == QLatin1String("T")) == stopped;
            if (all)
                return true;
            QThread::msleep(100);
        } while (!deadline.hasExpired());
        return false;
    };
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("push button"), QStringLiteral("Pause")));
    ASSERT_TRUE(kestrane->waitFor(QStringLiteral("push button"), QStringLiteral("Resume"), 5000));
    EXPECT_TRUE(waitForStatus(QStringLiteral("holiday.avi"), QStringLiteral("Paused"), 5000)) << statusOf(QStringLiteral("holiday.avi")).toStdString();
    EXPECT_TRUE(allInState(true)) << "a tool went on while paused";
    step(QStringLiteral("paused"));
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("push button"), QStringLiteral("Resume")));
    ASSERT_TRUE(kestrane->waitFor(QStringLiteral("push button"), QStringLiteral("Pause"), 5000));
    EXPECT_TRUE(waitForStatus(QStringLiteral("holiday.avi"), QStringLiteral("Running"), 5000));
    EXPECT_TRUE(allInState(false)) << "a tool stayed stopped after Resume";
    ASSERT_TRUE(waitForStatus(QStringLiteral("holiday.avi"), QStringLiteral("Completed"), 180000)) << "the job did not complete";
    step(QStringLiteral("completed"));

    QStringList results = QDir(work.path()).entryList({QStringLiteral("*.avi")}, QDir::Files);
    results.removeAll(QFileInfo(clip).fileName());
    ASSERT_EQ(results.size(), 1) << results.join(QLatin1Char(' ')).toStdString();
    const QString result = work.filePath(results.first());
    EXPECT_EQ(probe(result, QStringLiteral("v"), QStringLiteral("codec_name")), QStringLiteral("mpeg4"));
    EXPECT_FALSE(probe(result, QStringLiteral("a"), QStringLiteral("codec_name")).isEmpty()) << "no audio: the Space tick was lost";
    const Node *output = kestrane->queueCell(QStringLiteral("holiday.avi"), QStringLiteral("Output"));
    ASSERT_TRUE(output);
    EXPECT_EQ(output->name, results.first()) << "the output column does not name the result";

    // Nothing runs any more: the first Quit ends the program.
    kestrane->key(QStringLiteral("ctrl+q"));
    EXPECT_TRUE(kestrane->process().waitForFinished(10000)) << "still running after Ctrl+Q";
}

TEST_F(KestraneEndToEnd, AQueuedClipThatVanishedReadsFailedWithTheToolsReason)
{
    const QString first = kestrane->makeClip(QStringLiteral("first.avi"), 60);
    const QString second = kestrane->makeClip(QStringLiteral("second.avi"), 4, QStringLiteral("320x180"));
    ASSERT_FALSE(first.isEmpty() || second.isEmpty());
    ASSERT_NO_FATAL_FAILURE(startKestrane());
    ASSERT_NO_FATAL_FAILURE(openAndTick(first));
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("radio button"), QStringLiteral("MPEG-4 (1 pass)")));
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("push button"), QStringLiteral("Convert")));
    ASSERT_TRUE(waitForStatus(QStringLiteral("first.avi"), QStringLiteral("Running"), 20000));
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("push button"), QStringLiteral("Pause")));

    // Queued behind the first, the second clip is gone by its turn.
    ASSERT_NO_FATAL_FAILURE(openAndTick(second));
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("push button"), QStringLiteral("Convert")));
    ASSERT_TRUE(waitForStatus(QStringLiteral("second.avi"), QStringLiteral("Waiting"), 5000))
        << statusOf(QStringLiteral("second.avi")).toStdString();
    ASSERT_TRUE(QFile::remove(second));
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("push button"), QStringLiteral("Resume")));
    ASSERT_TRUE(waitForStatus(QStringLiteral("second.avi"), QStringLiteral("Failed"), 180000))
        << statusOf(QStringLiteral("second.avi")).toStdString();
    EXPECT_EQ(statusOf(QStringLiteral("first.avi")), QStringLiteral("Completed"));

    // Its reason is on show without hovering, and the log is named.
    const Node *reason = kestrane->waitForWhere(
        [](const Node &node) { return node.role == QLatin1String("label") && node.name.startsWith(QLatin1String("Failed: ")); },
        5000);
    ASSERT_TRUE(reason) << "no reason on show";
    step(QStringLiteral("failed"));
    EXPECT_GT(reason->name.size(), QStringLiteral("Failed: ").size() + 10) << reason->name.toStdString();
    const Node *output = kestrane->queueCell(QStringLiteral("second.avi"), QStringLiteral("Output"));
    ASSERT_TRUE(output);
    EXPECT_TRUE(output->name.startsWith(QLatin1String("Log: "))) << output->name.toStdString();

    // Its menu opens the folder and the log, through the desktop.
    const Node *name = kestrane->queueCell(QStringLiteral("second.avi"), QStringLiteral("File Name"));
    ASSERT_TRUE(name);
    const QString log = work.filePath(QStringLiteral("second.avi.log"));
    kestrane->rightClick(name->centre());
    QThread::msleep(500);
    step(QStringLiteral("menu"));
    kestrane->key(QStringLiteral("Down Return")); // Show in folder
    QThread::msleep(500);
    kestrane->rightClick(name->centre());
    QThread::msleep(500);
    kestrane->key(QStringLiteral("Down Down Return")); // Open log
    QDeadlineTimer deadline(5000);
    while (kestrane->opened().size() < 2 && !deadline.hasExpired())
        QThread::msleep(100);
    EXPECT_EQ(kestrane->opened(), (QStringList{QUrl::fromLocalFile(work.path()).toString(), QUrl::fromLocalFile(log).toString()}));
    EXPECT_TRUE(QFileInfo::exists(log));
}

TEST_F(KestraneEndToEnd, QuitsAtTheFirstCtrlQ)
{
    ASSERT_NO_FATAL_FAILURE(startKestrane());
    kestrane->key(QStringLiteral("ctrl+q"));
    ASSERT_TRUE(kestrane->process().waitForFinished(10000)) << "still running after Ctrl+Q";
    EXPECT_EQ(kestrane->process().exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(kestrane->process().exitCode(), 0);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
