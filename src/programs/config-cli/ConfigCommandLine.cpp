#include "programs/config-cli/ConfigCommandLine.h"
#include "programs/config-cli/ConfigChangeReport.h"
#include "programs/config-cli/ConfigDsnCommands.h"
#include "programs/config-cli/ConfigTransferCommands.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>

#include <nlohmann/json.hpp>

#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSConfigurationFile.h"
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
#include "thrift/connectiontest/TEConnectionTesterFactory.h"
#include "support/StringConverter.h"
#include "support/TarniSettingStoreScope.h"
#include "support/messages/DSIMessageManager.h"

namespace Tarni::SparkODBC
{
using Support::StringConverter;

namespace
{
const char* const PROGRAM = "tarni-spark-config: ";

std::string U8(tarni_wstring_view in_text)
{
    return StringConverter::ToUtf8(in_text);
}

std::string Dump(const nlohmann::ordered_json& in_json)
{
    return in_json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

bool TakesOneFile(tarni_wstring_view in_command)
{
    return in_command == u"export" || in_command == u"import" || in_command == u"diff";
}
}  // namespace

ConfigCommandLine::ConfigCommandLine(std::istream& io_in, std::ostream& io_out, std::ostream& io_err)
    : m_in(io_in), m_out(io_out), m_err(io_err)
{
}

const char* ConfigCommandLine::UsageText()
{
    return "Usage: tarni-spark-config [--ini PATH] [--dsn NAME [--system]] [--json] [--check] COMMAND [ARGUMENTS]\n"
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
           "  test [--verbose] [KEY=VALUE...]\n"
           "                        open a session on the server with the settings (and\n"
           "                        the given changes, which are not saved); prints the\n"
           "                        result, exit 0 when the session opened, 1 when not\n"
           "                        (or on Ctrl-C); --verbose adds each step with its\n"
           "                        time, --json prints one object with the steps\n"
           "  diff FILE             print what import FILE would change, key by key:\n"
           "                        + added, - removed, ~ changed (secrets by name only)\n"
           "\n"
           "set, unset, set-secret and import compare before they write: when nothing\n"
           "would change they write nothing and print 'unchanged', otherwise they save\n"
           "and print 'changed: KEY, KEY, ...'. Both exit 0.\n"
           "\n"
           "Secrets are never taken from the command line, and show and get print them\n"
           "as ****.\n"
           "\n"
           "Options:\n"
           "  --ini PATH            the INI file to use (Linux; default $SPARKINI, else\n"
           "                        ~/.sparkodbc.ini). On Windows the settings live in the\n"
           "                        registry under HKEY_LOCAL_MACHINE.\n"
           "  --json                print show, get, diff and the change reports as one\n"
           "                        JSON object (a secret as {\"protected\": true}); errors\n"
           "                        become a JSON object on standard error\n"
           "  --check               with set, unset, set-secret and import: check the\n"
           "                        values and report what would change, write nothing\n"
           "  --help                print this text\n"
           "\n"
           "Exit status: 0 success (changed or not), 1 error, absent key or refused\n"
           "value, 2 wrong command line.\n"
           "Errors are printed on standard error and nothing is written.\n";
}

int ConfigCommandLine::Usage(const std::string& in_problem)
{
    Err() << PROGRAM << in_problem << "\n"
          << "Try 'tarni-spark-config --help'.\n";
    return RESULT_USAGE;
}

std::string ConfigCommandLine::Describe(const Support::ErrorException& in_error) const
{
    return Support::DSIMessageManager::GetDisplayTextUtf8(in_error);
}

std::ostream& ConfigCommandLine::Err()
{
    return m_options.json ? static_cast<std::ostream&>(m_diagnostics) : m_err;
}

const ConfigCommandLine::Command* ConfigCommandLine::FindCommand(tarni_wstring_view in_name)
{
    static const Command COMMANDS[] = {
        {u"show", false, &ConfigCommandLine::Show},
        {u"get", false, &ConfigCommandLine::Get},
        {u"set", true, &ConfigCommandLine::Set},
        {u"unset", true, &ConfigCommandLine::Unset},
        {u"set-secret", true, &ConfigCommandLine::SetSecret},
        {u"export", false, &ConfigCommandLine::Export},
        {u"import", true, &ConfigCommandLine::Import},
        {u"diff", false, &ConfigCommandLine::Diff},
        {u"test", false, &ConfigCommandLine::Test},
    };
    for (const Command& command : COMMANDS)
    {
        if (in_name == command.name)
        {
            return &command;
        }
    }
    return nullptr;
}

int ConfigCommandLine::Run(const std::vector<tarni_wstring>& in_arguments)
{
    m_options = Options();
    m_diagnostics.str("");
    // Known first, so that even an error in the command line is JSON.
    m_options.json = std::find(in_arguments.begin(), in_arguments.end(), u"--json") != in_arguments.end();
    const int result = ParseAndRun(in_arguments);
    if (m_options.json)
    {
        WriteJsonDiagnostics(result);
    }
    return result;
}

void ConfigCommandLine::WriteJsonDiagnostics(int in_result)
{
    nlohmann::ordered_json errors = nlohmann::ordered_json::array();
    nlohmann::ordered_json warnings = nlohmann::ordered_json::array();
    std::istringstream lines(m_diagnostics.str());
    for (std::string line; std::getline(lines, line);)
    {
        if (line.rfind(PROGRAM, 0) == 0)
        {
            line.erase(0, std::char_traits<char>::length(PROGRAM));
        }
        const std::string warning = "warning: ";
        if (line.rfind(warning, 0) == 0)
        {
            warnings.push_back(line.substr(warning.size()));
        }
        else if (!line.empty())
        {
            errors.push_back(line);
        }
    }
    if (in_result == RESULT_OK && warnings.empty())
    {
        return;
    }
    nlohmann::ordered_json report;
    if (in_result != RESULT_OK)
    {
        report["error"] = errors.empty() ? std::string("failed") : errors.front().get<std::string>();
        report["exit"] = in_result;
        report["messages"] = errors;
    }
    report["warnings"] = warnings;
    m_err << Dump(report) << std::flush;
}

int ConfigCommandLine::ParseAndRun(const std::vector<tarni_wstring>& in_arguments)
{
    size_t index = 0;
    for (; index < in_arguments.size(); ++index)
    {
        const tarni_wstring& argument = in_arguments[index];
        if (argument == u"--help" || argument == u"-h")
        {
            return Emit(std::string(UsageText()) + "\n" + ConfigDsnCommands::UsageText()) ? RESULT_OK
                                                                                              : RESULT_FAILURE;
        }
        if (argument == u"--system")
        {
            m_options.systemDsn = true;
            continue;
        }
        if (argument == u"--dsn")
        {
            if (index + 1 >= in_arguments.size())
            {
                return Usage("--dsn needs a data source name");
            }
            m_options.dsnName = in_arguments[++index];
            continue;
        }
        if (argument == u"--json" || argument == u"--check")
        {
            (argument == u"--json" ? m_options.json : m_options.check) = true;
            continue;
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
            m_options.iniPath = in_arguments[++index];
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
    const tarni_wstring name = in_arguments[index];
    // Configuration management appends its options to the command: take
    // --json and --check wherever they stand.
    Operands operands;
    for (++index; index < in_arguments.size(); ++index)
    {
        const tarni_wstring& argument = in_arguments[index];
        if (argument == u"--json" || argument == u"--check")
        {
            (argument == u"--json" ? m_options.json : m_options.check) = true;
        }
        else
        {
            operands.push_back(argument);
        }
    }
    // Data sources: edited through the installer by their own commands.
    if ((name == u"dsn" || m_options.dsnName) && (m_options.json || m_options.check) &&
        !(name == u"test" && !m_options.check))
    {
        return Usage("--json and --check apply to the driver-wide settings, not to data sources");
    }
    if (name == u"dsn" && !m_options.dsnName)
    {
        return ConfigDsnCommands(m_in, m_out, m_err).RunDsnCommand(m_options.iniPath, m_options.systemDsn, operands);
    }
    if (m_options.dsnName && m_options.json)
    {
        operands.push_back(u"--json");  // test's own option
    }
    if (m_options.dsnName)
    {
        return ConfigDsnCommands(m_in, m_out, m_err)
            .RunOnDataSource(m_options.iniPath, *m_options.dsnName, m_options.systemDsn, name, operands);
    }
    if (m_options.systemDsn)
    {
        return Usage("--system applies to data sources: give --dsn NAME or use dsn list|add|remove");
    }
    const Command* command = FindCommand(name);
    if (command == nullptr)
    {
        return Usage("unknown command " + U8(name));
    }
    if (m_options.check && !command->writes)
    {
        return Usage("--check applies to set, unset, set-secret and import, not to " + U8(name));
    }
    if (m_options.json && name == u"export")
    {
        return Usage("export writes the key=value file format; --json does not apply to it");
    }
    if (TakesOneFile(name) && operands.size() != 1)
    {
        return Usage(U8(name) + " takes one FILE (- for standard " + (name == u"export" ? "output)" : "input)"));
    }
    return RunCommand(*command, operands);
}

std::unique_ptr<Platform::ISettingsStore> ConfigCommandLine::OpenStore() const
{
    return Platform::SettingsStoreFactory::OpenDriverStore(
        DriverSupport::DSProductHelper::GetDriverStoreLocation(m_options.iniPath));
}

int ConfigCommandLine::RunCommand(const Command& in_command, const Operands& in_operands)
{
    try
    {
        SOProductIdentity::Register();
        auto store = OpenStore();
        if (in_command.writes && !m_options.check)
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
            Err() << PROGRAM << "warning: " << Describe(error) << "\n";
        }
        return (this->*in_command.run)(config, in_operands);
    }
    catch (const Support::ErrorException& e)
    {
        Err() << PROGRAM << Describe(e) << "\n";
        return RESULT_FAILURE;
    }
}

bool ConfigCommandLine::Emit(const std::string& in_text)
{
    m_out << in_text;
    return ConfigSettingChecks::OutputWritten(m_out, Err());
}

int ConfigCommandLine::SaveAndReport(QDCConfiguration& io_config)
{
    const ConfigChangeReport report(io_config, m_options.check ? io_config.PlanSave() : io_config.Save());
    return Emit(m_options.json ? report.FormatJson() : report.FormatText()) ? RESULT_OK : RESULT_FAILURE;
}

int ConfigCommandLine::Show(QDCConfiguration& io_config, const Operands& in_operands)
{
    if (!in_operands.empty())
    {
        return Usage("show takes no arguments");
    }
    std::string text;
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
    for (const auto& [key, value] : io_config.GetMap())
    {
        if (!m_options.json)
        {
            text += U8(key) + "=" + Shown(io_config, key, value) + "\n";
        }
        else if (IsSecret(io_config, key, value))
        {
            json[U8(key)] = {{"protected", true}};
        }
        else
        {
            json[U8(key)] = U8(value);
        }
    }
    return Emit(m_options.json ? Dump(json) : text) ? RESULT_OK : RESULT_FAILURE;
}

int ConfigCommandLine::Get(QDCConfiguration& io_config, const Operands& in_operands)
{
    if (in_operands.size() != 1)
    {
        return Usage("get takes exactly one key");
    }
    const auto found = io_config.GetMap().find(in_operands[0]);
    if (found == io_config.GetMap().end())
    {
        Err() << PROGRAM << "no setting named " << U8(in_operands[0]) << "\n";
        return RESULT_FAILURE;
    }
    const auto& [key, value] = *found;
    std::string text;
    if (!m_options.json)
    {
        text = Shown(io_config, key, value) + "\n";
    }
    else
    {
        nlohmann::ordered_json json;
        if (IsSecret(io_config, key, value))
        {
            json[U8(key)] = {{"protected", true}};
        }
        else
        {
            json[U8(key)] = U8(value);
        }
        text = Dump(json);
    }
    return Emit(text) ? RESULT_OK : RESULT_FAILURE;
}

int ConfigCommandLine::Set(QDCConfiguration& io_config, const Operands& in_operands)
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
    if (!ConfigSettingChecks::CheckSettings(settings, Err()))
    {
        return RESULT_FAILURE;
    }
    for (const auto& [key, value] : settings)
    {
        io_config.SetSetting(key, value);
    }
    return SaveAndReport(io_config);
}

int ConfigCommandLine::Unset(QDCConfiguration& io_config, const Operands& in_operands)
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
    return SaveAndReport(io_config);
}

int ConfigCommandLine::Export(QDCConfiguration& io_config, const Operands& in_operands)
{
    ConfigTransferCommands(m_in, m_out).Export(io_config, in_operands[0]);
    return RESULT_OK;
}

int ConfigCommandLine::Import(QDCConfiguration& io_config, const Operands& in_operands)
{
    DriverSupport::DSConfigurationFile::Import(io_config, ConfigTransferCommands(m_in, m_out).Read(in_operands[0]));
    return SaveAndReport(io_config);
}

int ConfigCommandLine::Diff(QDCConfiguration& io_config, const Operands& in_operands)
{
    DriverSupport::DSConfigurationFile::Import(io_config, ConfigTransferCommands(m_in, m_out).Read(in_operands[0]));
    const ConfigChangeReport report(io_config, io_config.PlanSave());
    return Emit(m_options.json ? report.FormatDiffJson() : report.FormatDiffText()) ? RESULT_OK : RESULT_FAILURE;
}
}  // namespace Tarni::SparkODBC

namespace Tarni::SparkODBC
{
bool ConfigCommandLine::IsSecret(const QDCConfiguration& io_config, tarni_wstring_view in_key,
                                 tarni_wstring_view in_value) const
{
    // The refresh token is written by the driver after an OAuth sign-in, not
    // by this tool; it grants access as a password does, so it is never shown.
    return io_config.FindCredentialBySecretKey(in_key) != nullptr ||
           StringConverter::EqualsIgnoreCase(in_key, DriverSupport::Keys::Auth_RefreshToken) ||
           DriverSupport::DSEncryptionUtils::HasProtectedForm(in_value);
}

std::string ConfigCommandLine::Shown(const QDCConfiguration& io_config, tarni_wstring_view in_key,
                                     tarni_wstring_view in_value) const
{
    return IsSecret(io_config, in_key, in_value) ? "****" : U8(in_value);
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

int ConfigCommandLine::SetSecret(QDCConfiguration& io_config, const Operands& in_operands)
{
    tarni_wstring key;
    bool allUsers = false;
    if (const auto problem = ConfigSettingChecks::ParseSecretOperands(in_operands, key, allUsers))
    {
        return Usage(*problem);
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
        Err() << PROGRAM << "no secret on standard input\n";
        return RESULT_FAILURE;
    }
    const tarni_wstring secret = StringConverter::FromUtf8(line);
    std::fill(line.begin(), line.end(), '\0');
    credential->SetPwd(secret);
    credential->SetEncryptPwd(true);
    credential->SetDPAPIEncryptForAllUsers(allUsers);
    return SaveAndReport(io_config);
}

int ConfigCommandLine::Test(QDCConfiguration& io_config, const Operands& in_operands)
{
    Operands operands = in_operands;
    if (m_options.json)
    {
        operands.push_back(u"--json");
    }
    return ConfigTestCommand(m_out, Err(), ThriftExtension::TEConnectionTesterFactory::GetDefault())
        .Run(io_config, operands);
}
}  // namespace Tarni::SparkODBC
