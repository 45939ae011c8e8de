#include "Platform/Linux/LinuxTerminationSignals.h"

#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace nubble {

namespace {

// A handler may do little more than write to a pipe; the event loop reads its other end.
std::array<int, 2> signalPipe{-1, -1};

void tellEventLoop(int)
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
}

void setHandler(void (*handler)(int))
{
    struct sigaction action { };
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
}

} // namespace

LinuxTerminationSignals::LinuxTerminationSignals()
{
    if (::pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto *notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (::read(signalPipe[0], &byte, 1) > 0) { }
        Q_EMIT received();
    });
    setHandler(tellEventLoop);
}

LinuxTerminationSignals::~LinuxTerminationSignals()
{
    setHandler(SIG_DFL);
    for (int &end : signalPipe) {
        ::close(end);
        end = -1;
    }
}

} // namespace nubble
