#pragma once
#include <optional>

// The credential model: which keys hold a user name and password, whether the
// password is saved (only ever in protected form) and in which scope.
#include "driversupport/DSConfigurationComponent.h"
#include "driversupport/DSMessageBoxHost.h"
#include "driversupport/DSUidPwdKeySet.h"
#include "core/ErrorException.h"
#include "core/ILogger.h"

namespace Tarni::DriverSupport
{
class DSUidPwdConfiguration : public DSConfigurationComponent
{
public:
    /// Configuration types: 0 connection dialog, 1 and 2 DSN setup (user or
    /// system context, including the driver-wide configuration); any other
    /// value has no persistence handling.
    /// While the encryption options are enabled (process-wide switch), a
    /// DSN-setup credential is saved by default only when the ODBC installer
    /// reports user-DSN mode; a credential of any other type is not.
    DSUidPwdConfiguration(ConfigurationMap& io_map, Support::ILogger* in_logger, unsigned in_configType,
                          DSUidPwdKeySet in_keys);

    void GetDefaultDriverProperties(ConfigurationMap& io_defaults) const override;

    /// Reconciles the loaded map: a plain password wins over a protected one
    /// (INFO record); a protected one alone is recovered into the plain key
    /// with its scope and leaves the map. A value that cannot be recovered
    /// throws "DSDecryptError" and changes nothing.
    void InitializeAfterLoad() override;

    /// Rewrites the map for saving (types 1 and 2 only): the plain password
    /// becomes its protected form in the chosen scope, or with encryption off
    /// the protected form goes; with the drop-plain switch on the plain key
    /// always goes.
    void FinalizeBeforeSave() override;

    /// "Credentials Not Saved" when the password will be dropped on save.
    virtual void ShowPwdNotSavedInfoMsg(DSMessageBoxHost& io_host) const;

    /// The text of the "Credentials Not Saved" box.
    tarni_wstring GetPwdNotSavedText() const;

    tarni_wstring GetUid() const;
    void SetUid(tarni_wstring_view in_uid);
    /// The plain password; when its key is absent, the fallback key set's
    /// plain password (if one is linked); else empty.
    tarni_wstring GetPwd() const;
    /// Sets the plain password. While the stored protected value could not be
    /// recovered, an empty password means "unchanged": the protected value is
    /// kept exactly as stored. A non-empty one replaces it.
    void SetPwd(tarni_wstring_view in_pwd);

    bool IsEncryptPwd() const;
    void SetEncryptPwd(bool in_encrypt);
    bool IsDPAPIEncryptForAllUsers() const;
    void SetDPAPIEncryptForAllUsers(bool in_allUsers);
    void SetPwdOptional();
    bool IsPwdOptional() const;

    /// The error of the last load when the protected value could not be
    /// recovered (the value is then kept as stored until a new secret is
    /// set); nothing otherwise.
    const std::optional<Support::ErrorException>& GetRecoveryError() const;
    unsigned GetConfigType() const;
    const DSUidPwdKeySet& GetKeySet() const { return m_keys; }
    Support::ILogger* GetLog() const { return m_logger; }

    const tarni_wstring& GetParentDlgName() const;
    void SetParentDlgName(tarni_wstring_view in_name);
    const tarni_wstring& GetPasswordOptionsButtonName() const;
    void SetPasswordOptionsButtonName(tarni_wstring_view in_name);

    /// Process-wide switches, set once at start-up.
    static void SetEncryptionOptionsEnabled(bool in_enabled);
    static bool IsEncryptionOptionsEnabled();
    static void SetDropPlainPasswordOnSave(bool in_drop);
    static bool IsDropPlainPasswordOnSave();

protected:
    bool IsDsnSetup() const { return m_configType == 1 || m_configType == 2; }

    ConfigurationMap& m_map;
    Support::ILogger* m_logger;
    unsigned m_configType;
    DSUidPwdKeySet m_keys;
    tarni_wstring m_parentDlgName;
    tarni_wstring m_passwordOptionsButtonName = u"Password Options button";
    bool m_encryptPwd = true;
    bool m_encryptForAllUsers = false;
    bool m_pwdOptional = false;
    std::optional<Support::ErrorException> m_recoveryError;

    static bool s_encryptionOptionsEnabled;
    static bool s_dropPlainPasswordOnSave;
};
}  // namespace Tarni::DriverSupport
