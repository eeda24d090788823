#include "driversupport/DSUidPwdConfiguration.h"

#include "core/ErrorException.h"


#include "driversupport/DSEncryptionUtils.h"
#include "platform/OdbcInstaller.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSUidPwdConfiguration";

std::string U8(tarni_wstring_view in_text)
{
    return StringConverter::ToUtf8(in_text);
}
}  // namespace

bool DSUidPwdConfiguration::s_encryptionOptionsEnabled = false;
bool DSUidPwdConfiguration::s_dropPlainPasswordOnSave = false;

DSUidPwdConfiguration::DSUidPwdConfiguration(ConfigurationMap& io_map, Support::ILogger* in_logger,
                                             unsigned in_configType, DSUidPwdKeySet in_keys)
    : m_map(io_map), m_logger(in_logger), m_configType(in_configType), m_keys(std::move(in_keys))
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "DSUidPwdConfiguration");
    if (s_encryptionOptionsEnabled)
    {
        // Only a user DSN is saved encrypted without asking: a system-wide
        // context leaves the choice of scope to the user. A missing
        // installer library counts as not being in user-DSN mode.
        const std::optional<unsigned short> mode = IsDsnSetup() ? Platform::OdbcInstaller::GetConfigMode()
                                                                : std::nullopt;
        m_encryptPwd = mode.has_value() && *mode == Platform::OdbcInstaller::CONFIG_MODE_USER_DSN;
    }
    if (m_configType == 0)
    {
        m_parentDlgName = u"Connection dialog";
    }
    else if (IsDsnSetup())
    {
        m_parentDlgName = u"DSN Setup dialog";
    }
}

void DSUidPwdConfiguration::GetDefaultDriverProperties(ConfigurationMap&) const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "GetDefaultDriverProperties");
    // A credential has no default: an absent user name or password is "none".
}

void DSUidPwdConfiguration::InitializeAfterLoad()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "InitializeAfterLoad");
    const tarni_wstring plainKey = m_keys.Pwd();
    const tarni_wstring encryptedKey = m_keys.EncryptedPwd();
    if (m_map.Contains(plainKey))
    {
        if (m_logger != nullptr)
        {
            m_logger->LogInfo(NS, CLS, "InitializeAfterLoad",
                              "The %s attribute exists. Since %s connection attribute takes precedence over %s the "
                              "%s attribute will not be read.",
                              U8(plainKey).c_str(), U8(plainKey).c_str(), U8(encryptedKey).c_str(),
                              U8(encryptedKey).c_str());
        }
        return;
    }
    m_recoveryError.reset();
    const auto encrypted = m_map.find(encryptedKey);
    if (encrypted == m_map.end())
    {
        if (m_logger != nullptr)
        {
            m_logger->LogInfo(NS, CLS, "InitializeAfterLoad", "The %s attribute does not exist.",
                              U8(encryptedKey).c_str());
        }
        return;
    }
    // A value that cannot be recovered here (protected on another machine or
    // for another user, damaged, or libcrypto missing) is kept exactly as
    // stored: the next save writes it back unchanged, and the user can
    // replace it with a new secret. Refusing the whole load instead would
    // lock the user out of every setting.
    DSRecoveredSecret recovered;
    try
    {
        recovered = DSEncryptionUtils::Decrypt(encrypted->second, encryptedKey, m_logger);
    }
    catch (const Support::ErrorException& e)
    {
        if (m_logger != nullptr)
        {
            m_logger->LogWarning(NS, CLS, "InitializeAfterLoad",
                                 "The %s attribute cannot be recovered and is kept as stored: %s",
                                 U8(encryptedKey).c_str(), e.what());
        }
        m_recoveryError = e;
        m_encryptPwd = true;
        return;
    }
    m_encryptPwd = true;
    if (!encrypted->second.empty())
    {
        // An empty stored value carries no scope; the current choice stays.
        m_encryptForAllUsers = recovered.scope == Platform::SecretScope::AllUsers;
    }
    SetPwd(recovered.value);
    m_map.Remove(encryptedKey);
}

void DSUidPwdConfiguration::FinalizeBeforeSave()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "FinalizeBeforeSave");
    if (!IsDsnSetup())
    {
        return;
    }
    const tarni_wstring plainKey = m_keys.Pwd();
    const tarni_wstring encryptedKey = m_keys.EncryptedPwd();
    if (!m_encryptPwd)
    {
        m_map.Remove(encryptedKey);
    }
    else if (m_recoveryError.has_value() && !m_map.Contains(plainKey))
    {
        if (m_logger != nullptr)
        {
            m_logger->LogWarning(NS, CLS, "FinalizeBeforeSave",
                                 "The %s attribute could not be recovered and is saved as it was stored.",
                                 U8(encryptedKey).c_str());
        }
    }
    else if (const auto plain = m_map.find(plainKey); plain != m_map.end())
    {
        // Protect before touching the map, so a failure leaves it as it was.
        const tarni_wstring stored = DSEncryptionUtils::Encrypt(plain->second, m_encryptForAllUsers, encryptedKey,
                                                                m_logger);
        m_map.SetValue(encryptedKey, stored);
        m_map.Remove(plainKey);
    }
    if (s_dropPlainPasswordOnSave)
    {
        m_map.Remove(plainKey);
    }
}

tarni_wstring DSUidPwdConfiguration::GetPwdNotSavedText() const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "GetPwdNotSavedText");
    const tarni_wstring plainKey = m_keys.Pwd();
    return u"The value of the " + plainKey +
           u" configuration is not being saved. To save an encrypted version of the " + plainKey +
           u" configuration value, you must select one of the encryption options." +
           u" You can access the encryption options by going to the " + m_parentDlgName + u" and selecting the " +
           m_passwordOptionsButtonName + u".";
}

void DSUidPwdConfiguration::ShowPwdNotSavedInfoMsg(DSMessageBoxHost& io_host) const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "ShowPwdNotSavedInfoMsg");
    if (m_encryptPwd || !IsDsnSetup())
    {
        return;
    }
    if (m_pwdOptional && m_map.GetValue(m_keys.Pwd()).empty())
    {
        return;
    }
    io_host.ShowMessageBox(GetPwdNotSavedText(), u"Credentials Not Saved", DSMessageBoxHost::STYLE_OK_EXCLAMATION);
}

tarni_wstring DSUidPwdConfiguration::GetUid() const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "GetUid");
    return m_map.GetValue(m_keys.Uid());
}

void DSUidPwdConfiguration::SetUid(tarni_wstring_view in_uid)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetUid");
    m_map.SetValue(m_keys.Uid(), in_uid);
}

tarni_wstring DSUidPwdConfiguration::GetPwd() const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "GetPwd");
    if (m_map.Contains(m_keys.Pwd()))
    {
        return m_map.GetValue(m_keys.Pwd());
    }
    if (m_keys.fallback != nullptr)
    {
        return m_map.GetValue(m_keys.fallback->Pwd());
    }
    return {};
}

void DSUidPwdConfiguration::SetPwd(tarni_wstring_view in_pwd)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetPwd");
    if (m_recoveryError.has_value())
    {
        if (in_pwd.empty())
        {
            // An untouched, empty field over a value that could not be
            // recovered: nothing was typed, so the stored value stays.
            return;
        }
        if (m_logger != nullptr)
        {
            m_logger->LogInfo(NS, CLS, "SetPwd", "A new value replaces the %s attribute that could not be recovered.",
                              U8(m_keys.EncryptedPwd()).c_str());
        }
        m_recoveryError.reset();
    }
    m_map.SetValue(m_keys.Pwd(), in_pwd);
}

bool DSUidPwdConfiguration::IsEncryptPwd() const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "IsEncryptPwd");
    return m_encryptPwd;
}

void DSUidPwdConfiguration::SetEncryptPwd(bool in_encrypt)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetEncryptPwd");
    m_encryptPwd = in_encrypt;
}

bool DSUidPwdConfiguration::IsDPAPIEncryptForAllUsers() const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "IsDPAPIEncryptForAllUsers");
    return m_encryptForAllUsers;
}

void DSUidPwdConfiguration::SetDPAPIEncryptForAllUsers(bool in_allUsers)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetDPAPIEncryptForAllUsers");
    m_encryptForAllUsers = in_allUsers;
}

void DSUidPwdConfiguration::SetPwdOptional()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetPwdOptional");
    m_pwdOptional = true;
}

bool DSUidPwdConfiguration::IsPwdOptional() const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "IsPwdOptional");
    return m_pwdOptional;
}

const std::optional<Support::ErrorException>& DSUidPwdConfiguration::GetRecoveryError() const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "GetRecoveryError");
    return m_recoveryError;
}

unsigned DSUidPwdConfiguration::GetConfigType() const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "GetConfigType");
    return m_configType;
}

const tarni_wstring& DSUidPwdConfiguration::GetParentDlgName() const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "GetParentDlgName");
    return m_parentDlgName;
}

void DSUidPwdConfiguration::SetParentDlgName(tarni_wstring_view in_name)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetParentDlgName");
    m_parentDlgName = tarni_wstring(in_name);
}

const tarni_wstring& DSUidPwdConfiguration::GetPasswordOptionsButtonName() const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "GetPasswordOptionsButtonName");
    return m_passwordOptionsButtonName;
}

void DSUidPwdConfiguration::SetPasswordOptionsButtonName(tarni_wstring_view in_name)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetPasswordOptionsButtonName");
    m_passwordOptionsButtonName = tarni_wstring(in_name);
}

void DSUidPwdConfiguration::SetEncryptionOptionsEnabled(bool in_enabled)
{
    s_encryptionOptionsEnabled = in_enabled;
}

bool DSUidPwdConfiguration::IsEncryptionOptionsEnabled()
{
    return s_encryptionOptionsEnabled;
}

void DSUidPwdConfiguration::SetDropPlainPasswordOnSave(bool in_drop)
{
    s_dropPlainPasswordOnSave = in_drop;
}

bool DSUidPwdConfiguration::IsDropPlainPasswordOnSave()
{
    return s_dropPlainPasswordOnSave;
}
}  // namespace Tarni::DriverSupport
