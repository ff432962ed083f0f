#include "MCToolProcess.h"

#include <QDeadlineTimer>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

const QString kBackgroundTail = QStringLiteral(" & echo $!");

} // namespace

MCToolProcess::MCToolProcess(QObject *parent)
    : QObject(parent)
{
    m_process.setProgram(QStringLiteral("/bin/bash"));
    // The tool's own output goes to its log through the command line.
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    const pid_t kestrane = getpid();
    m_process.setChildProcessModifier([kestrane] {
        // Only async-signal-safe calls here: this runs between fork and exec.
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != kestrane)
            _exit(127); // Kestrane ended before the signal was armed
    });
    connect(&m_process, &QProcess::finished, this, &MCToolProcess::onFinished);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart && m_state.load() == State::Running) {
            m_errorText = m_process.errorString();
            m_crashed = true;
            m_state = State::Ended;
            emit ended();
        }
    });
}

MCToolProcess::~MCToolProcess()
{
    if (isRunning())
        terminate(1000);
}

bool MCToolProcess::start(const QString &command, const QString &workingDirectory)
{
    m_process.setArguments({QStringLiteral("-c"), command});
    if (!workingDirectory.isEmpty())
        m_process.setWorkingDirectory(workingDirectory);
    m_state = State::Running;
    m_process.start();
    if (!m_process.waitForStarted(-1)) {
        m_errorText = m_process.errorString();
        m_crashed = true;
        m_state = State::Ended;
        return false;
    }
    m_pid = m_process.processId();
    return true;
}

void MCToolProcess::onFinished(int exitCode, QProcess::ExitStatus status)
{
    m_exitCode = exitCode;
    m_crashed = status == QProcess::CrashExit;
    m_state = State::Ended;
    emit ended();
}

void MCToolProcess::signalGroup(int signalNumber) const
{
    const qint64 pid = m_pid.load();
    if (isRunning() && pid > 0)
        ::kill(-static_cast<pid_t>(pid), signalNumber);
}

void MCToolProcess::terminate(int graceMs)
{
    if (!isRunning())
        return;
    // A paused tool must run again to be able to end.
    signalGroup(SIGCONT);
    signalGroup(SIGTERM);
    if (!m_process.waitForFinished(graceMs)) {
        signalGroup(SIGKILL);
        m_process.waitForFinished(-1);
    }
}

QString MCToolProcess::foregroundCommand(const QString &backgroundCommand, const QString &quotedTool)
{
    QString command = backgroundCommand;
    if (command.endsWith(kBackgroundTail))
        command.chop(kBackgroundTail.size());
    const qsizetype toolAt = command.indexOf(quotedTool);
    if (toolAt >= 0)
        command.insert(toolAt, QStringLiteral("exec "));
    return command;
}
