#pragma once
// tarni-spark-config: shows and edits the driver-wide configuration from the
// command line, over the same configuration object, validation and save as
// the dialog program.
#include <iosfwd>
#include <memory>
#include <optional>
#include <sstream>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::Support
{
class ErrorException;
}

namespace Tarni::Platform
{
class ISettingsStore;
}

namespace Tarni::SparkODBC
{
class QDCConfiguration;

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
    };

    /// One command: its name, whether it changes the store, and what runs it
    /// over the loaded configuration.
    struct Command
    {
        const char16_t* name;
        bool writes;
        int (ConfigCommandLine::*run)(QDCConfiguration& io_config, const Operands& in_operands);
    };
    static const Command* FindCommand(tarni_wstring_view in_name);

    int ParseAndRun(const std::vector<tarni_wstring>& in_arguments);
    /// Opens the store, loads the configuration and runs the command on it.
    int RunCommand(const Command& in_command, const Operands& in_operands);
    /// The one place where the command line chooses the store.
    std::unique_ptr<Platform::ISettingsStore> OpenStore() const;

    int Show(QDCConfiguration& io_config, const Operands& in_operands);
    int Get(QDCConfiguration& io_config, const Operands& in_operands);
    int Set(QDCConfiguration& io_config, const Operands& in_operands);
    int Unset(QDCConfiguration& io_config, const Operands& in_operands);
    int SetSecret(QDCConfiguration& io_config, const Operands& in_operands);
    int Export(QDCConfiguration& io_config, const Operands& in_operands);
    int Import(QDCConfiguration& io_config, const Operands& in_operands);
    int Diff(QDCConfiguration& io_config, const Operands& in_operands);
    /// Opens a session with the settings (and KEY=VALUE changes for this attempt only).
    int Test(QDCConfiguration& io_config, const Operands& in_operands);

    /// Saves (or with --check only compares) and reports what changed.
    int SaveAndReport(QDCConfiguration& io_config);
    /// Writes the whole output at once; false (after an error) when it could not be written.
    bool Emit(const std::string& in_text);

    /// The text shown for a setting: "****" for a secret, plain or protected.
    std::string Shown(const QDCConfiguration& io_config, tarni_wstring_view in_key, tarni_wstring_view in_value) const;
    bool IsSecret(const QDCConfiguration& io_config, tarni_wstring_view in_key, tarni_wstring_view in_value) const;
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
