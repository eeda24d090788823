#pragma once
// The connection attempt behind the Test button of the DSN setup: it takes a
// data source's configuration and tries to connect with it. The Thrift
// layer's TEConnectionTester implements it.
#include <vector>

#include "core/TarniString.h"
#include "driversupport/DSCancellation.h"
#include "driversupport/DSTestStep.h"

namespace Tarni::DriverSupport
{
class DSDSNConfiguration;

class IConnectionTester
{
public:
    struct Outcome
    {
        enum class Status
        {
            Succeeded,
            Failed,  ///< errorText says why
        };
        Status status = Status::Failed;
        tarni_wstring errorText;
        /// The ODBC version of the driver manager used, empty when not known.
        tarni_wstring odbcVersion;
        /// The locale of the connection, empty when not known.
        tarni_wstring locale;
        /// The steps the attempt went through, in order; after a failure the
        /// last one is the step that failed.
        std::vector<DSTestStep> steps;
    };

    virtual ~IConnectionTester() = default;

    /// Attempts a connection with the configuration as it stands (plain
    /// secrets included; they must not be logged). A failure to connect is an
    /// outcome, not an exception; an ErrorException means the attempt itself
    /// could not be made.
    ///
    /// io_cancellation stops the attempt from another thread; a cancelled
    /// attempt is a Failed outcome that says so.
    virtual Outcome TestConnection(const DSDSNConfiguration& in_configuration, DSCancellation& io_cancellation) = 0;

    /// The same attempt, for callers that never cancel it.
    Outcome TestConnection(const DSDSNConfiguration& in_configuration)
    {
        DSCancellation never;
        return TestConnection(in_configuration, never);
    }
};
}  // namespace Tarni::DriverSupport
