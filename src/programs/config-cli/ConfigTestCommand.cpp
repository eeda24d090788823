#include "programs/config-cli/ConfigTestCommand.h"

#include <ostream>

#include "dialogs/driversupport/DSTestResultDialog.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/IConnectionTester.h"
#include "driversupport/DSDSNConfiguration.h"
#include "support/StringConverter.h"
#include "ui/ResourceScript.h"

namespace Tarni::SparkODBC
{
using Support::StringConverter;

ConfigTestCommand::ConfigTestCommand(std::ostream& io_out, std::ostream& io_err,
                                     DriverSupport::IConnectionTester& io_tester)
    : m_out(io_out), m_err(io_err), m_tester(io_tester)
{
}

int ConfigTestCommand::Run(DriverSupport::DSDSNConfiguration& io_config, const std::vector<tarni_wstring>& in_operands)
{
    for (const tarni_wstring& pair : in_operands)
    {
        const std::size_t equals = pair.find(u'=');
        if (equals == tarni_wstring::npos || equals == 0)
        {
            m_err << "tarni-spark-config: test: expected KEY=VALUE, got " << StringConverter::ToUtf8(pair) << "\n"
                  << "Try 'tarni-spark-config --help'.\n";
            return 2;
        }
        const tarni_wstring_view key = tarni_wstring_view(pair).substr(0, equals);
        if (io_config.FindCredentialBySecretKey(key) != nullptr)
        {
            m_err << "tarni-spark-config: test: " << StringConverter::ToUtf8(key)
                  << " is a secret: store it with 'set-secret " << StringConverter::ToUtf8(key) << "'\n"
                  << "Try 'tarni-spark-config --help'.\n";
            return 2;
        }
        // Changed in memory only: the command never saves.
        io_config.SetValue(key, tarni_wstring_view(pair).substr(equals + 1));
    }

    const tarni_wstring host = io_config.GetValue(DriverSupport::Keys::Host);
    const tarni_wstring port = io_config.GetValue(DriverSupport::Keys::Port);
    m_err << "Connecting to " << StringConverter::ToUtf8(host) << ":" << StringConverter::ToUtf8(port) << "..."
          << std::endl;
    const DriverSupport::IConnectionTester::Outcome outcome = m_tester.TestConnection(io_config);

    const Platform::ResourceScript& resources = Platform::ResourceScript::Embedded();
    const tarni_wstring report =
        DriverSupport::DSTestResultDialog::FormatReport(outcome, [&resources](unsigned in_id) {
            const tarni_wstring* text = resources.FindString(in_id);
            return text != nullptr ? *text : tarni_wstring();
        });
    // The dialog's line breaks are CR LF; a terminal wants LF.
    std::string text = StringConverter::ToUtf8(report);
    std::string lines;
    for (char c : text)
    {
        if (c != '\r')
        {
            lines.push_back(c);
        }
    }
    m_out << lines << "\n";
    m_out.flush();
    return outcome.status == DriverSupport::IConnectionTester::Outcome::Status::Succeeded ? 0 : 1;
}
}  // namespace Tarni::SparkODBC
