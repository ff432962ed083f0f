#pragma once

#include <QObject>
#include <QProcess>
#include <QString>

#include <atomic>

// One tool run by a step: the composed command line runs through bash, which
// replaces itself with the tool, so the tool is this process. It leads a
// process group of its own (pause, resume and stop reach whatever the tool
// starts) and dies with Kestrane, however Kestrane ends. Completion and the
// exit status come from the process itself.
//
// Lives on the thread that started it (the main thread); the state queries
// are safe from any thread.
class MCToolProcess : public QObject
{
    Q_OBJECT

public:
    explicit MCToolProcess(QObject *parent = nullptr);
    // A tool still running is ended: no tool outlives its step.
    ~MCToolProcess() override;

    // Starts "bash -c command"; false (with errorText) when it cannot start.
    bool start(const QString &command, const QString &workingDirectory);

    qint64 processId() const { return m_pid.load(); }
    bool isRunning() const { return m_state.load() == State::Running; }
    bool hasEnded() const { return m_state.load() == State::Ended; }
    // Only meaningful once ended: the tool's exit code, and whether it died
    // by a signal instead of exiting.
    int exitCode() const { return m_exitCode.load(); }
    bool crashed() const { return m_crashed.load(); }
    QString errorText() const { return m_errorText; }

    // Sends a signal to the tool's process group while the tool runs; a
    // finished tool's number may belong to another process by now.
    void signalGroup(int signalNumber) const;
    // Ends the tool: continue, SIGTERM, and SIGKILL after graceMs.
    void terminate(int graceMs);

    // The shell command for a tool run in the background: "exec " before the
    // tool's quoted path, and the trailing "& echo $!" left out.
    static QString foregroundCommand(const QString &backgroundCommand, const QString &quotedTool);

signals:
    void ended();

private:
    enum class State { NotStarted, Running, Ended };
    void onFinished(int exitCode, QProcess::ExitStatus status);

    QProcess m_process;
    std::atomic<State> m_state{State::NotStarted};
    std::atomic<qint64> m_pid{0};
    std::atomic<int> m_exitCode{-1};
    std::atomic<bool> m_crashed{false};
    QString m_errorText;
};
