#include "programs/config-cli/ConfigDsnCommands.h"
#include "programs/config-cli/ConfigTestCommand.h"
#include "thrift/connectiontest/TEConnectionTesterFactory.h"

#include <algorithm>
#include <iostream>
#include <optional>

#include "core/ErrorException.h"
#include "core/NullLogger.h"
#include "driversupport/DSConfigurationFile.h"
#include "driversupport/DSEncryptionUtils.h"
#include "platform/ConsoleEcho.h"
#include "platform/DataSourceStore.h"
#include "platform/SystemError.h"
#include "product/SODataSourceConfiguration.h"
#include "product/SODataSourceSession.h"
#include "programs/config-cli/ConfigCommandLine.h"
#include "programs/config-cli/ConfigSettingChecks.h"
#include "support/StringConverter.h"
#include "support/messages/DSIMessageManager.h"

namespace Tarni::SparkODBC
{
using Support::StringConverter;

namespace
{
std::string U8(tarni_wstring_view in_text)
{
    return StringConverter::ToUtf8(in_text);
}

Support::ErrorException DsnError(const char16_t* in_key, tarni_wstring_view in_name, const SODataSourceSession& in_session)
{
    return Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, in_key,
                                   {tarni_wstring(in_name), in_session.ModeName()});
}
}  // namespace

ConfigDsnCommands::ConfigDsnCommands(std::istream& io_in, std::ostream& io_out, std::ostream& io_err)
    : m_in(io_in), m_out(io_out), m_err(io_err)
{
}

const char* ConfigDsnCommands::UsageText()
{
    return "Data sources (through the ODBC installer; user data sources unless --system):\n"
           "  --dsn NAME [--system] COMMAND [ARGUMENTS]\n"
           "                        run show, get, set, unset, set-secret, export,\n"
           "                        import or test on the data source NAME instead of the\n"
           "                        driver-wide settings; it stores its description,\n"
           "                        host and port and what differs from the driver-wide\n"
           "                        settings; unset returns a setting to those\n"
           "  dsn list [--system]   print each data source as NAME<TAB>DRIVER\n"
           "  dsn add [--system] NAME [KEY=VALUE...]\n"
           "                        create the data source NAME with the given settings\n"
           "  dsn remove [--system] NAME\n"
           "                        remove the data source NAME\n";
}

int ConfigDsnCommands::Usage(const std::string& in_problem)
{
    m_err << "tarni-spark-config: " << in_problem << "\n"
          << "Try 'tarni-spark-config --help'.\n";
    return ConfigCommandLine::RESULT_USAGE;
}

int ConfigDsnCommands::RunOnDataSource(const tarni_wstring& in_iniPath, const tarni_wstring& in_dsnName,
                                       bool in_system, const tarni_wstring& in_command,
                                       const std::vector<tarni_wstring>& in_operands)
{
    const tarni_wstring_view commands[] = {u"show",   u"get",    u"set",   u"unset",
                                           u"set-secret", u"export", u"import", u"test"};
    if (std::find(std::begin(commands), std::end(commands), in_command) == std::end(commands))
    {
        return Usage("unknown command " + U8(in_command) + " for a data source");
    }
    if ((in_command == u"export" || in_command == u"import") && in_operands.size() != 1)
    {
        return Usage(U8(in_command) + " takes one FILE (- for standard " +
                     (in_command == u"export" ? "output)" : "input)"));
    }
    try
    {
        DriverSupport::DSDSNConfiguration::CheckDsnName(in_dsnName);
        const SODataSourceSession session(in_iniPath, in_system);
        if (!Platform::DataSourceStore::Exists(in_dsnName))
        {
            throw DsnError(u"DSDsnNotFoundErr", in_dsnName, session);
        }
        Support::NullLogger logger;
        SODataSourceConfiguration config(in_dsnName, in_system, &logger);
        config.Load(tarni_wstring_view(in_dsnName));
        for (const auto& error : config.GetSecretRecoveryErrors())
        {
            m_err << "tarni-spark-config: warning: " << Support::DSIMessageManager::GetDisplayTextUtf8(error) << "\n";
        }
        if (in_command == u"show")
        {
            return Show(config);
        }
        if (in_command == u"get")
        {
            return Get(config, in_operands);
        }
        if (in_command == u"set")
        {
            if (in_operands.empty())
            {
                return Usage("set needs at least one KEY=VALUE");
            }
            return Set(config, in_operands, 0);
        }
        if (in_command == u"unset")
        {
            return Unset(config, in_operands);
        }
        if (in_command == u"set-secret")
        {
            return SetSecret(config, in_operands, in_system);
        }
        if (in_command == u"export")
        {
            return Export(config, in_operands[0]);
        }
        if (in_command == u"test")
        {
            return ConfigTestCommand(m_out, m_err, ThriftExtension::TEConnectionTesterFactory::GetDefault())
                .Run(config, in_operands);
        }
        return Import(config, in_operands[0]);
    }
    catch (const Support::ErrorException& e)
    {
        m_err << "tarni-spark-config: " << Support::DSIMessageManager::GetDisplayTextUtf8(e) << "\n";
        return ConfigCommandLine::RESULT_FAILURE;
    }
}

int ConfigDsnCommands::RunDsnCommand(const tarni_wstring& in_iniPath, bool in_system,
                                     const std::vector<tarni_wstring>& in_operands)
{
    std::vector<tarni_wstring> operands;
    for (const tarni_wstring& operand : in_operands)
    {
        if (operand == u"--system")
        {
            in_system = true;
        }
        else
        {
            operands.push_back(operand);
        }
    }
    const tarni_wstring action = operands.empty() ? tarni_wstring() : operands[0];
    if (action == u"list" ? operands.size() != 1
                          : (action == u"remove" ? operands.size() != 2 : (action != u"add" || operands.size() < 2)))
    {
        return Usage("dsn takes list, add NAME [KEY=VALUE...] or remove NAME");
    }
    try
    {
        const SODataSourceSession session(in_iniPath, in_system);
        if (action == u"list")
        {
            for (const Platform::StoredValue& source : Platform::DataSourceStore::List())
            {
                m_out << U8(source.name) << "\t" << U8(source.value) << "\n";
            }
            return ConfigSettingChecks::OutputWritten(m_out, m_err) ? ConfigCommandLine::RESULT_OK
                                                                     : ConfigCommandLine::RESULT_FAILURE;
        }
        const tarni_wstring& name = operands[1];
        DriverSupport::DSDSNConfiguration::CheckDsnName(name);
        const bool exists = Platform::DataSourceStore::Exists(name);
        if (action == u"remove")
        {
            if (!exists)
            {
                throw DsnError(u"DSDsnNotFoundErr", name, session);
            }
            DriverSupport::DSDSNConfiguration::RemoveDataSource(name);
            return ConfigCommandLine::RESULT_OK;
        }
        if (exists)
        {
            throw DsnError(u"DSDsnExistsErr", name, session);
        }
        Support::NullLogger logger;
        SODataSourceConfiguration config(name, in_system, &logger);
        config.Load(tarni_wstring_view(name));
        if (operands.size() > 2)
        {
            return Set(config, operands, 2);
        }
        config.SaveDataSource();
        return ConfigCommandLine::RESULT_OK;
    }
    catch (const Support::ErrorException& e)
    {
        m_err << "tarni-spark-config: " << Support::DSIMessageManager::GetDisplayTextUtf8(e) << "\n";
        return ConfigCommandLine::RESULT_FAILURE;
    }
}

std::string ConfigDsnCommands::Shown(const SODataSourceConfiguration& in_config, tarni_wstring_view in_key,
                                     tarni_wstring_view in_value) const
{
    if (in_config.FindCredentialBySecretKey(in_key) != nullptr ||
        DriverSupport::DSEncryptionUtils::HasProtectedForm(in_value))
    {
        return "****";
    }
    return U8(in_value);
}

int ConfigDsnCommands::Show(const SODataSourceConfiguration& in_config)
{
    for (const auto& [key, value] : in_config.GetMap())
    {
        m_out << U8(key) << "=" << Shown(in_config, key, value) << "\n";
    }
    return ConfigSettingChecks::OutputWritten(m_out, m_err) ? ConfigCommandLine::RESULT_OK
                                                             : ConfigCommandLine::RESULT_FAILURE;
}

int ConfigDsnCommands::Get(const SODataSourceConfiguration& in_config, const std::vector<tarni_wstring>& in_operands)
{
    if (in_operands.size() != 1)
    {
        return Usage("get takes exactly one key");
    }
    if (!in_config.GetMap().Contains(in_operands[0]))
    {
        m_err << "tarni-spark-config: no setting named " << U8(in_operands[0]) << "\n";
        return ConfigCommandLine::RESULT_FAILURE;
    }
    m_out << Shown(in_config, in_operands[0], in_config.GetMap().GetValue(in_operands[0])) << "\n";
    return ConfigSettingChecks::OutputWritten(m_out, m_err) ? ConfigCommandLine::RESULT_OK
                                                             : ConfigCommandLine::RESULT_FAILURE;
}

int ConfigDsnCommands::Set(SODataSourceConfiguration& io_config, const std::vector<tarni_wstring>& in_operands,
                           size_t in_first)
{
    std::vector<ConfigSettingChecks::Setting> settings;
    for (size_t i = in_first; i < in_operands.size(); ++i)
    {
        const tarni_wstring& pair = in_operands[i];
        const size_t equals = pair.find(u'=');
        if (equals == tarni_wstring::npos || equals == 0)
        {
            return Usage("expected KEY=VALUE, got " + U8(pair));
        }
        const tarni_wstring key = pair.substr(0, equals);
        if (io_config.FindCredentialBySecretKey(key) != nullptr)
        {
            return Usage(U8(key) + " is a secret: use 'set-secret " + U8(key) +
                         "', which reads it from standard input");
        }
        if (StringConverter::EqualsIgnoreCase(key, u"Driver") || StringConverter::EqualsIgnoreCase(key, u"DSN"))
        {
            return Usage(U8(key) + " is kept by the ODBC installer and cannot be set");
        }
        settings.emplace_back(key, pair.substr(equals + 1));
    }
    if (!ConfigSettingChecks::CheckSettings(settings, m_err))
    {
        return ConfigCommandLine::RESULT_FAILURE;
    }
    for (const auto& [key, value] : settings)
    {
        io_config.SetSetting(key, value);
    }
    io_config.SaveDataSource();
    return ConfigCommandLine::RESULT_OK;
}

int ConfigDsnCommands::Unset(SODataSourceConfiguration& io_config, const std::vector<tarni_wstring>& in_operands)
{
    if (in_operands.empty())
    {
        return Usage("unset needs at least one key");
    }
    for (const tarni_wstring& key : in_operands)
    {
        if (const auto problem = ConfigSettingChecks::ProblemWithUnsetName(key))
        {
            return Usage(*problem);
        }
    }
    for (const tarni_wstring& key : in_operands)
    {
        io_config.UnsetSetting(key);
    }
    io_config.SaveDataSource();
    return ConfigCommandLine::RESULT_OK;
}

int ConfigDsnCommands::SetSecret(SODataSourceConfiguration& io_config, const std::vector<tarni_wstring>& in_operands,
                                 bool in_system)
{
    tarni_wstring key;
    // A system data source is read by every user of the machine: its
    // secrets are protected for all of them unless the caller says otherwise.
    bool allUsers = in_system;
    if (const auto problem = ConfigSettingChecks::ParseSecretOperands(in_operands, key, allUsers))
    {
        return Usage(*problem);
    }
    DriverSupport::DSUidPwdConfiguration* credential =
        key.empty() ? nullptr : io_config.FindCredentialBySecretKey(key);
    if (credential == nullptr)
    {
        return Usage((key.empty() ? std::string("set-secret needs the KEY of a secret") : U8(key) + " is not a secret") +
                     "; secrets are PWD, ProxyPWD, ClientPrivateKeyPWD, Auth_Client_Secret, Auth_AccessToken, "
                     "AOSS_PWD and keyFilePassword");
    }
    std::optional<Platform::ConsoleEcho> echo;
    if (&m_in == &std::cin)
    {
        echo.emplace();
        if (echo->IsTerminal())
        {
            m_err << "Secret for " << U8(credential->GetKeySet().Pwd()) << ": " << std::flush;
        }
    }
    std::string line;
    if (!std::getline(m_in, line) && line.empty())
    {
        m_err << "tarni-spark-config: no secret on standard input\n";
        return ConfigCommandLine::RESULT_FAILURE;
    }
    if (!line.empty() && line.back() == '\r')
    {
        line.pop_back();
    }
    const tarni_wstring secret = StringConverter::FromUtf8(line);
    std::fill(line.begin(), line.end(), '\0');
    credential->SetPwd(secret);
    credential->SetEncryptPwd(true);
    credential->SetDPAPIEncryptForAllUsers(allUsers);
    io_config.SaveDataSource();
    return ConfigCommandLine::RESULT_OK;
}

int ConfigDsnCommands::Export(const SODataSourceConfiguration& in_config, const tarni_wstring& in_target)
{
    if (in_target == u"-")
    {
        m_out << DriverSupport::DSConfigurationFile::Format(DriverSupport::DSConfigurationFile::GetExportMap(in_config))
              << std::flush;
        return ConfigSettingChecks::OutputWritten(m_out, m_err) ? ConfigCommandLine::RESULT_OK
                                                                 : ConfigCommandLine::RESULT_FAILURE;
    }
    DriverSupport::DSConfigurationFile::Export(in_config, in_target);
    return ConfigCommandLine::RESULT_OK;
}

int ConfigDsnCommands::Import(SODataSourceConfiguration& io_config, const tarni_wstring& in_source)
{
    DriverSupport::ConfigurationMap values;
    if (in_source == u"-")
    {
        std::string bytes(DriverSupport::DSConfigurationFile::MAX_FILE_BYTES + 1, '\0');
        m_in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        bytes.resize(static_cast<std::size_t>(m_in.gcount()));
        values = DriverSupport::DSConfigurationFile::Parse(bytes, u"(standard input)");
    }
    else
    {
        values = DriverSupport::DSConfigurationFile::Read(in_source);
    }
    DriverSupport::DSConfigurationFile::Import(io_config, values);
    io_config.SaveDataSource();
    return ConfigCommandLine::RESULT_OK;
}
}  // namespace Tarni::SparkODBC
