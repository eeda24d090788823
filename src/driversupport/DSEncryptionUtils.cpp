#include "driversupport/DSEncryptionUtils.h"

#include <cassert>
#include <memory>
#include <mutex>

#include "core/DSIException.h"
#include "core/DSITypeUtilities.h"
#include "core/ErrorException.h"
#include "core/ILogger.h"
#include "support/crypto/SecretCipherSealer.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using Platform::SecretMethod;
using Platform::SecretProtector;
using Platform::SecretScope;
using Support::ErrorException;
using Support::StringConverter;

namespace
{
constexpr const char* NS = "Tarni::DriverSupport";
constexpr const char* CLS = "DSEncryptionUtils";

struct LeadingText
{
    const char16_t* text;
    SecretMethod method;
    SecretScope scope;
};

constexpr LeadingText LEADING_TEXTS[] = {
    {u"DPAPI_USER:", SecretMethod::DataProtectionApi, SecretScope::CurrentUser},
    {u"DPAPI_MACHINE:", SecretMethod::DataProtectionApi, SecretScope::AllUsers},
    {u"AES256_USER:", SecretMethod::Aes256Ctr, SecretScope::CurrentUser},
    {u"AES256_MACHINE:", SecretMethod::Aes256Ctr, SecretScope::AllUsers},
};

std::mutex s_lock;
std::optional<Platform::SecretKeyLocations> s_locations;
std::shared_ptr<SecretProtector> s_protector;

std::shared_ptr<SecretProtector> GetProtector()
{
    std::lock_guard<std::mutex> guard(s_lock);
    if (s_protector == nullptr)
    {
        s_protector = SecretProtector::Create(s_locations.value_or(Platform::SecretKeyLocations::Default()),
                                              Support::SecretCipherSealer::Instance());
    }
    return s_protector;
}

[[noreturn]] void ThrowDecryptError(const tarni_wstring& in_reason, tarni_wstring_view in_keyName,
                                    Support::ILogger* in_log)
{
    const ErrorException error(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSDecryptError",
                               {in_reason, tarni_wstring(in_keyName)});
    if (in_log != nullptr) in_log->LogError(NS, CLS, "Decrypt", error);
    throw error;
}

std::string ToAscii(tarni_wstring_view in_text)
{
    return StringConverter::ToUtf8(in_text);
}
}  // namespace

tarni_wstring DSEncryptionUtils::GetLeadingText(SecretMethod in_method, SecretScope in_scope)
{
    for (const LeadingText& entry : LEADING_TEXTS)
    {
        if (entry.method == in_method && entry.scope == in_scope) return entry.text;
    }
    return {};
}

bool DSEncryptionUtils::HasProtectedForm(tarni_wstring_view in_text)
{
    for (const LeadingText& entry : LEADING_TEXTS)
    {
        if (in_text.starts_with(entry.text)) return true;
    }
    return false;
}

tarni_wstring DSEncryptionUtils::Encrypt(tarni_wstring_view in_value, bool in_allUsers, tarni_wstring_view in_keyName,
                                         Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "Encrypt");
    if (in_value.empty())
    {
        return {};
    }
    const std::shared_ptr<SecretProtector> protector = GetProtector();
    const SecretScope scope = in_allUsers ? SecretScope::AllUsers : SecretScope::CurrentUser;
    const tarni_wstring leading = GetLeadingText(protector->GetMethod(), scope);
    std::string plain = StringConverter::ToUtf8(in_value);
    std::string cipher;
    try
    {
        cipher = protector->Protect(plain, scope, ToAscii(leading));
    }
    catch (const ErrorException& e)
    {
        std::fill(plain.begin(), plain.end(), '\0');
        if (e.GetMessageKey() == u"DSEncryptError" && e.GetParameters().size() == 1)
        {
            const ErrorException named(e.GetState(), e.GetComponentId(), e.GetMessageKey(),
                                       {e.GetParameters()[0], tarni_wstring(in_keyName)}, e.GetNativeErrorCode());
            if (in_log != nullptr) in_log->LogError(NS, CLS, "Encrypt", named);
            throw named;
        }
        if (in_log != nullptr) in_log->LogError(NS, CLS, "Encrypt", e);
        throw;
    }
    std::fill(plain.begin(), plain.end(), '\0');
    return leading + DSI::DSITypeUtilities::BinaryToHexString(cipher);
}

DSRecoveredSecret DSEncryptionUtils::Decrypt(tarni_wstring_view in_protected, tarni_wstring_view in_keyName,
                                             Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "Decrypt");
    if (in_protected.empty())
    {
        return {};
    }
    const LeadingText* found = nullptr;
    for (const LeadingText& entry : LEADING_TEXTS)
    {
        if (in_protected.starts_with(entry.text)) found = &entry;
    }
    if (found == nullptr)
    {
        ThrowDecryptError(u"the value does not begin with a known protection method", in_keyName, in_log);
    }
    const std::shared_ptr<SecretProtector> protector = GetProtector();
    if (found->method != protector->GetMethod())
    {
        ThrowDecryptError(u"the value was protected on another platform (" +
                              tarni_wstring(found->text).substr(0, tarni_wstring_view(found->text).find(u'_')) +
                              u")",
                          in_keyName, in_log);
    }

    std::string cipher;
    try
    {
        cipher = DSI::DSITypeUtilities::HexStringToBinary(in_protected.substr(tarni_wstring_view(found->text).size()));
    }
    catch (const DSI::DSIException&)
    {
        ThrowDecryptError(u"the protected body is not upper-case hexadecimal text of even length", in_keyName, in_log);
    }

    std::optional<std::string> plain;
    try
    {
        plain = protector->Unprotect(cipher, found->scope, ToAscii(found->text));
    }
    catch (const ErrorException& e)
    {
        if (e.GetMessageKey() == u"DSDecryptError" && e.GetParameters().size() == 1)
        {
            ThrowDecryptError(e.GetParameters()[0], in_keyName, in_log);
        }
        if (in_log != nullptr) in_log->LogError(NS, CLS, "Decrypt", e);
        throw;
    }
    if (!plain.has_value())
    {
        ThrowDecryptError(u"the value was changed or cut short, or it was protected by another user or on another "
                          u"machine",
                          in_keyName, in_log);
    }
    if (!StringConverter::IsValidUtf8(*plain))
    {
        std::fill(plain->begin(), plain->end(), '\0');
        ThrowDecryptError(u"the recovered value is not text", in_keyName, in_log);
    }
    DSRecoveredSecret result{StringConverter::FromUtf8(*plain), found->scope};
    std::fill(plain->begin(), plain->end(), '\0');
    return result;
}

tarni_wstring DSEncryptionUtils::DPAPIEncrypt(const char16_t* in_value, bool in_allUsers)
{
    assert(in_value != nullptr && "in_value");
    const std::shared_ptr<SecretProtector> protector = GetProtector();
    if (protector->GetMethod() != SecretMethod::DataProtectionApi)
    {
        throw ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSEncryptError",
                             {u"the Windows data protection API is not available on this platform", u"DPAPI_"});
    }
    // UTF-16 little-endian bytes of the text and its terminating zero.
    const tarni_wstring_view text(in_value);
    std::string bytes;
    bytes.reserve((text.size() + 1) * 2);
    for (size_t i = 0; i <= text.size(); ++i)
    {
        const char16_t unit = i < text.size() ? text[i] : u'\0';
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    const SecretScope scope = in_allUsers ? SecretScope::AllUsers : SecretScope::CurrentUser;
    const std::string cipher = protector->Protect(bytes, scope, {});
    std::fill(bytes.begin(), bytes.end(), '\0');
    return DSI::DSITypeUtilities::BinaryToHexString(cipher);
}

void DSEncryptionUtils::SetKeyLocations(const Platform::SecretKeyLocations& in_locations)
{
    std::lock_guard<std::mutex> guard(s_lock);
    s_locations = in_locations;
    s_protector.reset();
}

void DSEncryptionUtils::ResetKeyLocations()
{
    std::lock_guard<std::mutex> guard(s_lock);
    s_locations.reset();
    s_protector.reset();
}
}  // namespace Tarni::DriverSupport
