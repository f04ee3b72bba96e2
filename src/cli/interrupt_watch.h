// Interrupt signals (SIGINT, SIGTERM, SIGHUP) delivered to the event loop through a pipe, so that
// a command cancels its work and removes its debris before it ends. One watch at a time.
#pragma once

#include <QSocketNotifier>

#include <csignal>
#include <iterator>
#include <memory>

namespace qb::cli {

class InterruptWatch
{
public:
    InterruptWatch();
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch &) = delete;
    InterruptWatch &operator=(const InterruptWatch &) = delete;

    // Fires when a signal has arrived; null when the pipe could not be made.
    QSocketNotifier *notifier() const { return m_notifier.get(); }
    // The signal that arrived, 0 for none.
    int take();

private:
    static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
    struct sigaction m_previous[std::size(kSignals)] {};
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace qb::cli
