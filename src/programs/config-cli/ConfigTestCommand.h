#pragma once
// The test command of tarni-spark-config: attempts a connection with the
// configuration, optionally with some settings changed for this attempt only
// (nothing is saved), and prints the same report as the Test Results dialog.
#include <iosfwd>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::DriverSupport
{
class DSDSNConfiguration;
class IConnectionTester;
}

namespace Tarni::SparkODBC
{

class ConfigTestCommand
{
public:
    ConfigTestCommand(std::ostream& io_out, std::ostream& io_err, DriverSupport::IConnectionTester& io_tester);

    /// in_operands: KEY=VALUE settings for this attempt; a secret is refused
    /// (it would be visible in the process list). Returns 0 when the session
    /// opened, 1 when the attempt failed, 2 for a wrong operand.
    int Run(DriverSupport::DSDSNConfiguration& io_config, const std::vector<tarni_wstring>& in_operands);

private:
    std::ostream& m_out;
    std::ostream& m_err;
    DriverSupport::IConnectionTester& m_tester;
};
}  // namespace Tarni::SparkODBC
