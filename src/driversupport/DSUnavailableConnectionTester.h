#pragma once
#include "driversupport/IConnectionTester.h"

namespace Tarni::DriverSupport
{
/// The connection tester of a build without the driver's connect path: every
/// attempt reports that connection testing is not available.
class DSUnavailableConnectionTester final : public IConnectionTester
{
public:
    using IConnectionTester::TestConnection;
    Outcome TestConnection(const DSDSNConfiguration& in_configuration, DSCancellation& io_cancellation) override;

    /// The one instance the dialogs fall back to.
    static DSUnavailableConnectionTester& Instance();
};
}  // namespace Tarni::DriverSupport
