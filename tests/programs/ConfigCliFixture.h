#pragma once
// What the tests of the command-line program share: a run of the program
// with UTF-8 arguments and a text on standard input, what it printed, and
// the process-wide password switches put back after each test. Where the
// platform keeps the driver-wide settings in an INI file, the run names
// m_ini (unless it is left empty).
#include <sstream>
#include <string>
#include <vector>

#include "common/ProductSettingsFixture.h"
#include "driversupport/DSUidPwdConfiguration.h"
#include "platform/ProcessEnvironment.h"
#include "programs/config-cli/ConfigCommandLine.h"

namespace Tarni::Testing
{
template <class Base = ProductSettingsFixture>
class ConfigCliFixture : public Base
{
protected:
    void TearDown() override
    {
        DriverSupport::DSUidPwdConfiguration::SetEncryptionOptionsEnabled(false);
        DriverSupport::DSUidPwdConfiguration::SetDropPlainPasswordOnSave(false);
        Base::TearDown();
    }

    int Run(const std::vector<std::string>& in_arguments, const std::string& in_input = "",
            std::ostream* io_out = nullptr)
    {
        return RunOnIni(m_ini, in_arguments, in_input, io_out);
    }

    /// The run on the INI file given.
    int RunOnIni(const std::filesystem::path& in_ini, const std::vector<std::string>& in_arguments,
              const std::string& in_input = "", std::ostream* io_out = nullptr)
    {
        std::vector<tarni_wstring> arguments;
        if (!in_ini.empty() && Platform::ProcessEnvironment::UsesIniStore())
        {
            arguments = {u"--ini", Support::StringConverter::FromUtf8(in_ini.string())};
        }
        for (const auto& argument : in_arguments)
        {
            arguments.push_back(Support::StringConverter::FromUtf8(argument));
        }
        m_out.str("");
        m_err.str("");
        std::istringstream in(in_input);
        // What the previous command read of the settings is not kept.
        Support::TarniSettingReader::Reset();
        return SparkODBC::ConfigCommandLine(in, io_out != nullptr ? *io_out : m_out, m_err).Run(arguments);
    }

    std::filesystem::path m_ini = this->m_dir / "odbc.ini";
    std::ostringstream m_out;
    std::ostringstream m_err;
};
}  // namespace Tarni::Testing
