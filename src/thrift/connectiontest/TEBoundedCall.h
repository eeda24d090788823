#pragma once
// Runs a blocking call that cannot be interrupted (a library that contacts a
// Kerberos server, a reverse name lookup) within the connection test's limit
// and its cancellation: the call runs on a worker thread, and the test waits
// for it until it finishes, the limit passes or the test is cancelled. A call
// that is given up on is left to finish on its own; everything it touches is
// owned by the call itself (captured by value or by shared pointer), so the
// test can go on and free its own state. Nothing global is changed for it: no
// library setting, no environment variable.
#include <functional>

namespace Tarni::DriverSupport
{
class DSCancellation;
}

namespace Tarni::ThriftExtension
{
class TEBoundedCall
{
public:
    enum class Outcome
    {
        Finished,
        TimedOut,
        Cancelled,
    };

    /// Runs in_call and waits for it at most in_timeoutMs milliseconds, or
    /// until io_cancellation is cancelled. An exception of a finished call is
    /// rethrown here. On TimedOut and Cancelled the call is still running or
    /// about to end; its results must not be read.
    static Outcome Run(std::function<void()> in_call, int in_timeoutMs,
                       DriverSupport::DSCancellation& io_cancellation);

    /// The calls that were given up on and have not finished yet.
    static int AbandonedCalls();
};
}  // namespace Tarni::ThriftExtension
