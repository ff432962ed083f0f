// The desktop is told when the queue runs out of work, with what came of it.
#include "MCDesktopNotification.h"
#include "MCJob.h"
#include "MCJobFactory.h"
#include "MCQueueController.h"
#include "MCQueueEndNotifier.h"
#include "MCSelection.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QtDBus>

namespace {

// A queued job that never ends by itself: the test ends it as a real job ends.
class IdleJob : public MCJob
{
public:
    using MCJob::MCJob;
    void startJob() override {}
    void end(bool failed) { failed ? failJob(QStringLiteral("the tool failed"), nullptr) : jobDone(); }
};

TEST(QueueEndNotifier, TellsOnceTheQueueRunsOutWhileKestraneLacksTheFocus)
{
    MCJobFactory::instance().registerJobType(QStringLiteral("MCConvertToAviJob"), [](QObject *parent) { return new IdleJob(parent); });
    MCQueueController queue;
    QStringList sent;
    MCQueueEndNotifier notifier(&queue, [&](const QString &, const QString &body) { sent << body; });
    bool focused = true;
    notifier.setFocusCheck([&] { return focused; });
    // Queues one job per entry and ends them in turn (true: it fails).
    const auto run = [&](const QList<bool> &failures) {
        for (int i = 0; i < failures.size(); ++i) {
            auto selection = std::make_shared<MCSelection>();
            selection->initialize();
            selection->jobType = QStringLiteral("AVI Conversion");
            selection->videoTrackFileName = QStringLiteral("movie%1.avi").arg(i);
            queue.addToQueue(selection);
        }
        const QList<MCJob *> jobs = queue.qJobList().mid(queue.qJobList().size() - failures.size());
        const qsizetype told = sent.size();
        for (int i = 0; i < jobs.size(); ++i) {
            testsupport::waitUntil([] { return false; }, 50);
            EXPECT_EQ(sent.size(), told) << "told while a job still waits";
            static_cast<IdleJob *>(jobs.at(i))->end(failures.at(i));
        }
        testsupport::waitUntil([] { return false; }, 50);
    };
    run({false}); // seen by the user: not told, now or later
    EXPECT_TRUE(sent.isEmpty());
    focused = false;
    run({false, true, false});
    EXPECT_EQ(sent, QStringList{QStringLiteral("2 jobs completed, 1 failed.")});
    run({true}); // counted afresh; the completed jobs left in the table do not count again
    EXPECT_EQ(sent.value(1), QStringLiteral("1 job failed."));
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
        NotificationServer server;
        ASSERT_TRUE(service.registerVirtualObject(QStringLiteral("/org/freedesktop/Notifications"), &server));
        ASSERT_TRUE(service.registerService(QStringLiteral("org.freedesktop.Notifications")));
        ASSERT_TRUE(MCDesktopNotification::send(QStringLiteral("Queue done"), QStringLiteral("1 job completed."), kestrane));
        ASSERT_TRUE(testsupport::waitUntil([&] { return !server.calls.isEmpty(); }, 5000));
        const QList<QVariant> arguments = server.calls.first().arguments();
        EXPECT_EQ(server.calls.first().interface(), QStringLiteral("org.freedesktop.Notifications"));
        ASSERT_EQ(arguments.size(), 8);
        EXPECT_EQ(arguments.at(0).toString(), QStringLiteral("Kestrane"));
        EXPECT_EQ(arguments.at(3).toString(), QStringLiteral("Queue done"));
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
