#include "programs/config-cli/ConfigCommandLine.h"
#include "programs/config-cli/ConfigChangeReport.h"
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
#include "platform/DataSourceStore.h"
#include "platform/ProcessEnvironment.h"
#include "programs/config-cli/ConfigTestCommand.h"
#include "programs/config-cli/ConfigSettingChecks.h"
#include "product/QuillConfiguration.h"
#include "core/ErrorException.h"
#include "thrift/connectiontest/TEConnectionTesterFactory.h"
#include "support/StringConverter.h"
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
           "Shows and edits the driver-wide settings of the Tarni Spark ODBC Driver, or\n"
           "with --dsn NAME those of one of its data sources.\n"
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
           "                        time, --json prints one object with the steps (and\n"
           "                        on a failed test nothing on standard error)\n"
           "  diff FILE             print what import FILE would change, key by key:\n"
           "                        + added, - removed, ~ changed (secrets by name only)\n"
           "\n"
           "Data sources (through the ODBC installer; user data sources unless --system):\n"
           "  --dsn NAME [--system] COMMAND [ARGUMENTS]\n"
           "                        run any of the commands above on the data source NAME\n"
           "                        instead of the driver-wide settings; it stores its\n"
           "                        description, host and port and what differs from the\n"
           "                        driver-wide settings; unset returns a setting to those\n"
           "  dsn list [--system]   print each data source as NAME<TAB>DRIVER\n"
           "  dsn add [--system] NAME [KEY=VALUE...]\n"
           "                        create the data source NAME with the given settings\n"
           "  dsn remove [--system] NAME\n"
           "                        remove the data source NAME\n"
           "\n"
           "set, unset, set-secret, import and dsn add|remove compare before they write:\n"
           "when nothing would change they write nothing and print 'unchanged',\n"
           "otherwise they save and print 'changed: KEY, KEY, ...'. Both exit 0.\n"
           "\n"
           "Secrets are never taken from the command line, and show and get print them\n"
           "as ****.\n"
           "\n"
           "Options:\n"
           "  --ini PATH            the INI file to use (Linux; default $SPARKINI, else\n"
           "                        ~/.sparkodbc.ini). On Windows the settings live in the\n"
           "                        registry under HKEY_LOCAL_MACHINE.\n"
           "  --json                print show, get, diff, dsn list and the change reports\n"
           "                        as one JSON object (a secret as {\"protected\": true});\n"
           "                        errors become a JSON object on standard error\n"
           "  --check               with set, unset, set-secret, import and dsn add|remove:\n"
           "                        check the values and report what would change, write\n"
           "                        nothing\n"
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

bool ConfigCommandLine::Command::Writes() const
{
    return purpose == ConfigSettingsSession::Purpose::Update || purpose == ConfigSettingsSession::Purpose::Create;
}

const ConfigCommandLine::Command* ConfigCommandLine::FindCommand(tarni_wstring_view in_name)
{
    using Purpose = ConfigSettingsSession::Purpose;
    static const Command COMMANDS[] = {
        // Reading the driver-wide settings or a data source's.
        {u"show", Purpose::Read, &ConfigCommandLine::Show}, {u"get", Purpose::Read, &ConfigCommandLine::Get},
        {u"export", Purpose::Read, &ConfigCommandLine::Export}, {u"diff", Purpose::Read, &ConfigCommandLine::Diff},
        {u"test", Purpose::Read, &ConfigCommandLine::Test},
        // Writing them: each reports what changed, and --check only compares.
        {u"set", Purpose::Update, &ConfigCommandLine::Set}, {u"unset", Purpose::Update, &ConfigCommandLine::Unset},
        {u"set-secret", Purpose::Update, &ConfigCommandLine::SetSecret},
        {u"import", Purpose::Update, &ConfigCommandLine::Import},
        // The data sources themselves, as `dsn ACTION`.
        {u"dsn list", Purpose::ListDataSources, &ConfigCommandLine::ListDataSources},
        {u"dsn add", Purpose::Create, &ConfigCommandLine::AddDataSource},
        {u"dsn remove", Purpose::Update, &ConfigCommandLine::RemoveDataSource},
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
    // A test that ran and failed has said so in its outcome object; only a
    // real error (bad arguments, an unreadable store) adds one of its own.
    const bool failed = in_result != RESULT_OK && !(m_options.outcomeReported && errors.empty());
    if (!failed && warnings.empty())
    {
        return;
    }
    nlohmann::ordered_json report;
    if (failed)
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
            return Emit(UsageText()) ? RESULT_OK : RESULT_FAILURE;
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
    tarni_wstring name = in_arguments[index];
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
    const bool dataSourceAction = name == u"dsn";
    if (dataSourceAction)
    {
        if (const auto problem = TakeDataSourceAction(name, operands))
        {
            return Usage(*problem);
        }
    }
    else if (m_options.systemDsn && !m_options.dsnName)
    {
        return Usage("--system applies to data sources: give --dsn NAME or use dsn list|add|remove");
    }
    // "dsn add" and the like are reached through dsn only.
    const Command* command = dataSourceAction || name.find(u' ') == tarni_wstring::npos ? FindCommand(name) : nullptr;
    if (command == nullptr)
    {
        return Usage("unknown command " + U8(name) + (m_options.dsnName ? " for a data source" : ""));
    }
    if (m_options.check && !command->Writes())
    {
        return Usage("--check applies to set, unset, set-secret, import and dsn add|remove, not to " + U8(name));
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

std::optional<std::string> ConfigCommandLine::TakeDataSourceAction(tarni_wstring& io_name, Operands& io_operands)
{
    const std::string usage = "dsn takes list, add NAME [KEY=VALUE...] or remove NAME";
    if (m_options.dsnName)
    {
        return usage + ", without --dsn";
    }
    // --system may follow the action too.
    Operands operands;
    for (const tarni_wstring& operand : io_operands)
    {
        if (operand == u"--system")
        {
            m_options.systemDsn = true;
        }
        else
        {
            operands.push_back(operand);
        }
    }
    const tarni_wstring action = operands.empty() ? tarni_wstring() : operands[0];
    const bool fits = action == u"list"     ? operands.size() == 1
                      : action == u"remove" ? operands.size() == 2
                                            : action == u"add" && operands.size() >= 2;
    if (!fits)
    {
        return usage;
    }
    io_name = u"dsn " + action;
    if (action != u"list")
    {
        m_options.dsnName = operands[1];
    }
    io_operands.assign(operands.begin() + (action == u"list" ? 1 : 2), operands.end());
    return std::nullopt;
}

int ConfigCommandLine::RunCommand(const Command& in_command, const Operands& in_operands)
{
    try
    {
        // Under --check a writing command only reads.
        const auto purpose = m_options.check && in_command.purpose == ConfigSettingsSession::Purpose::Update
                                 ? ConfigSettingsSession::Purpose::Read
                                 : in_command.purpose;
        ConfigSettingsSession session(m_options.iniPath, m_options.dsnName, m_options.systemDsn, purpose);
        // The message files may be placed by ERRORMESSAGESPATH in the store:
        // the catalogue takes its folder now, while the store is open.
        Support::DSIMessageManager::GetDefault().GetSource().GetMessagesPath();
        if (purpose != ConfigSettingsSession::Purpose::ListDataSources)
        {
            for (const auto& error : session.GetConfiguration().GetSecretRecoveryErrors())
            {
                Err() << PROGRAM << "warning: " << Describe(error) << "\n";
            }
        }
        return (this->*in_command.run)(session, in_operands);
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

int ConfigCommandLine::SaveAndReport(ConfigSettingsSession& io_session)
{
    return Report(io_session, io_session.Save(m_options.check));
}

int ConfigCommandLine::Report(ConfigSettingsSession& io_session, std::vector<DriverSupport::DSStoreChange> in_changes)
{
    const ConfigChangeReport report(io_session.GetConfiguration(), std::move(in_changes));
    return Emit(m_options.json ? report.FormatJson() : report.FormatText()) ? RESULT_OK : RESULT_FAILURE;
}

int ConfigCommandLine::Show(ConfigSettingsSession& io_session, const Operands& in_operands)
{
    QuillConfiguration& config = io_session.GetConfiguration();
    if (!in_operands.empty())
    {
        return Usage("show takes no arguments");
    }
    std::string text;
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
    for (const auto& [key, value] : config.GetMap())
    {
        if (!m_options.json)
        {
            text += U8(key) + "=" + Shown(config, key, value) + "\n";
        }
        else if (IsSecret(config, key, value))
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

int ConfigCommandLine::Get(ConfigSettingsSession& io_session, const Operands& in_operands)
{
    QuillConfiguration& config = io_session.GetConfiguration();
    if (in_operands.size() != 1)
    {
        return Usage("get takes exactly one key");
    }
    const auto found = config.GetMap().find(in_operands[0]);
    if (found == config.GetMap().end())
    {
        Err() << PROGRAM << "no setting named " << U8(in_operands[0]) << "\n";
        return RESULT_FAILURE;
    }
    const auto& [key, value] = *found;
    std::string text;
    if (!m_options.json)
    {
        text = Shown(config, key, value) + "\n";
    }
    else
    {
        nlohmann::ordered_json json;
        if (IsSecret(config, key, value))
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

int ConfigCommandLine::Set(ConfigSettingsSession& io_session, const Operands& in_operands)
{
    const QuillConfiguration& config = io_session.GetConfiguration();
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
        if (config.FindCredentialBySecretKey(key) != nullptr)
        {
            return Usage(U8(key) + " is a secret: use 'set-secret " + U8(key) +
                         "', which reads it from standard input");
        }
        if (io_session.IsDataSource() && (StringConverter::EqualsIgnoreCase(key, DriverSupport::Keys::Driver) ||
                                          StringConverter::EqualsIgnoreCase(key, DriverSupport::Keys::DSN)))
        {
            return Usage(U8(key) + " is kept by the ODBC installer and cannot be set");
        }
        // The driver-wide settings never keep these: saying "unchanged"
        // would hide that the value went nowhere.
        if (!io_session.IsDataSource() && DriverSupport::DSDSNConfiguration::IsDataSourceOnlyKey(key))
        {
            return Usage(U8(key) + " belongs to a data source: use --dsn NAME set " + U8(key) +
                         "=..., or give it to test as KEY=VALUE");
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
        io_session.SetSetting(key, value);
    }
    return SaveAndReport(io_session);
}

int ConfigCommandLine::Unset(ConfigSettingsSession& io_session, const Operands& in_operands)
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
        io_session.UnsetSetting(key);
    }
    return SaveAndReport(io_session);
}

int ConfigCommandLine::Export(ConfigSettingsSession& io_session, const Operands& in_operands)
{
    ConfigTransferCommands(m_in, m_out).Export(io_session.GetConfiguration(), in_operands[0]);
    return RESULT_OK;
}

int ConfigCommandLine::Import(ConfigSettingsSession& io_session, const Operands& in_operands)
{
    QuillConfiguration& config = io_session.GetConfiguration();
    DriverSupport::DSConfigurationFile::Import(config, ConfigTransferCommands(m_in, m_out).Read(in_operands[0]));
    return SaveAndReport(io_session);
}

int ConfigCommandLine::Diff(ConfigSettingsSession& io_session, const Operands& in_operands)
{
    QuillConfiguration& config = io_session.GetConfiguration();
    DriverSupport::DSConfigurationFile::Import(config, ConfigTransferCommands(m_in, m_out).Read(in_operands[0]));
    const ConfigChangeReport report(config, io_session.Save(true));
    return Emit(m_options.json ? report.FormatDiffJson() : report.FormatDiffText()) ? RESULT_OK : RESULT_FAILURE;
}
}  // namespace Tarni::SparkODBC

namespace Tarni::SparkODBC
{
bool ConfigCommandLine::IsSecret(const DriverSupport::DSDSNConfiguration& in_config, tarni_wstring_view in_key,
                                 tarni_wstring_view in_value) const
{
    // The refresh token is written by the driver after an OAuth sign-in, not
    // by this tool; it grants access as a password does, so it is never shown.
    return in_config.FindCredentialBySecretKey(in_key) != nullptr ||
           StringConverter::EqualsIgnoreCase(in_key, DriverSupport::Keys::Auth_RefreshToken) ||
           DriverSupport::DSEncryptionUtils::HasProtectedForm(in_value);
}

std::string ConfigCommandLine::Shown(const DriverSupport::DSDSNConfiguration& in_config, tarni_wstring_view in_key,
                                     tarni_wstring_view in_value) const
{
    return IsSecret(in_config, in_key, in_value) ? "****" : U8(in_value);
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

int ConfigCommandLine::SetSecret(ConfigSettingsSession& io_session, const Operands& in_operands)
{
    QuillConfiguration& config = io_session.GetConfiguration();
    tarni_wstring key;
    // A system data source is read by every user of the machine: its
    // secrets are protected for all of them unless the caller says otherwise.
    bool allUsers = io_session.IsSystemDataSource();
    if (const auto problem = ConfigSettingChecks::ParseSecretOperands(in_operands, key, allUsers))
    {
        return Usage(*problem);
    }
    if (key.empty())
    {
        return Usage("set-secret needs the KEY of a secret");
    }
    DriverSupport::DSUidPwdConfiguration* credential = config.FindCredentialBySecretKey(key);
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
    return SaveAndReport(io_session);
}

int ConfigCommandLine::Test(ConfigSettingsSession& io_session, const Operands& in_operands)
{
    Operands operands = in_operands;
    if (m_options.json)
    {
        operands.push_back(u"--json");
    }
    const int result = ConfigTestCommand(m_out, Err(), ThriftExtension::TEConnectionTesterFactory::GetDefault())
                           .Run(io_session.GetConfiguration(), operands);
    m_options.outcomeReported = result == RESULT_FAILURE;
    return result;
}

int ConfigCommandLine::ListDataSources(ConfigSettingsSession&, const Operands&)
{
    std::string text;
    nlohmann::ordered_json json;
    json["dataSources"] = nlohmann::ordered_json::array();
    for (const Platform::StoredValue& source : Platform::DataSourceStore::List())
    {
        text += U8(source.name) + "\t" + U8(source.value) + "\n";
        json["dataSources"].push_back(
            {{"name", U8(source.name)}, {"driver", U8(source.value)}, {"system", m_options.systemDsn}});
    }
    return Emit(m_options.json ? Dump(json) : text) ? RESULT_OK : RESULT_FAILURE;
}

int ConfigCommandLine::AddDataSource(ConfigSettingsSession& io_session, const Operands& in_operands)
{
    return in_operands.empty() ? SaveAndReport(io_session) : Set(io_session, in_operands);
}

int ConfigCommandLine::RemoveDataSource(ConfigSettingsSession& io_session, const Operands&)
{
    return Report(io_session, io_session.RemoveDataSource(m_options.check));
}
}  // namespace Tarni::SparkODBC
