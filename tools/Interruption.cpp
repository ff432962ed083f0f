#include "Interruption.h"

#include "ToolError.h"

#include <csignal>
#include <cstring>

namespace mediatool {
namespace {

volatile std::sig_atomic_t receivedSignal = 0;

void onSignal(int signal)
{
    receivedSignal = signal;
}

} // namespace

void installInterruptionHandlers()
{
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaction(signal, &action, nullptr);
}

void throwIfInterrupted()
{
    if (receivedSignal != 0)
        throw ToolError(std::string("stopped by signal ") + strsignal(receivedSignal) + ", nothing written", 128 + receivedSignal);
}

} // namespace mediatool
