#include "dialogs/driversupport/DSTestRun.h"

#include <utility>

namespace Tarni::DriverSupport
{
DSTestRun::DSTestRun(IConnectionTester& io_tester, const DSDSNConfiguration& in_configuration)
{
    m_thread = std::thread([this, &io_tester, &in_configuration] {
        try
        {
            m_outcome = io_tester.TestConnection(in_configuration, m_cancellation);
        }
        catch (...)
        {
            m_error = std::current_exception();
        }
        m_finished.store(true);
    });
}

DSTestRun::~DSTestRun()
{
    if (m_thread.joinable())
    {
        m_cancellation.Cancel();
        m_thread.join();
    }
}

IConnectionTester::Outcome DSTestRun::TakeOutcome()
{
    if (m_thread.joinable())
    {
        m_thread.join();
    }
    if (m_error)
    {
        std::rethrow_exception(std::exchange(m_error, nullptr));
    }
    return std::move(m_outcome);
}
}  // namespace Tarni::DriverSupport
