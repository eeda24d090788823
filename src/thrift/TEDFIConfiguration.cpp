#include "thrift/TEDFIConfiguration.h"

#include <filesystem>
#include <system_error>

#include "core/ComponentId.h"
#include "core/ErrorException.h"
#include "driversupport/ConfigurationKeys.h"
#include "thrift/TEUtils.h"

namespace Tarni::ThriftExtension
{
namespace Keys = DriverSupport::Keys;

namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEDFIConfiguration";
}  // namespace

TEDFIConfiguration::TEDFIConfiguration(DriverSupport::ConfigurationMap& io_map, Support::ILogger* in_logger,
                                       unsigned in_configType)
    : DSUidPwdConfiguration(io_map, in_logger, in_configType, TEUtils::GetKeyFilePasswordKey())
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "TEDFIConfiguration");
    // Named after the dialog in the "Credentials Not Saved" text.
    SetParentDlgName(u"DFI Options");
    // A key file need not have a password.
    SetPwdOptional();
}

tarni_wstring TEDFIConfiguration::GetOCIConfigFile() const
{
    return m_map.GetValue(Keys::OCIConfigFile);
}

void TEDFIConfiguration::SetOCIConfigFile(tarni_wstring_view in_path)
{
    m_map.SetValue(Keys::OCIConfigFile, in_path);
}

tarni_wstring TEDFIConfiguration::GetOCIProfile() const
{
    return m_map.GetValue(Keys::OCIProfile);
}

void TEDFIConfiguration::SetOCIProfile(tarni_wstring_view in_profile)
{
    m_map.SetValue(Keys::OCIProfile, in_profile);
}

bool TEDFIConfiguration::GetIgnoreSQLDriverNoPrompt() const
{
    return m_map.GetValue(Keys::OCIIgnoreDriverNoPrompt) == u"1";
}

void TEDFIConfiguration::SetIgnoreSQLDriverNoPrompt(bool in_ignore)
{
    m_map.SetValue(Keys::OCIIgnoreDriverNoPrompt, in_ignore ? u"1" : u"0");
}

bool TEDFIConfiguration::IsExistingFile(tarni_wstring_view in_path)
{
    if (in_path.empty())
    {
        return false;
    }
    std::error_code error;
    // A UTF-16 source converts to the platform's own encoding of file names.
    return std::filesystem::is_regular_file(std::filesystem::path{std::u16string(in_path)}, error);
}

void TEDFIConfiguration::CheckConfigFile(tarni_wstring_view in_path)
{
    if (!in_path.empty() && !IsExistingFile(in_path))
    {
        throw Support::ErrorException(Support::DiagState::GeneralError, Support::TE_ERROR,
                                      u"TEDFIConfigFileMissingErr", {tarni_wstring(in_path)});
    }
}
}  // namespace Tarni::ThriftExtension
