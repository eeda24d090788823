#pragma once
// tarni-spark-config: shows and edits the driver-wide configuration from the
// command line, over the same configuration object, validation and save as
// the dialog program.
#include <iosfwd>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::Support
{
class ErrorException;
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
        RESULT_FAILURE = 1,  ///< an error, or `get` of an absent key
        RESULT_USAGE = 2,    ///< the command line itself is wrong
    };

    ConfigCommandLine(std::istream& io_in, std::ostream& io_out, std::ostream& io_err);

    int Run(const std::vector<tarni_wstring>& in_arguments);

    static const char* UsageText();

private:
    int Show(QDCConfiguration& io_config);
    int Get(QDCConfiguration& io_config, const std::vector<tarni_wstring>& in_operands);
    int Set(QDCConfiguration& io_config, const std::vector<tarni_wstring>& in_operands);
    int Unset(QDCConfiguration& io_config, const std::vector<tarni_wstring>& in_operands);
    int SetSecret(QDCConfiguration& io_config, const std::vector<tarni_wstring>& in_operands);
    /// The text shown for a setting: "****" for a secret, plain or protected.
    std::string Shown(const QDCConfiguration& io_config, tarni_wstring_view in_key, tarni_wstring_view in_value) const;
    /// One line of standard input, without echo when it is a terminal.
    bool ReadSecretLine(tarni_wstring_view in_key, std::string& out_line);
    int Usage(const std::string& in_problem);
    std::string Describe(const Support::ErrorException& in_error) const;

    std::istream& m_in;
    std::ostream& m_out;
    std::ostream& m_err;
};
}  // namespace Tarni::SparkODBC
