#include "MCSignalWatcher.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

int signalPipe[2] = {-1, -1};

// A closed terminal (SIGHUP) or a reader that went away (SIGPIPE, as in
// "kestrane-cli ... | head") ends the run like Ctrl-C: the running job is
// stopped and cleared up rather than left to the default action.
constexpr int stopSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

void onSignal(int signalNumber)
{
    const int savedErrno = errno;
    const char byte = static_cast<char>(signalNumber);
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
    errno = savedErrno;
}

void installHandler(int signalNumber, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(signalNumber, &action, nullptr);
}

} // namespace

MCSignalWatcher::MCSignalWatcher(QObject *parent)
    : QObject(parent)
{
    if (signalPipe[0] < 0 && ::pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &MCSignalWatcher::readSignal);
    for (const int signalNumber : stopSignals)
        installHandler(signalNumber, onSignal);
}

MCSignalWatcher::~MCSignalWatcher()
{
    for (const int signalNumber : stopSignals)
        installHandler(signalNumber, SIG_DFL);
}

void MCSignalWatcher::readSignal()
{
    char byte = 0;
    while (::read(signalPipe[0], &byte, 1) == 1)
        emit signalled(static_cast<unsigned char>(byte));
}
