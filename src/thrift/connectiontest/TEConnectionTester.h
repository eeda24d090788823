#pragma once
// The connection test of the DSN setup and of the command line: opens a
// TCLIService session on the configured server (OpenSession, then
// CloseSession) over the configured transport, and tells in the message
// catalogue's words why it could not.
#include "core/ILogger.h"
#include "driversupport/IConnectionTester.h"

namespace Tarni::ThriftExtension
{
class TEConnectionTarget;
class TEStepRecorder;

class TEConnectionTester final : public DriverSupport::IConnectionTester
{
public:
    /// Every failure, including settings that cannot be tested, is a Failed
    /// outcome whose text names the cause; no secret is part of it.
    using IConnectionTester::TestConnection;
    Outcome TestConnection(const DriverSupport::DSDSNConfiguration& in_configuration,
                           DriverSupport::DSCancellation& io_cancellation) override;

    /// Connects to the target, opens a session and closes it again, recording
    /// each step. Throws TEException with the cause.
    static void OpenAndCloseSession(const TEConnectionTarget& in_target, TEStepRecorder& io_steps,
                                    DriverSupport::DSCancellation& io_cancellation, Support::ILogger* in_log);

    /// The one instance the programs use.
    static TEConnectionTester& Instance();
};
}  // namespace Tarni::ThriftExtension
