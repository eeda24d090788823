#include "driversupport/DSUnavailableConnectionTester.h"

#include "driversupport/DSDSNConfiguration.h"

namespace Tarni::DriverSupport
{
IConnectionTester::Outcome DSUnavailableConnectionTester::TestConnection(const DSDSNConfiguration& in_configuration,
                                                                         DSCancellation& /*io_cancellation*/)
{
    TARNI_LOG_ENTRY(in_configuration.GetLog(), "Tarni::DriverSupport", "DSUnavailableConnectionTester",
                    "TestConnection");
    Outcome outcome;
    outcome.status = Outcome::Status::Unavailable;
    return outcome;
}

DSUnavailableConnectionTester& DSUnavailableConnectionTester::Instance()
{
    static DSUnavailableConnectionTester instance;
    return instance;
}
}  // namespace Tarni::DriverSupport
