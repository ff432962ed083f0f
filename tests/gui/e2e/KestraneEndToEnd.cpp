// Kestrane as a person uses it: the real program on its own X screen,
// driven by real pointer and key events, read through what it shows to a
// screen reader. Each flow saves a screenshot and the accessible tree into
// the test's output folder when it fails.
#include "AccessibleTree.h"
#include "DesktopSession.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

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
        tree = std::make_unique<AccessibleTree>(session->accessibilityBus());
        ASSERT_TRUE(tree->isConnected());
    }

    void TearDown() override
    {
        const QString name = QString::fromLatin1(::testing::UnitTest::GetInstance()->current_test_info()->name());
        if (HasFailure() && session && session->failure().isEmpty()) {
            const QString base = outputFolder() + QLatin1Char('/') + name;
            session->screenshot(base + QStringLiteral(".png"));
            QFile dump(base + QStringLiteral(".txt"));
            if (dump.open(QIODevice::WriteOnly))
                dump.write(AccessibleTree::dump(window()).toUtf8());
            QFile::remove(base + QStringLiteral(".log"));
            QFile::copy(work.filePath(QStringLiteral("kestrane.log")), base + QStringLiteral(".log"));
            std::cerr << "Screenshot, accessible tree and log: " << base.toStdString() << ".{png,txt,log}\n";
        }
        if (kestrane.state() != QProcess::NotRunning) {
            kestrane.kill();
            kestrane.waitForFinished(5000);
        }
    }

    // Starts the real program, as its desktop entry does, and waits for its window.
    void startKestrane()
    {
        QProcessEnvironment environment = session->environment();
        environment.insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
        environment.insert(QStringLiteral("KESTRANE_RESOURCES"), QString::fromLatin1(KESTRANE_E2E_RESOURCES));
        kestrane.setProcessEnvironment(environment);
        kestrane.setStandardOutputFile(work.filePath(QStringLiteral("kestrane.log")));
        kestrane.setStandardErrorFile(work.filePath(QStringLiteral("kestrane.log")));
        kestrane.start(QString::fromLatin1(KESTRANE_E2E_PROGRAM), {});
        ASSERT_TRUE(kestrane.waitForStarted(10000));
        ASSERT_TRUE(waitFor(QStringLiteral("push button"), QStringLiteral("Open..."), 20000)) << "no window";
        // No window manager: the first click gives the window the focus.
        const Node *status = find(QStringLiteral("label"), QStringLiteral("Drop Video File(s) in the Table Below"));
        ASSERT_TRUE(status);
        session->click(status->centre());
    }

    Node window() const { return tree->read(QStringLiteral("Kestrane")); }

    // With KESTRANE_E2E_STEPS set, every step is photographed too, to look at.
    void step(const QString &name) const
    {
        if (qEnvironmentVariableIsSet("KESTRANE_E2E_STEPS"))
            session->screenshot(outputFolder() + QStringLiteral("/step-") + name + QStringLiteral(".png"));
    }

    const Node *find(const QString &role, const QString &name)
    {
        m_last = window();
        return m_last.find(role, name);
    }

    // Polls what the screen reader sees until a showing object of that role
    // and name is there; it stays readable through m_last.
    const Node *waitFor(const QString &role, const QString &name, int timeoutMs)
    {
        QDeadlineTimer deadline(timeoutMs);
        do {
            if (const Node *node = find(role, name))
                return node;
            QThread::msleep(200);
        } while (!deadline.hasExpired());
        return nullptr;
    }

    bool clickOn(const QString &role, const QString &name)
    {
        const Node *node = waitFor(role, name, 5000);
        if (!node || !node->enabled)
            return false;
        session->click(node->centre());
        return true;
    }

    // The track table's rows: the check box cell and the track's name cell.
    struct TrackRow
    {
        Node check, info;
    };
    QList<TrackRow> trackRows()
    {
        m_last = window();
        QList<TrackRow> rows;
        const QList<const Node *> infos = m_last.findAll([](const Node &node) {
            return node.role == QLatin1String("cell")
                   && (node.name.startsWith(QLatin1String("Video:")) || node.name.startsWith(QLatin1String("Audio:")));
        });
        for (const Node *info : infos) {
            const QList<const Node *> checks = m_last.findAll([&](const Node &node) {
                return node.role == QLatin1String("cell") && node.extents.y() == info->extents.y()
                       && node.extents.right() < info->extents.left();
            });
            if (!checks.isEmpty())
                rows.append({*checks.first(), *info});
        }
        return rows;
    }

    QString makeClip(const QString &name, int seconds)
    {
        const QString path = work.filePath(name);
        QProcess ffmpeg;
        ffmpeg.start(QStringLiteral("ffmpeg"),
                     {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"),
                      QStringLiteral("lavfi"), QStringLiteral("-i"), QStringLiteral("testsrc=size=640x360:rate=25"),
                      QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"), QStringLiteral("sine=frequency=440"),
                      QStringLiteral("-t"), QString::number(seconds), QStringLiteral("-c:v"), QStringLiteral("libx264"),
                      QStringLiteral("-preset"), QStringLiteral("ultrafast"), QStringLiteral("-c:a"),
                      QStringLiteral("libmp3lame"), path});
        if (!ffmpeg.waitForFinished(120000) || ffmpeg.exitCode() != 0)
            return {};
        return path;
    }

    static DesktopSession *session;
    QTemporaryDir work;
    std::unique_ptr<AccessibleTree> tree;
    QProcess kestrane;
    Node m_last;
};

DesktopSession *KestraneEndToEnd::session = nullptr;

TEST_F(KestraneEndToEnd, ConvertsAClipOpenedThroughTheOpenDialogToMpeg4)
{
    const QString clip = makeClip(QStringLiteral("holiday.avi"), 120);
    ASSERT_FALSE(clip.isEmpty());
    startKestrane();

    // File > Open... by its key, and the path typed into Qt's own dialog.
    session->key(QStringLiteral("ctrl+o"));
    ASSERT_TRUE(waitFor(QStringLiteral("dialog"), QStringLiteral("Select video file to open:"), 10000)) << "no Open dialog";
    QThread::msleep(500);
    session->type(clip);
    step(QStringLiteral("open-dialog"));
    session->key(QStringLiteral("Return"));
    ASSERT_TRUE(waitFor(QStringLiteral("label"), clip, 20000)) << "the clip did not load";
    step(QStringLiteral("loaded"));

    // The video ticked with the pointer, the audio with Space on its row.
    QList<TrackRow> rows = trackRows();
    ASSERT_EQ(rows.size(), 2);
    session->click(QPoint(rows.at(0).check.extents.left() + 10, rows.at(0).check.centre().y()));
    session->click(rows.at(1).info.centre());
    session->key(QStringLiteral("space"));
    QThread::msleep(300);
    rows = trackRows();
    ASSERT_EQ(rows.size(), 2);
    EXPECT_TRUE(rows.at(0).check.checked) << "the click did not tick the video";
    EXPECT_TRUE(rows.at(1).check.checked) << "Space did not tick the audio";

    ASSERT_TRUE(clickOn(QStringLiteral("radio button"), QStringLiteral("MPEG-4 (1 pass)")));
    ASSERT_TRUE(clickOn(QStringLiteral("push button"), QStringLiteral("Convert"))) << "Convert is not enabled";
    ASSERT_TRUE(waitFor(QStringLiteral("cell"), QStringLiteral("Running"), 20000)) << "the job did not start";
    step(QStringLiteral("running"));

    // Paused, every tool working on the clip is stopped; resumed, they go on to the end.
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
    ASSERT_TRUE(clickOn(QStringLiteral("push button"), QStringLiteral("Pause")));
    ASSERT_TRUE(waitFor(QStringLiteral("push button"), QStringLiteral("Resume"), 5000));
    EXPECT_TRUE(allInState(true)) << "a tool went on while paused";
    step(QStringLiteral("paused"));
    ASSERT_TRUE(clickOn(QStringLiteral("push button"), QStringLiteral("Resume")));
    ASSERT_TRUE(waitFor(QStringLiteral("push button"), QStringLiteral("Pause"), 5000));
    EXPECT_TRUE(allInState(false)) << "a tool stayed stopped after Resume";
    ASSERT_TRUE(waitFor(QStringLiteral("cell"), QStringLiteral("Completed"), 180000)) << "the job did not complete";
    step(QStringLiteral("completed"));

    QStringList results = QDir(work.path()).entryList({QStringLiteral("*.avi")}, QDir::Files);
    results.removeAll(QFileInfo(clip).fileName());
    ASSERT_EQ(results.size(), 1) << results.join(QLatin1Char(' ')).toStdString();
    const QString result = work.filePath(results.first());
    EXPECT_EQ(probe(result, QStringLiteral("v"), QStringLiteral("codec_name")), QStringLiteral("mpeg4"));
    EXPECT_FALSE(probe(result, QStringLiteral("a"), QStringLiteral("codec_name")).isEmpty()) << "no audio: the Space tick was lost";

    // Nothing runs any more: the first Quit ends the program.
    session->key(QStringLiteral("ctrl+q"));
    EXPECT_TRUE(kestrane.waitForFinished(10000)) << "still running after Ctrl+Q";
}

TEST_F(KestraneEndToEnd, QuitsAtTheFirstCtrlQ)
{
    startKestrane();
    session->key(QStringLiteral("ctrl+q"));
    ASSERT_TRUE(kestrane.waitForFinished(10000)) << "still running after Ctrl+Q";
    EXPECT_EQ(kestrane.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(kestrane.exitCode(), 0);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
