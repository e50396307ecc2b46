#include "platform/session/TerminationSignals.h"

#include <array>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace tickwise {

namespace {

constexpr std::array handledSignals{SIGTERM, SIGINT, SIGHUP};

// A handler may only touch what is safe inside a signal: it writes the number into a pipe.
std::array<int, 2> pipeEnds{-1, -1};

void forward(int signalNumber)
{
    const auto number = static_cast<unsigned char>(signalNumber);
    [[maybe_unused]] const ssize_t written = write(pipeEnds[1], &number, 1);
}

void setHandlers(void (*handler)(int))
{
    for (const int number : handledSignals) {
        struct sigaction action = {};
        action.sa_handler = handler;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        sigaction(number, &action, nullptr);
    }
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent)
{
    Q_ASSERT(pipeEnds[0] < 0);
    if (pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier.emplace(pipeEnds[0], QSocketNotifier::Read);
    connect(&*m_notifier, &QSocketNotifier::activated, this, &TerminationSignals::read);
    setHandlers(forward);
}

TerminationSignals::~TerminationSignals()
{
    if (pipeEnds[0] < 0)
        return;
    setHandlers(SIG_DFL);
    m_notifier.reset();
    for (int &end : pipeEnds) {
        close(end);
        end = -1;
    }
}

void TerminationSignals::read()
{
    unsigned char number = 0;
    if (::read(pipeEnds[0], &number, 1) == 1)
        Q_EMIT received(number);
}

} // namespace tickwise
