#pragma once
// The credential model: which keys hold a user name and password, whether the
// password is saved (only ever in protected form) and in which scope.
#include "driversupport/DSConfigurationComponent.h"
#include "driversupport/DSUidPwdKeySet.h"
#include "support/ILogger.h"

namespace Tarni::DriverSupport
{
class DSUidPwdConfiguration : public DSConfigurationComponent
{
public:
    /// Configuration types: 0 connection dialog, 1 and 2 DSN setup (user or
    /// system context, including the driver-wide configuration).
    DSUidPwdConfiguration(ConfigurationMap& io_map, Support::ILogger* in_logger, unsigned in_configType,
                          DSUidPwdKeySet in_keys);

    void GetDefaultDriverProperties(ConfigurationMap& io_defaults) const override;
    void InitializeAfterLoad() override;
    void FinalizeBeforeSave() override;

    tarni_wstring GetUid() const;
    void SetUid(tarni_wstring_view in_uid);
    tarni_wstring GetPwd() const;
    void SetPwd(tarni_wstring_view in_pwd);

    bool IsEncryptPwd() const { return m_encryptPwd; }
    void SetEncryptPwd(bool in_encrypt) { m_encryptPwd = in_encrypt; }
    bool IsDPAPIEncryptForAllUsers() const { return m_encryptForAllUsers; }
    void SetDPAPIEncryptForAllUsers(bool in_allUsers) { m_encryptForAllUsers = in_allUsers; }
    void SetPwdOptional() { m_pwdOptional = true; }
    bool IsPwdOptional() const { return m_pwdOptional; }
    unsigned GetConfigType() const { return m_configType; }
    const DSUidPwdKeySet& GetKeySet() const { return m_keys; }
    Support::ILogger* GetLog() const { return m_logger; }

    /// Process-wide switches, set once at start-up.
    static void SetEncryptionOptionsEnabled(bool in_enabled);
    static void SetDropPlainPasswordOnSave(bool in_drop);
    static bool IsDropPlainPasswordOnSave();

protected:
    ConfigurationMap& m_map;
    Support::ILogger* m_logger;
    unsigned m_configType;
    DSUidPwdKeySet m_keys;
    bool m_encryptPwd = true;
    bool m_encryptForAllUsers = false;
    bool m_pwdOptional = false;

    static bool s_encryptionOptionsEnabled;
    static bool s_dropPlainPasswordOnSave;
};
}  // namespace Tarni::DriverSupport
