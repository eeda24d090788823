#pragma once
// A connection test running on a worker thread, so that the dialog that
// shows it stays responsive and can cancel it. The dialog polls IsFinished()
// from its own thread and then takes the outcome; the destructor cancels a
// test still running and waits for the thread.
#include <atomic>
#include <exception>
#include <thread>

#include "driversupport/DSCancellation.h"
#include "driversupport/IConnectionTester.h"

namespace Tarni::DriverSupport
{
class DSDSNConfiguration;

class DSTestRun
{
public:
    /// Starts the attempt; in_configuration and io_tester must outlive it.
    DSTestRun(IConnectionTester& io_tester, const DSDSNConfiguration& in_configuration);
    ~DSTestRun();
    DSTestRun(const DSTestRun&) = delete;
    DSTestRun& operator=(const DSTestRun&) = delete;

    bool IsFinished() const { return m_finished.load(); }

    /// Asks the attempt to stop (from the dialog's thread); it finishes soon
    /// after with an outcome that says it was cancelled.
    void Cancel() { m_cancellation.Cancel(); }
    bool IsCancelled() const { return m_cancellation.IsCancelled(); }

    /// Waits for the attempt and returns its outcome; an ErrorException the
    /// attempt threw is thrown here, on the caller's thread.
    IConnectionTester::Outcome TakeOutcome();

private:
    DSCancellation m_cancellation;
    IConnectionTester::Outcome m_outcome;
    std::exception_ptr m_error;
    std::atomic<bool> m_finished{false};
    std::thread m_thread;
};
}  // namespace Tarni::DriverSupport
