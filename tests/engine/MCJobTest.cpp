#include "EngineTestSupport.h"
#include "MCNotificationCenter.h"
#include "TestSupport.h"

#include <QFile>
#include <QCoreApplication>
#include <QThread>

#include <gtest/gtest.h>

namespace {

// Every row table a job posts, and whether it said "jobDone".
struct Recorder
{
    Recorder()
    {
        MCNotificationCenter::defaultCenter().addObserver(&receiver, QString(), [this](const MCNotification &n) {
            // Posted on the monitor thread, delivered on the main thread.
            EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
            if (n.name == MCNotificationName::progressUpdate)
                tables.append(n.object.toList());
            else if (n.name == MCNotificationName::jobDone)
                done = true;
        });
    }
    QObject receiver;
    QList<QVariantList> tables;
    bool done = false;
};

QVariantMap row(const char *step, const char *progress)
{
    return MCJob::progressRow(QString::fromUtf8(step), QString::fromUtf8(progress));
}

MCConverterPtr scripted(const char *name, QStringList words)
{
    auto step = std::make_shared<ScriptedStep>(std::move(words));
    step->stepName = QString::fromUtf8(name);
    return step;
}

} // namespace

TEST(MCJobTest, MonitorRowsFollowTheContract)
{
    PrivatePreferences prefs;
    Recorder recorder;
    StepsJob job;
    job.jobSelection = selectionFor(QStringLiteral("/videos/clip.avi"));
    job.steps = {scripted("Video", {QStringLiteral("10%"), QStringLiteral("error"), QStringLiteral("20%")}), nullptr,
                 scripted("Audio", {QStringLiteral("Pass 1 Complete"), QStringLiteral("Pass #2:  5%")})};
    job.startJob();
    ASSERT_TRUE(testsupport::waitUntil([&] { return recorder.done; }, 10000));

    ASSERT_GE(recorder.tables.size(), 4);
    EXPECT_EQ(recorder.tables.at(0), (QVariantList{row("Video", "10%")}));
    // "error" is no news: the step's previous row stays.
    EXPECT_EQ(recorder.tables.at(1), (QVariantList{row("Video", "10%"), row("Audio", "Pass #2:  5%")}));
    EXPECT_EQ(recorder.tables.at(2), (QVariantList{row("Video", "20%")}));
    EXPECT_EQ(recorder.tables.at(3), QVariantList());
    EXPECT_EQ(job.pass2Starts, 1);
    EXPECT_TRUE(job.pass2OnMainThread);
    // Steps that could not start leave "error" as their id and nothing to delete.
    EXPECT_EQ(job.stepPIDList(), (QStringList{QStringLiteral("error"), QStringLiteral("error")}));
    EXPECT_TRUE(job.logFilesToDeleteList.isEmpty());

    // The start monitor keeps a row for every step, finished ones too.
    Recorder again;
    StepsJob starting;
    starting.useStartMonitor = true;
    starting.jobSelection = job.jobSelection;
    starting.steps = {scripted("Video", {QStringLiteral("50%")}), scripted("Subtitle", {})};
    starting.startJob();
    ASSERT_TRUE(testsupport::waitUntil([&] { return again.done; }, 10000));
    EXPECT_EQ(again.tables.at(0), (QVariantList{row("Video", "50%"), row("Subtitle", "Complete")}));
}

TEST(MCJobTest, JobDoneRemovesLogsButNeverTheInputAndWarnsOfAnAlmostFullVolume)
{
    PrivatePreferences prefs;
    // A small file system stands in for a save volume that is almost full.
    const bool small = testsupport::run(QStringLiteral("mount -t tmpfs -o size=400k tmpfs '%1'").arg(prefs.saveFolder)) == 0;
    const auto alerts = testsupport::recordAlerts();
    const QString input = prefs.dir.filePath(QStringLiteral("clip.avi"));
    const QString log = prefs.saveFolder + QStringLiteral("/clip.avi.log");
    const QString temp = prefs.saveFolder + QStringLiteral("/clip.avi.temp.a2.ac3");
    for (const QString &path : {input, log, temp}) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }
    StepsJob job;
    job.jobSelection = selectionFor(input);
    job.logFilesToDeleteList = {log, input};
    job.tempFilesToDeleteList = {temp};
    job.jobDone();
    EXPECT_FALSE(QFile::exists(log));
    EXPECT_FALSE(QFile::exists(temp));
    EXPECT_TRUE(QFile::exists(input));
    if (small) {
        testsupport::run(QStringLiteral("umount '%1'").arg(prefs.saveFolder));
        ASSERT_EQ(alerts->alerts.size(), 1);
        EXPECT_TRUE(alerts->alerts.at(0).message.contains(QStringLiteral("almost out of free space")));
    }
    MCAlertCenter::instance().setPresenter(nullptr);
}
