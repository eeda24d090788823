#include "programs/config-cli/ConfigTestCommand.h"

#include <ostream>

#include <nlohmann/json.hpp>

#include "dialogs/driversupport/DSTestResultDialog.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSCancellation.h"
#include "driversupport/DSDSNConfiguration.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/IConnectionTester.h"
#include "platform/ConsoleInterrupt.h"
#include "resource.h"
#include "support/StringConverter.h"
#include "ui/ResourceScript.h"

namespace Tarni::SparkODBC
{
using DriverSupport::DSTestResultDialog;
using DriverSupport::DSTestStep;
using DriverSupport::IConnectionTester;
using Support::StringConverter;

namespace
{
tarni_wstring LoadString(unsigned in_id)
{
    const tarni_wstring* text = Platform::ResourceScript::Embedded().FindString(in_id);
    return text != nullptr ? *text : tarni_wstring();
}

// The dialog's line breaks are CR LF; a terminal wants LF.
std::string ForTerminal(const tarni_wstring& in_text)
{
    std::string lines;
    for (char c : StringConverter::ToUtf8(in_text))
    {
        if (c != '\r')
        {
            lines.push_back(c);
        }
    }
    return lines;
}

// The value of a version line of the report ("\r\nBitness: 64-bit" -> "64-bit").
std::string LineValue(unsigned in_id)
{
    const std::string line = ForTerminal(LoadString(in_id));
    const std::size_t colon = line.find(": ");
    return colon == std::string::npos ? std::string() : line.substr(colon + 2);
}

const char* StatusName(DSTestStep::Status in_status)
{
    switch (in_status)
    {
        case DSTestStep::Status::Passed:
            return "passed";
        case DSTestStep::Status::Failed:
            return "failed";
        case DSTestStep::Status::Running:
            break;
    }
    return "stopped";
}

const char* OutcomeName(const IConnectionTester::Outcome& in_outcome, bool in_cancelled)
{
    if (in_outcome.status == IConnectionTester::Outcome::Status::Succeeded)
    {
        return "succeeded";
    }
    return in_cancelled ? "cancelled" : "failed";
}
}  // namespace

ConfigTestCommand::ConfigTestCommand(std::ostream& io_out, std::ostream& io_err,
                                     DriverSupport::IConnectionTester& io_tester)
    : m_out(io_out), m_err(io_err), m_tester(io_tester)
{
}

int ConfigTestCommand::Run(DriverSupport::DSDSNConfiguration& io_config, const std::vector<tarni_wstring>& in_operands)
{
    bool verbose = false;
    bool json = false;
    for (const tarni_wstring& operand : in_operands)
    {
        if (operand == u"--verbose" || operand == u"--json")
        {
            (operand == u"--json" ? json : verbose) = true;
            continue;
        }
        const std::size_t equals = operand.find(u'=');
        if (equals == tarni_wstring::npos || equals == 0)
        {
            m_err << "tarni-spark-config: test: expected KEY=VALUE, --verbose or --json, got "
                  << StringConverter::ToUtf8(operand) << "\n"
                  << "Try 'tarni-spark-config --help'.\n";
            return 2;
        }
        const tarni_wstring_view key = tarni_wstring_view(operand).substr(0, equals);
        if (io_config.FindCredentialBySecretKey(key) != nullptr)
        {
            m_err << "tarni-spark-config: test: " << StringConverter::ToUtf8(key)
                  << " is a secret: store it with 'set-secret " << StringConverter::ToUtf8(key) << "'\n"
                  << "Try 'tarni-spark-config --help'.\n";
            return 2;
        }
        // Changed in memory only: the command never saves.
        io_config.SetValue(key, tarni_wstring_view(operand).substr(equals + 1));
    }

    if (!json)
    {
        const tarni_wstring host = io_config.GetValue(DriverSupport::Keys::Host);
        const tarni_wstring port = io_config.GetValue(DriverSupport::Keys::Port);
        // With ZooKeeper discovery the host list is the ensemble, not a server.
        const tarni_wstring discovery = io_config.GetValue(DriverSupport::Keys::ServiceDiscoveryMode);
        if (StringConverter::EqualsIgnoreCase(discovery, u"ZooKeeper") || discovery == u"1")
        {
            m_err << "Looking up the servers registered in ZooKeeper " << StringConverter::ToUtf8(host) << "..."
                  << std::endl;
        }
        else
        {
            m_err << "Connecting to " << StringConverter::ToUtf8(host) << ":" << StringConverter::ToUtf8(port)
                  << "..." << std::endl;
        }
    }
    DriverSupport::DSCancellation cancellation;
    IConnectionTester::Outcome outcome;
    {
        // Ctrl-C stops the attempt; the report then says it was cancelled.
        const Platform::ConsoleInterrupt interrupt([&cancellation] { cancellation.Cancel(); });
        outcome = m_tester.TestConnection(io_config, cancellation);
    }
    if (json)
    {
        WriteJson(outcome, cancellation.IsCancelled());
    }
    else
    {
        m_out << ForTerminal(DSTestResultDialog::FormatReport(outcome, &LoadString));
        if (verbose)
        {
            m_out << ForTerminal(DSTestResultDialog::FormatSteps(outcome, &LoadString));
        }
        m_out << "\n";
    }
    m_out.flush();
    return outcome.status == IConnectionTester::Outcome::Status::Succeeded ? 0 : 1;
}

void ConfigTestCommand::WriteJson(const IConnectionTester::Outcome& in_outcome, bool in_cancelled)
{
    nlohmann::ordered_json report;
    report["outcome"] = OutcomeName(in_outcome, in_cancelled);
    report["error"] = StringConverter::ToUtf8(in_outcome.errorText);
    nlohmann::ordered_json steps = nlohmann::ordered_json::array();
    for (const DSTestStep& step : in_outcome.steps)
    {
        nlohmann::ordered_json entry;
        entry["id"] = step.id;
        entry["name"] = StringConverter::ToUtf8(LoadString(DSTestResultDialog::StepNameId(step.id)));
        entry["status"] = StatusName(step.status);
        entry["detail"] = StringConverter::ToUtf8(step.detail);
        entry["durationMs"] = step.durationMs;
        steps.push_back(std::move(entry));
    }
    report["steps"] = std::move(steps);
    report["odbcVersion"] = StringConverter::ToUtf8(in_outcome.odbcVersion);
    report["driverVersion"] = StringConverter::ToUtf8(DriverSupport::DSProductHelper::GetProductIdentity().version);
    report["bitness"] = LineValue(IDS_TEST_BITNESS);
    report["locale"] = StringConverter::ToUtf8(in_outcome.locale);
    m_out << report.dump(2) << "\n";
}
}  // namespace Tarni::SparkODBC
