#include "programs/config-cli/ConfigSettingChecks.h"

#include <cerrno>
#include <cstring>
#include <ostream>

#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSDSNConfiguration.h"
#include "driversupport/DSKeyDescription.h"
#include "product/SOKeyCatalogue.h"
#include "core/ErrorException.h"
#include "support/StringConverter.h"
#include "support/messages/DSIMessageManager.h"

namespace Tarni::SparkODBC
{
using Support::StringConverter;

namespace
{
const char* const PROGRAM = "tarni-spark-config: ";
// Megabytes from which the stored byte count (megabytes << 20, 32 bits) wraps.
constexpr unsigned long long LOG_FILE_SIZE_WRAP = 4096;

std::string U8(tarni_wstring_view in_text)
{
    return StringConverter::ToUtf8(in_text);
}
}  // namespace

bool ConfigSettingChecks::CheckSettings(const std::vector<Setting>& in_settings, std::ostream& io_err)
{
    bool accepted = true;
    std::vector<tarni_wstring> unknown;
    for (const auto& [key, value] : in_settings)
    {
        try
        {
            SOKeyCatalogue::Check(key, value);
        }
        catch (const Support::ErrorException& e)
        {
            io_err << PROGRAM << Support::DSIMessageManager::GetDisplayTextUtf8(e) << "\n";
            accepted = false;
            continue;
        }
        if (SOKeyCatalogue::Find(key) == nullptr && !SOKeyCatalogue::IsPrefixedKey(key))
        {
            unknown.push_back(key);
        }
        const auto megabytes = DriverSupport::DSKeyDescription::ParseUnsigned(value);
        if (StringConverter::EqualsIgnoreCase(key, DriverSupport::Keys::LogFileSize) && megabytes &&
            *megabytes >= LOG_FILE_SIZE_WRAP)
        {
            // The store keeps bytes in an unsigned 32-bit number.
            const tarni_wstring stored = DriverSupport::DSDSNConfiguration::LogFileSizeToStored(value);
            io_err << PROGRAM << "warning: LogFileSize=" << U8(value) << " MB does not fit the stored byte count "
                   << "(an unsigned 32-bit number): it is stored as " << U8(stored) << " bytes, which reads back as "
                   << U8(DriverSupport::DSDSNConfiguration::LogFileSizeFromStored(stored)) << " MB\n";
        }
    }
    if (accepted && !unknown.empty())
    {
        io_err << PROGRAM << "warning: stored as given, not checked: the configuration model does not know ";
        for (size_t i = 0; i < unknown.size(); ++i)
        {
            io_err << (i == 0 ? "" : ", ") << U8(unknown[i]);
        }
        io_err << "\n";
    }
    if (!accepted)
    {
        io_err << PROGRAM << "nothing was written\n";
    }
    return accepted;
}

std::optional<std::string> ConfigSettingChecks::ProblemWithUnsetName(tarni_wstring_view in_key)
{
    if (in_key.empty())
    {
        return "unset needs setting names, got an empty name";
    }
    if (in_key.front() == u'[')
    {
        return "unset takes setting names, not a section: " + U8(in_key);
    }
    if (in_key.find(u'=') != tarni_wstring_view::npos)
    {
        return "unset takes setting names without a value: " + U8(in_key);
    }
    if (in_key.find_first_of(u"\r\n") != tarni_wstring_view::npos)
    {
        return "a setting name cannot contain a line break";
    }
    return std::nullopt;
}

bool ConfigSettingChecks::OutputWritten(std::ostream& io_out, std::ostream& io_err)
{
    errno = 0;
    io_out.flush();
    if (io_out)
    {
        return true;
    }
    const int error = errno;
    io_err << PROGRAM << "cannot write to standard output" << (error != 0 ? std::string(": ") + std::strerror(error) : "")
           << "\n";
    return false;
}
std::optional<std::string> ConfigSettingChecks::ParseSecretOperands(const std::vector<tarni_wstring>& in_operands,
                                                                    tarni_wstring& out_key, bool& io_allUsers)
{
    out_key.clear();
    for (size_t i = 0; i < in_operands.size(); ++i)
    {
        if (in_operands[i] == u"--scope")
        {
            const tarni_wstring scope = i + 1 < in_operands.size() ? in_operands[++i] : tarni_wstring();
            if (scope != u"user" && scope != u"machine")
            {
                return std::string("--scope takes user or machine");
            }
            io_allUsers = scope == u"machine";
        }
        else if (out_key.empty() && !in_operands[i].empty() && in_operands[i][0] != u'-')
        {
            out_key = in_operands[i];
        }
        else
        {
            return std::string("set-secret takes one KEY and --scope user|machine; the secret itself comes from "
                               "standard input");
        }
    }
    return std::nullopt;
}
}  // namespace Tarni::SparkODBC
