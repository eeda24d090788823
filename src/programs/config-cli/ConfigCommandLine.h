#pragma once
// tarni-spark-config: shows and edits the driver-wide configuration or a
// data source from the command line, over the same configuration objects,
// validation and saves as the dialog program.
#include <iosfwd>
#include <memory>
#include <optional>
#include <sstream>
#include <vector>

#include "core/TarniString.h"
#include "driversupport/DSStoreChange.h"
#include "programs/config-cli/ConfigSettingsSession.h"

namespace Tarni::Support
{
class ErrorException;
}

namespace Tarni::DriverSupport
{
class DSDSNConfiguration;
}

namespace Tarni::SparkODBC
{

class ConfigCommandLine
{
public:
    enum ExitCode : int
    {
        RESULT_OK = 0,
        RESULT_FAILURE = 1,  ///< an error, `get` of an absent key, a value --check would refuse
        RESULT_USAGE = 2,    ///< the command line itself is wrong
    };

    ConfigCommandLine(std::istream& io_in, std::ostream& io_out, std::ostream& io_err);

    int Run(const std::vector<tarni_wstring>& in_arguments);

    static const char* UsageText();

private:
    using Operands = std::vector<tarni_wstring>;

    /// What the options ask for; --json and --check may also follow the command.
    struct Options
    {
        tarni_wstring iniPath;
        /// --dsn NAME and --system: a data source instead of the driver-wide settings.
        std::optional<tarni_wstring> dsnName;
        bool systemDsn = false;
        bool json = false;
        bool check = false;
        /// A failed test printed its outcome object: with --json that object
        /// alone answers, and no error object follows on standard error.
        bool outcomeReported = false;
    };

    /// One command: its name ("dsn add" for the data-source actions), what
    /// it opens (a command that saves: Update or Create), and what runs it
    /// over the opened settings.
    using CommandFunction = int(ConfigSettingsSession& io_session, const Operands& in_operands);
    struct Command
    {
        const char16_t* name;
        ConfigSettingsSession::Purpose purpose;
        CommandFunction ConfigCommandLine::*run;
        bool Writes() const;
    };
    static const Command* FindCommand(tarni_wstring_view in_name);

    int ParseAndRun(const std::vector<tarni_wstring>& in_arguments);
    /// `dsn ACTION [NAME] ...`: the action joins the command's name and
    /// NAME becomes the data source. A usage problem, or nothing.
    std::optional<std::string> TakeDataSourceAction(tarni_wstring& io_name, Operands& io_operands);
    /// Opens the settings the options name, loads them and runs the command on them.
    int RunCommand(const Command& in_command, const Operands& in_operands);

    // The commands (see FindCommand). Test opens a session with the
    // settings (and KEY=VALUE changes for this attempt only); dsn list
    // prints NAME<TAB>DRIVER lines or {"dataSources": [{"name", "driver",
    // "system"}]}; dsn add creates the data source with its description,
    // host and port and the given settings; dsn remove reports the entries
    // that go with it.
    CommandFunction Show, Get, Export, Diff, Test;
    CommandFunction Set, Unset, SetSecret, Import;
    CommandFunction ListDataSources, AddDataSource, RemoveDataSource;

    /// Saves (or with --check only compares) and reports what changed.
    int SaveAndReport(ConfigSettingsSession& io_session);
    /// Reports the changes as text or JSON.
    int Report(ConfigSettingsSession& io_session, std::vector<DriverSupport::DSStoreChange> in_changes);
    /// Writes the whole output at once; false (after an error) when it could not be written.
    bool Emit(const std::string& in_text);

    /// The text shown for a setting: "****" for a secret, plain or protected.
    std::string Shown(const DriverSupport::DSDSNConfiguration& in_config, tarni_wstring_view in_key,
                      tarni_wstring_view in_value) const;
    bool IsSecret(const DriverSupport::DSDSNConfiguration& in_config, tarni_wstring_view in_key,
                  tarni_wstring_view in_value) const;
    /// One line of standard input, without echo when it is a terminal.
    bool ReadSecretLine(tarni_wstring_view in_key, std::string& out_line);
    int Usage(const std::string& in_problem);
    std::string Describe(const Support::ErrorException& in_error) const;

    /// Where errors and warnings go: standard error, or under --json a
    /// buffer that becomes one JSON object on standard error at the end.
    std::ostream& Err();
    void WriteJsonDiagnostics(int in_result);

    std::istream& m_in;
    std::ostream& m_out;
    std::ostream& m_err;
    Options m_options;
    std::ostringstream m_diagnostics;
};
}  // namespace Tarni::SparkODBC
