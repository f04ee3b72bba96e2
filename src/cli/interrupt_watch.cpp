// The signal handler only writes the signal's number into a pipe; everything else happens on the
// event loop.
#include "cli/interrupt_watch.h"

#include <fcntl.h>
#include <unistd.h>

namespace qb::cli {

namespace {

int g_signalPipe[2] = {-1, -1};

void onInterrupt(int signal)
{
    const unsigned char byte = static_cast<unsigned char>(signal);
    [[maybe_unused]] const ssize_t n = ::write(g_signalPipe[1], &byte, 1);
}

} // namespace

InterruptWatch::InterruptWatch()
{
    if (::pipe2(g_signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    struct sigaction action
    {
    };
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    for (size_t i = 0; i < std::size(kSignals); ++i)
        ::sigaction(kSignals[i], &action, &m_previous[i]);
    m_notifier = std::make_unique<QSocketNotifier>(g_signalPipe[0], QSocketNotifier::Read);
}

InterruptWatch::~InterruptWatch()
{
    m_notifier.reset();
    if (g_signalPipe[0] < 0)
        return;
    for (size_t i = 0; i < std::size(kSignals); ++i)
        ::sigaction(kSignals[i], &m_previous[i], nullptr);
    ::close(g_signalPipe[0]);
    ::close(g_signalPipe[1]);
    g_signalPipe[0] = g_signalPipe[1] = -1;
}

int InterruptWatch::take()
{
    unsigned char byte = 0;
    return ::read(g_signalPipe[0], &byte, 1) == 1 ? int(byte) : 0;
}

} // namespace qb::cli
