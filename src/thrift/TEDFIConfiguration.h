#pragma once
// The DFI options of a connection: the OCI configuration file and profile
// the driver signs its requests with, the password of the profile's private
// key file (a credential saved only in protected form, under
// "EncryptedKeyFilePassword") and whether the driver may prompt although the
// application asked for no prompt.
#include "driversupport/DSUidPwdConfiguration.h"

namespace Tarni::ThriftExtension
{
class TEDFIConfiguration : public DriverSupport::DSUidPwdConfiguration
{
public:
    /// Over the owner's map; in_configType as for every credential.
    TEDFIConfiguration(DriverSupport::ConfigurationMap& io_map, Support::ILogger* in_logger, unsigned in_configType);

    tarni_wstring GetOCIConfigFile() const;
    void SetOCIConfigFile(tarni_wstring_view in_path);
    tarni_wstring GetOCIProfile() const;
    void SetOCIProfile(tarni_wstring_view in_profile);
    /// The plain key file password ("keyFilePassword"), held in the map only
    /// until the save protects it.
    tarni_wstring GetKeyFilePassword() const { return GetPwd(); }
    void SetKeyFilePassword(tarni_wstring_view in_password) { SetPwd(in_password); }
    /// True when "OCIIgnoreDriverNoPrompt" is "1".
    bool GetIgnoreSQLDriverNoPrompt() const;
    void SetIgnoreSQLDriverNoPrompt(bool in_ignore);

    /// An OCI configuration file must be an existing file; empty means the
    /// driver's default. Throws "TEDFIConfigFileMissingErr" naming the path.
    static void CheckConfigFile(tarni_wstring_view in_path);
    /// Whether the path names an existing regular file (or a link to one).
    static bool IsExistingFile(tarni_wstring_view in_path);
};
}  // namespace Tarni::ThriftExtension
