#pragma once

#include <QObject>

class QSocketNotifier;

// Brings SIGINT, SIGTERM, SIGHUP and SIGPIPE into the event loop: the handler only writes
// the signal number into a pipe, and a socket notifier reads it on the
// main thread, where stopping jobs is safe.
class MCSignalWatcher : public QObject
{
    Q_OBJECT
public:
    explicit MCSignalWatcher(QObject *parent = nullptr);
    ~MCSignalWatcher() override;

signals:
    void signalled(int signalNumber);

private:
    void readSignal();

    QSocketNotifier *m_notifier = nullptr;
};
