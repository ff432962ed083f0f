#pragma once

#include <QObject>
#include <QString>

#include <functional>

class MCQueueController;

// Tells the user, when they are looking elsewhere, that the queue has run
// out of work and how it went: counts the jobs that completed and failed
// since the queue last ran out, and once no job is running or waiting hands
// a summary and a body to send (a desktop notification). Nothing is sent
// while a Kestrane window has the focus, nor when no job ended.
class MCQueueEndNotifier : public QObject
{
    Q_OBJECT
public:
    using Send = std::function<void(const QString &summary, const QString &body)>;
    // Whether a Kestrane window has the focus; the application's active window by default.
    using Focused = std::function<bool()>;

    MCQueueEndNotifier(MCQueueController *queue, Send send, QObject *parent = nullptr);

    void setFocusCheck(Focused focused) { m_focused = std::move(focused); }

    static QString summary();
    // "2 jobs completed, 1 failed."
    static QString bodyFor(int completed, int failed);

private:
    void watchJobs(int first, int last);
    void jobStatusChanged(const QString &status);
    void checkLater();
    void check();

    MCQueueController *m_queue;
    Send m_send;
    Focused m_focused;
    int m_completed = 0;
    int m_failed = 0;
    bool m_checkPending = false;
};
