// The desktop is told when the queue runs out of work, with what came of it.
#include "MCDesktopNotification.h"
#include "MCJob.h"
#include "MCJobFactory.h"
#include "MCJobTypes.h"
#include "MCQueueController.h"
#include "MCQueueEndNotifier.h"
#include "MCSelection.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QStandardPaths>

namespace {

struct Sent
{
    QString summary, body;
};

// A job that runs until the test ends it, as the queue sees a job end.
class EndedByTest : public MCJob
{
public:
    using MCJob::MCJob;
    void startJob() override {}
    void end(bool failed)
    {
        if (failed)
            failJob(QStringLiteral("broken"), nullptr);
        else
            jobDone();
    }
};

class QueueEndNotifierTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        MCJobFactory::instance().registerJobType(QStringLiteral("MCConvertToAviJob"),
                                                 [](QObject *parent) -> MCJob * { return new EndedByTest(parent); });
        notifier = std::make_unique<MCQueueEndNotifier>(
            &queue, [this](const QString &summary, const QString &body) { sent.append({summary, body}); });
        notifier->setFocusCheck([this] { return focused; });
    }

    void TearDown() override { MCJobTypes::registerAll(); }

    // Jobs that wait in the queue; the test decides how each ends.
    QList<MCJob *> queueJobs(int count)
    {
        for (int i = 0; i < count; ++i) {
            auto selection = std::make_shared<MCSelection>();
            selection->initialize();
            selection->jobType = QStringLiteral("AVI Conversion");
            selection->videoTrackFileName = QStringLiteral("movie%1.avi").arg(i);
            queue.addToQueue(selection);
        }
        return queue.qJobList().mid(queue.qJobList().size() - count);
    }

    // Ends the job the queue runs now; the next one starts.
    void end(MCJob *job, bool failed)
    {
        ASSERT_TRUE(testsupport::waitUntil([&] { return queue.currentJob() == job; }, 2000));
        static_cast<EndedByTest *>(job)->end(failed);
        settle();
    }

    void settle() { testsupport::waitUntil([] { return false; }, 50); }

    MCQueueController queue;
    std::unique_ptr<MCQueueEndNotifier> notifier;
    QList<Sent> sent;
    bool focused = false;
};

TEST_F(QueueEndNotifierTest, TellsOnceTheLastJobEndsWithCompletedAndFailedCounted)
{
    const QList<MCJob *> jobs = queueJobs(3);
    end(jobs.at(0), false);
    end(jobs.at(1), true);
    EXPECT_TRUE(sent.isEmpty()) << "a job still waits";
    end(jobs.at(2), false);
    ASSERT_EQ(sent.size(), 1);
    EXPECT_EQ(sent.first().summary, MCQueueEndNotifier::summary());
    EXPECT_EQ(sent.first().body, QStringLiteral("2 jobs completed, 1 failed."));

    // The next run counts afresh; completed jobs left in the table do not count again.
    end(queueJobs(1).first(), true);
    ASSERT_EQ(sent.size(), 2);
    EXPECT_EQ(sent.last().body, QStringLiteral("1 job failed."));
}

TEST_F(QueueEndNotifierTest, SaysNothingWhileKestraneHasTheFocus)
{
    focused = true;
    end(queueJobs(1).first(), false);
    EXPECT_TRUE(sent.isEmpty());
    // What the user saw is not told later.
    focused = false;
    end(queueJobs(1).first(), false);
    ASSERT_EQ(sent.size(), 1);
    EXPECT_EQ(sent.first().body, QStringLiteral("1 job completed."));
}

// Plays the desktop's notification service on a private bus.
class NotificationServer : public QDBusVirtualObject
{
public:
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (message.member() != QLatin1String("Notify"))
            return false;
        calls << message;
        connection.send(message.createReply(QVariant::fromValue(1u)));
        return true;
    }
    QString introspect(const QString &) const override { return {}; }
    QList<QDBusMessage> calls;
};

TEST(DesktopNotification, ReachesTheFreedesktopServiceWithTheTexts)
{
    const QString daemon = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
    if (daemon.isEmpty())
        GTEST_SKIP() << "dbus-daemon is not installed: the notification's D-Bus call is not checked";
    QProcess bus;
    bus.start(daemon, {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address=1")});
    ASSERT_TRUE(bus.waitForReadyRead(5000));
    const QString address = QString::fromLatin1(bus.readLine()).trimmed();
    {
        QDBusConnection service = QDBusConnection::connectToBus(address, QStringLiteral("notification-service"));
        QDBusConnection kestrane = QDBusConnection::connectToBus(address, QStringLiteral("kestrane"));
        ASSERT_TRUE(service.isConnected() && kestrane.isConnected());
        NotificationServer server;
        ASSERT_TRUE(service.registerVirtualObject(QStringLiteral("/org/freedesktop/Notifications"), &server));
        ASSERT_TRUE(service.registerService(QStringLiteral("org.freedesktop.Notifications")));

        ASSERT_TRUE(MCDesktopNotification::send(QStringLiteral("Kestrane: the queue is done"), QStringLiteral("1 job completed."), kestrane));
        ASSERT_TRUE(testsupport::waitUntil([&] { return !server.calls.isEmpty(); }, 5000));
        const QList<QVariant> arguments = server.calls.first().arguments();
        ASSERT_EQ(arguments.size(), 8);
        EXPECT_EQ(server.calls.first().interface(), QStringLiteral("org.freedesktop.Notifications"));
        EXPECT_EQ(arguments.at(0).toString(), QStringLiteral("Kestrane"));
        EXPECT_EQ(arguments.at(3).toString(), QStringLiteral("Kestrane: the queue is done"));
        EXPECT_EQ(arguments.at(4).toString(), QStringLiteral("1 job completed."));
        service.unregisterObject(QStringLiteral("/org/freedesktop/Notifications"));
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("notification-service"));
    QDBusConnection::disconnectFromBus(QStringLiteral("kestrane"));
    bus.kill();
    bus.waitForFinished();

    // Without a bus nothing is sent and nothing hangs.
    EXPECT_FALSE(MCDesktopNotification::send(QStringLiteral("s"), QStringLiteral("b"),
                                             QDBusConnection::connectToBus(QStringLiteral("unix:path=/nonexistent"), QStringLiteral("none"))));
}

} // namespace
