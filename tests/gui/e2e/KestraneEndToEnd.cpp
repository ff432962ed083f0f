// Kestrane as a person uses it: the real program on its own X screen,
// driven by real pointer and key events, read through what it shows to a
// screen reader. A failing flow leaves a screenshot, the accessible tree
// and the program's log in the test's output folder.
#include "AccessibleTree.h"
#include "DesktopSession.h"
#include "KestraneDriver.h"

#include <gtest/gtest.h>

#include <QtCore>

#include <iostream>

namespace {

const auto within = &KestraneDriver::within;

// The scheduler states ("T" when stopped) of the processes, other than this
// test, whose command line names the file.
QStringList statesOfToolsOn(const QString &file)
{
    QStringList states;
    for (const QString &pid : QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs)) {
        QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(pid)), stat(QStringLiteral("/proc/%1/stat").arg(pid));
        if (pid.toLongLong() == QCoreApplication::applicationPid() || !commandLine.open(QIODevice::ReadOnly)
            || !commandLine.readAll().split('\0').contains(file.toLocal8Bit()) || !stat.open(QIODevice::ReadOnly))
            continue;
        const QString line = QString::fromLatin1(stat.readAll());
        states << line.mid(line.lastIndexOf(QLatin1Char(')')) + 2, 1);
    }
    return states;
}

// "codec,type" of each stream, e.g. "mpeg4,video mp3,audio".
QString streams(const QString &file)
{
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"), QStringLiteral("-v error -show_entries stream=codec_name,codec_type -of csv=p=0").split(QLatin1Char(' ')) << file);
    ffprobe.waitForFinished(30000);
    return QString::fromLocal8Bit(ffprobe.readAllStandardOutput()).simplified();
}

class KestraneEndToEnd : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (session.xvfbMissing())
            GTEST_SKIP() << "SKIPPED, the window is not driven here: " << session.failure().toStdString();
        ASSERT_TRUE(session.failure().isEmpty()) << session.failure().toStdString();
        ASSERT_TRUE(work.isValid());
        kestrane = std::make_unique<KestraneDriver>(session, work.path());
    }

    void TearDown() override
    {
        if (!HasFailure() || !kestrane)
            return;
        const QString folder = qEnvironmentVariable("KESTRANE_E2E_OUTPUT", QDir::currentPath() + QStringLiteral("/e2e-output"));
        const QString base = folder + QLatin1Char('/') + QString::fromLatin1(::testing::UnitTest::GetInstance()->current_test_info()->name());
        QDir().mkpath(folder);
        session.screenshot(base + QStringLiteral(".png"));
        QFile dump(base + QStringLiteral(".txt"));
        if (dump.open(QIODevice::WriteOnly))
            dump.write(AccessibleTree::dump(kestrane->window()).toUtf8());
        QFile::remove(base + QStringLiteral(".log"));
        QFile::copy(kestrane->logPath(), base + QStringLiteral(".log"));
        std::cerr << "Screenshot, accessible tree and log: " << base.toStdString() << ".{png,txt,log}\n";
    }

    QString statusOf(const QString &fileName)
    {
        const AccessibleTree::Node *cell = kestrane->queueCell(fileName, QStringLiteral("Status"));
        return cell ? cell->name : QString();
    }
    bool reads(const QString &fileName, const QString &status, int timeoutMs)
    {
        return within(timeoutMs, [&] { return statusOf(fileName) == status; });
    }
    // Every tool working on the file is stopped (or, with false, none is).
    bool toolsStopped(const QString &file, bool stopped)
    {
        return within(5000, [&] {
            const QStringList states = statesOfToolsOn(file);
            return states.count(QStringLiteral("T")) == (stopped ? states.size() : 0);
        });
    }

    DesktopSession session;
    QTemporaryDir work;
    std::unique_ptr<KestraneDriver> kestrane;
};

TEST_F(KestraneEndToEnd, OpensTicksConvertsPausesFailsAVanishedClipAndQuitsAsAPersonDoes)
{
    const QString clip = kestrane->makeClip(QStringLiteral("holiday.avi"), 120);
    const QString gone = kestrane->makeClip(QStringLiteral("gone.avi"), 4, QStringLiteral("320x180"));
    ASSERT_FALSE(clip.isEmpty() || gone.isEmpty());
    const QString failure = kestrane->start();
    ASSERT_TRUE(failure.isEmpty()) << failure.toStdString();

    // File > Open... by its key, the path typed into Qt's own dialog; the
    // video ticked with the pointer, the audio with Space on its row.
    ASSERT_TRUE(kestrane->openThroughDialog(clip)) << "the clip did not load";
    QList<KestraneDriver::TrackRow> rows = kestrane->trackRows();
    ASSERT_EQ(rows.size(), 2);
    session.click(QPoint(rows.at(0).check.extents.left() + 10, rows.at(0).check.centre().y()));
    session.click(rows.at(1).info.centre());
    session.key(QStringLiteral("space"));
    QThread::msleep(300);
    rows = kestrane->trackRows();
    ASSERT_EQ(rows.size(), 2);
    EXPECT_TRUE(rows.at(0).check.checked) << "the click did not tick the video";
    EXPECT_TRUE(rows.at(1).check.checked) << "Space did not tick the audio";
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("radio button"), QStringLiteral("MPEG-4 (1 pass)")));
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("push button"), QStringLiteral("Convert"))) << "Convert is not enabled";
    ASSERT_TRUE(reads(QStringLiteral("holiday.avi"), QStringLiteral("Running"), 20000)) << "the job did not start";
    ASSERT_TRUE(within(15000, [&] { return !statesOfToolsOn(clip).isEmpty(); })) << "no tool works on the clip";

    // Paused, every tool working on the clip is stopped and the row and the
    // button say so; resumed, they go on.
    const auto paused = [&](bool stopped) {
        EXPECT_TRUE(kestrane->waitFor(QStringLiteral("push button"), stopped ? QStringLiteral("Resume") : QStringLiteral("Pause"), 5000));
        EXPECT_TRUE(reads(QStringLiteral("holiday.avi"), stopped ? QStringLiteral("Paused") : QStringLiteral("Running"), 5000))
            << statusOf(QStringLiteral("holiday.avi")).toStdString();
        EXPECT_TRUE(toolsStopped(clip, stopped)) << (stopped ? "a tool went on while paused" : "a tool stayed stopped");
    };
    // Quit while it runs asks first; Cancel leaves the job paused.
    session.key(QStringLiteral("ctrl+q"));
    ASSERT_TRUE(kestrane->waitForWhere(
        [](const AccessibleTree::Node &node) { return node.name == QLatin1String("Videos are still being processed.  Quit anyways?"); }, 5000));
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("push button"), QStringLiteral("Cancel")));
    paused(true);
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("push button"), QStringLiteral("Resume")));
    paused(false);
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("push button"), QStringLiteral("Pause")));
    paused(true);

    // Queued behind it by Ctrl+Return, a second clip is gone by its turn.
    ASSERT_TRUE(kestrane->openThroughDialog(gone) && kestrane->tickAllTracks());
    session.key(QStringLiteral("ctrl+Return"));
    ASSERT_TRUE(reads(QStringLiteral("gone.avi"), QStringLiteral("Waiting"), 5000)) << statusOf(QStringLiteral("gone.avi")).toStdString();
    ASSERT_TRUE(QFile::remove(gone));
    ASSERT_TRUE(kestrane->clickOn(QStringLiteral("push button"), QStringLiteral("Resume")));
    paused(false);
    ASSERT_TRUE(reads(QStringLiteral("holiday.avi"), QStringLiteral("Completed"), 180000)) << "the job did not complete";
    QStringList results = QDir(work.path()).entryList({QStringLiteral("*.avi")}, QDir::Files);
    results.removeAll(QFileInfo(clip).fileName());
    ASSERT_EQ(results.size(), 1) << results.join(QLatin1Char(' ')).toStdString();
    const QString made = streams(work.filePath(results.first()));
    EXPECT_TRUE(made.startsWith(QStringLiteral("mpeg4,video"))) << made.toStdString();
    EXPECT_TRUE(made.contains(QStringLiteral(",audio"))) << "no audio: the Space tick was lost";
    const AccessibleTree::Node *output = kestrane->queueCell(QStringLiteral("holiday.avi"), QStringLiteral("Output"));
    EXPECT_TRUE(output && output->name == results.first()) << "the output column does not name the result";

    // The vanished clip never reads Completed: Failed, its reason on show without hovering.
    ASSERT_TRUE(reads(QStringLiteral("gone.avi"), QStringLiteral("Failed"), 60000)) << statusOf(QStringLiteral("gone.avi")).toStdString();
    const AccessibleTree::Node *reason = kestrane->waitForWhere(
        [](const AccessibleTree::Node &node) { return node.role == QLatin1String("label") && node.name.startsWith(QLatin1String("Failed: ")); }, 5000);
    EXPECT_TRUE(reason && reason->name.size() > 20) << (reason ? reason->name.toStdString() : "no reason on show");

    // Nothing runs any more: the first Ctrl+Q ends the program.
    session.key(QStringLiteral("ctrl+q"));
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
