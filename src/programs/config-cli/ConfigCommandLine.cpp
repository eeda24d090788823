#include "programs/config-cli/ConfigCommandLine.h"
#include "programs/config-cli/ConfigTransferCommands.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>

#include "driversupport/DSEncryptionUtils.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/DSServerSidePropertyGroup.h"
#include "platform/ConsoleEcho.h"
#include "platform/ProcessEnvironment.h"
#include "platform/SettingsStoreFactory.h"
#include "programs/config-cli/ConfigTestCommand.h"
#include "programs/config-cli/ConfigSettingChecks.h"
#include "product/QDCConfiguration.h"
#include "product/SOProductIdentity.h"
#include "core/ErrorException.h"
#include "core/NullLogger.h"
#include "thrift/TEConnectionTesterFactory.h"
#include "support/StringConverter.h"
#include "support/TarniSettingStoreScope.h"
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
}  // namespace

ConfigCommandLine::ConfigCommandLine(std::istream& io_in, std::ostream& io_out, std::ostream& io_err)
    : m_in(io_in), m_out(io_out), m_err(io_err)
{
}

const char* ConfigCommandLine::UsageText()
{
    return "Usage: tarni-spark-config [--ini PATH] COMMAND [ARGUMENTS]\n"
           "\n"
           "Shows and edits the driver-wide settings of the Tarni Spark ODBC Driver.\n"
           "\n"
           "Commands:\n"
           "  show                  print every setting as key=value, in key order\n"
           "  get KEY               print the value of one setting (exit 1 when absent)\n"
           "  set KEY=VALUE...      set one or more settings and save them together\n"
           "  unset KEY...          remove a prefixed setting (SSP_..., http.header....)\n"
           "                        or return an ordinary one to its default\n"
           "  set-secret KEY [--scope user|machine]\n"
           "                        read a secret (PWD, ProxyPWD, ClientPrivateKeyPWD,\n"
           "                        Auth_Client_Secret, Auth_AccessToken, AOSS_PWD,\n"
           "                        keyFilePassword) from one line of standard input and\n"
           "                        save it protected for the current user (default) or\n"
           "                        for all users of this machine\n"
           "  export FILE           write the settings to FILE (- for standard output) as\n"
           "                        key=value lines, without logging settings and secrets\n"
           "  import FILE           replace the settings with those of FILE (- for standard\n"
           "                        input); settings it does not name return to their\n"
           "                        defaults, logging settings stay as they are\n"
           "  test [KEY=VALUE...]   open a session on the server with the settings (and\n"
           "                        the given changes, which are not saved); prints the\n"
           "                        result, exit 0 when the session opened, 1 when not\n"
           "\n"
           "Secrets are never taken from the command line, and show and get print them\n"
           "as ****.\n"
           "\n"
           "Options:\n"
           "  --ini PATH            the INI file to use (Linux; default $SPARKINI, else\n"
           "                        ~/.sparkodbc.ini). On Windows the settings live in the\n"
           "                        registry under HKEY_LOCAL_MACHINE.\n"
           "  --help                print this text\n"
           "\n"
           "Exit status: 0 success, 1 error or absent key, 2 wrong command line.\n"
           "Errors are printed on standard error and nothing is written.\n";
}

int ConfigCommandLine::Usage(const std::string& in_problem)
{
    m_err << "tarni-spark-config: " << in_problem << "\n"
          << "Try 'tarni-spark-config --help'.\n";
    return RESULT_USAGE;
}

std::string ConfigCommandLine::Describe(const Support::ErrorException& in_error) const
{
    return Support::DSIMessageManager::GetDisplayTextUtf8(in_error);
}

int ConfigCommandLine::Run(const std::vector<tarni_wstring>& in_arguments)
{
    tarni_wstring iniPath;
    size_t index = 0;
    for (; index < in_arguments.size(); ++index)
    {
        const tarni_wstring& argument = in_arguments[index];
        if (argument == u"--help" || argument == u"-h")
        {
            m_out << UsageText();
            return RESULT_OK;
        }
        if (argument == u"--ini")
        {
            if (index + 1 >= in_arguments.size() || in_arguments[index + 1].empty())
            {
                return Usage("--ini needs a file path");
            }
            if (!Platform::ProcessEnvironment::UsesIniStore())
            {
                return Usage("--ini is not available here: the settings live in the registry");
            }
            iniPath = in_arguments[++index];
            continue;
        }
        if (!argument.empty() && argument[0] == u'-')
        {
            return Usage("unknown option " + U8(argument));
        }
        break;
    }
    if (index >= in_arguments.size())
    {
        return Usage("no command given");
    }
    const tarni_wstring command = in_arguments[index];
    const std::vector<tarni_wstring> operands(in_arguments.begin() + static_cast<std::ptrdiff_t>(index) + 1,
                                              in_arguments.end());
    const bool modifies = command == u"set" || command == u"unset" || command == u"set-secret" || command == u"import";
    if (!modifies && command != u"show" && command != u"get" && command != u"export" && command != u"test")
    {
        return Usage("unknown command " + U8(command));
    }
    if ((command == u"export" || command == u"import") && operands.size() != 1)
    {
        return Usage(U8(command) + " takes one FILE (- for standard " +
                     (command == u"export" ? "output)" : "input)"));
    }

    try
    {
        SOProductIdentity::Register();
        auto store = Platform::SettingsStoreFactory::OpenDriverStore(
            DriverSupport::DSProductHelper::GetDriverStoreLocation(iniPath));
        if (modifies)
        {
            // Hold the store from load to save, so concurrent edits of other keys are kept.
            store->LockForUpdate();
        }
        const Support::TarniSettingStoreScope storeScope(*store);
        // The message files may be placed by ERRORMESSAGESPATH in the store:
        // the catalogue takes its folder now, while the store is open.
        Support::DSIMessageManager::GetDefault().GetSource().GetMessagesPath();
        // The same credential rules as the dialog program: a secret is kept
        // only in protected form, and never in plain text.
        DriverSupport::DSUidPwdConfiguration::SetEncryptionOptionsEnabled(true);
        DriverSupport::DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);
        Support::NullLogger logger;
        DriverSupport::DSServerSidePropertyGroup serverSideProperties;
        DriverSupport::DSPrefixedPropertyGroup httpHeaders("http.header.");
        QDCConfiguration config(serverSideProperties, httpHeaders, &logger, *store);
        config.Load();
        for (const auto& error : config.GetSecretRecoveryErrors())
        {
            m_err << "tarni-spark-config: warning: " << Describe(error) << "\n";
        }

        int result = RESULT_OK;
        if (command == u"show")
        {
            result = Show(config);
        }
        else if (command == u"get")
        {
            result = Get(config, operands);
        }
        else if (command == u"set")
        {
            result = Set(config, operands);
        }
        else if (command == u"set-secret")
        {
            result = SetSecret(config, operands);
        }
        else if (command == u"export")
        {
            ConfigTransferCommands(m_in, m_out).Export(config, operands[0]);
        }
        else if (command == u"import")
        {
            ConfigTransferCommands(m_in, m_out).Import(config, operands[0]);
        }
        else if (command == u"test")
        {
            result = ConfigTestCommand(m_out, m_err, ThriftExtension::TEConnectionTesterFactory::GetDefault())
                         .Run(config, operands);
        }
        else
        {
            result = Unset(config, operands);
        }
        return result;
    }
    catch (const Support::ErrorException& e)
    {
        m_err << "tarni-spark-config: " << Describe(e) << "\n";
        return RESULT_FAILURE;
    }
}

int ConfigCommandLine::Show(QDCConfiguration& io_config)
{
    for (const auto& [key, value] : io_config.GetMap())
    {
        m_out << U8(key) << "=" << Shown(io_config, key, value) << "\n";
    }
    return ConfigSettingChecks::OutputWritten(m_out, m_err) ? RESULT_OK : RESULT_FAILURE;
}

int ConfigCommandLine::Get(QDCConfiguration& io_config, const std::vector<tarni_wstring>& in_operands)
{
    if (in_operands.size() != 1)
    {
        return Usage("get takes exactly one key");
    }
    if (!io_config.GetMap().Contains(in_operands[0]))
    {
        m_err << "tarni-spark-config: no setting named " << U8(in_operands[0]) << "\n";
        return RESULT_FAILURE;
    }
    m_out << Shown(io_config, in_operands[0], io_config.GetMap().GetValue(in_operands[0])) << "\n";
    return ConfigSettingChecks::OutputWritten(m_out, m_err) ? RESULT_OK : RESULT_FAILURE;
}

int ConfigCommandLine::Set(QDCConfiguration& io_config, const std::vector<tarni_wstring>& in_operands)
{
    if (in_operands.empty())
    {
        return Usage("set needs at least one KEY=VALUE");
    }
    for (const tarni_wstring& pair : in_operands)
    {
        const size_t equals = pair.find(u'=');
        if (equals == tarni_wstring::npos || equals == 0)
        {
            return Usage("expected KEY=VALUE, got " + U8(pair));
        }
        // A secret on the command line would be visible to every user of the
        // machine (process list, shell history): refuse it, without echoing
        // the value.
        const tarni_wstring_view key = tarni_wstring_view(pair).substr(0, equals);
        if (io_config.FindCredentialBySecretKey(key) != nullptr)
        {
            return Usage(U8(key) + " is a secret: use 'set-secret " + U8(key) +
                         "', which reads it from standard input");
        }
    }
    std::vector<ConfigSettingChecks::Setting> settings;
    for (const tarni_wstring& pair : in_operands)
    {
        const size_t equals = pair.find(u'=');
        settings.emplace_back(pair.substr(0, equals), pair.substr(equals + 1));
    }
    if (!ConfigSettingChecks::CheckSettings(settings, m_err))
    {
        return RESULT_FAILURE;
    }
    for (const auto& [key, value] : settings)
    {
        io_config.SetSetting(key, value);
    }
    io_config.Save();
    return RESULT_OK;
}

int ConfigCommandLine::Unset(QDCConfiguration& io_config, const std::vector<tarni_wstring>& in_operands)
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
    io_config.Save();
    return RESULT_OK;
}
}  // namespace Tarni::SparkODBC

namespace Tarni::SparkODBC
{
std::string ConfigCommandLine::Shown(const QDCConfiguration& io_config, tarni_wstring_view in_key,
                                     tarni_wstring_view in_value) const
{
    if (io_config.FindCredentialBySecretKey(in_key) != nullptr ||
        DriverSupport::DSEncryptionUtils::HasProtectedForm(in_value))
    {
        return "****";
    }
    return U8(in_value);
}

bool ConfigCommandLine::ReadSecretLine(tarni_wstring_view in_key, std::string& out_line)
{
    // Only the process's own standard input can be a terminal; tests hand in
    // other streams.
    std::optional<Platform::ConsoleEcho> echo;
    if (&m_in == &std::cin)
    {
        echo.emplace();
        if (echo->IsTerminal())
        {
            m_err << "Secret for " << U8(in_key) << ": " << std::flush;
        }
    }
    if (!std::getline(m_in, out_line) && out_line.empty())
    {
        return false;
    }
    if (!out_line.empty() && out_line.back() == '\r')
    {
        out_line.pop_back();
    }
    return true;
}

int ConfigCommandLine::SetSecret(QDCConfiguration& io_config, const std::vector<tarni_wstring>& in_operands)
{
    tarni_wstring key;
    bool allUsers = false;
    for (size_t i = 0; i < in_operands.size(); ++i)
    {
        if (in_operands[i] == u"--scope")
        {
            const tarni_wstring scope = i + 1 < in_operands.size() ? in_operands[++i] : tarni_wstring();
            if (scope != u"user" && scope != u"machine")
            {
                return Usage("--scope takes user or machine");
            }
            allUsers = scope == u"machine";
        }
        else if (key.empty() && !in_operands[i].empty() && in_operands[i][0] != u'-')
        {
            key = in_operands[i];
        }
        else
        {
            return Usage("set-secret takes one KEY and --scope user|machine; the secret itself comes from "
                         "standard input");
        }
    }
    if (key.empty())
    {
        return Usage("set-secret needs the KEY of a secret");
    }
    DriverSupport::DSUidPwdConfiguration* credential = io_config.FindCredentialBySecretKey(key);
    if (credential == nullptr)
    {
        return Usage(U8(key) + " is not a secret; secrets are PWD, ProxyPWD, ClientPrivateKeyPWD, "
                               "Auth_Client_Secret, Auth_AccessToken, AOSS_PWD and keyFilePassword");
    }
    std::string line;
    if (!ReadSecretLine(credential->GetKeySet().Pwd(), line))
    {
        m_err << "tarni-spark-config: no secret on standard input\n";
        return RESULT_FAILURE;
    }
    const tarni_wstring secret = StringConverter::FromUtf8(line);
    std::fill(line.begin(), line.end(), '\0');
    credential->SetPwd(secret);
    credential->SetEncryptPwd(true);
    credential->SetDPAPIEncryptForAllUsers(allUsers);
    io_config.Save();
    return RESULT_OK;
}
}  // namespace Tarni::SparkODBC
