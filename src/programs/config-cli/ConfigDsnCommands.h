#pragma once
// The data-source commands of tarni-spark-config: `--dsn NAME [--system]`
// with show, get, set, unset, set-secret, export and import edits one data
// source through the same model, checks and save as the DSN dialog; `dsn
// list|add|remove` manages the data sources. Data sources are read and
// written through the ODBC installer library, in its user mode or, with
// --system, its system mode.
#include <iosfwd>
#include <string>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::SparkODBC
{
class SODataSourceConfiguration;

class ConfigDsnCommands
{
public:
    ConfigDsnCommands(std::istream& io_in, std::ostream& io_out, std::ostream& io_err);

    /// One command on the data source in_dsnName. Returns the exit code of
    /// ConfigCommandLine.
    int RunOnDataSource(const tarni_wstring& in_iniPath, const tarni_wstring& in_dsnName, bool in_system,
                        const tarni_wstring& in_command, const std::vector<tarni_wstring>& in_operands);

    /// `dsn list`, `dsn add NAME [KEY=VALUE...]`, `dsn remove NAME`.
    int RunDsnCommand(const tarni_wstring& in_iniPath, bool in_system, const std::vector<tarni_wstring>& in_operands);

    static const char* UsageText();

private:
    int Show(const SODataSourceConfiguration& in_config);
    int Get(const SODataSourceConfiguration& in_config, const std::vector<tarni_wstring>& in_operands);
    int Set(SODataSourceConfiguration& io_config, const std::vector<tarni_wstring>& in_operands, size_t in_first);
    int Unset(SODataSourceConfiguration& io_config, const std::vector<tarni_wstring>& in_operands);
    int SetSecret(SODataSourceConfiguration& io_config, const std::vector<tarni_wstring>& in_operands, bool in_system);
    int Export(const SODataSourceConfiguration& in_config, const tarni_wstring& in_target);
    int Import(SODataSourceConfiguration& io_config, const tarni_wstring& in_source);
    std::string Shown(const SODataSourceConfiguration& in_config, tarni_wstring_view in_key,
                      tarni_wstring_view in_value) const;
    int Usage(const std::string& in_problem);

    std::istream& m_in;
    std::ostream& m_out;
    std::ostream& m_err;
};
}  // namespace Tarni::SparkODBC
