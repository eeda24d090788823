#pragma once
// The test command of tarni-spark-config: attempts a connection with the
// configuration, optionally with some settings changed for this attempt only
// (nothing is saved), and prints the same report as the Test Results dialog;
// --verbose adds the steps of the attempt, --json prints one JSON object
// instead (outcome, error, steps, version values). Ctrl-C cancels the attempt.
#include <iosfwd>
#include <vector>

#include "core/TarniString.h"
#include "driversupport/IConnectionTester.h"

namespace Tarni::DriverSupport
{
class DSDSNConfiguration;
}

namespace Tarni::SparkODBC
{

class ConfigTestCommand
{
public:
    ConfigTestCommand(std::ostream& io_out, std::ostream& io_err, DriverSupport::IConnectionTester& io_tester);

    /// in_operands: KEY=VALUE settings for this attempt, --verbose, --json; a
    /// secret is refused (it would be visible in the process list). Returns 0
    /// when the session opened, 1 when the attempt failed or was cancelled,
    /// 2 for a wrong operand.
    int Run(DriverSupport::DSDSNConfiguration& io_config, const std::vector<tarni_wstring>& in_operands);

private:
    void WriteJson(const DriverSupport::IConnectionTester::Outcome& in_outcome, bool in_cancelled);

    std::ostream& m_out;
    std::ostream& m_err;
    DriverSupport::IConnectionTester& m_tester;
};
}  // namespace Tarni::SparkODBC
