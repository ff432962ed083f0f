#pragma once

#include "MCReportCache.h"

#include <QList>
#include <QObject>
#include <QUrl>

#include <functional>
#include <memory>

class QThread;

// Runs the inspection tools (mediainfo, mkvinfo) for files a user opened or
// dropped on a thread of its own, so the window stays responsive while a
// slow disk or a hanging tool takes its time (each tool has its time limit).
// The answers go into the intake's report cache; the intake that follows
// reads them from there instead of running the tools again. Requests made
// while one runs wait their turn, in order.
class MCIntakeProbe : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool busy READ busy NOTIFY busyChanged)

public:
    explicit MCIntakeProbe(QObject *parent = nullptr);
    // Waits for a running inspection: its thread must not outlive the cache.
    ~MCIntakeProbe() override;

    // then() runs on this object's thread once every file was inspected.
    void inspect(const QList<QUrl> &urls, std::shared_ptr<MCReportCache> cache, std::function<void()> then);
    bool busy() const { return m_worker != nullptr; }

signals:
    void busyChanged(bool busy);

private:
    struct Request
    {
        QList<QUrl> urls;
        std::shared_ptr<MCReportCache> cache;
        std::function<void()> then;
    };

    void startNext();
    void finishCurrent();

    QList<Request> m_pending;
    std::function<void()> m_then;
    QThread *m_worker = nullptr;
};
