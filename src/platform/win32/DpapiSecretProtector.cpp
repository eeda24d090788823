#include "platform/win32/DpapiSecretProtector.h"

#include <windows.h>
#include <wincrypt.h>

#include "platform/SystemError.h"
#include "core/ErrorException.h"

namespace Tarni::Platform
{
namespace
{
[[noreturn]] void ThrowDpapiError(const char16_t* in_key, int in_error)
{
    throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, in_key,
                                  {SystemError::Text(in_error)}, in_error);
}

/// Copies the system's output buffer and releases it with LocalFree.
std::string TakeBlob(DATA_BLOB& io_blob)
{
    std::string bytes(reinterpret_cast<const char*>(io_blob.pbData), io_blob.cbData);
    SecureZeroMemory(io_blob.pbData, io_blob.cbData);
    LocalFree(io_blob.pbData);
    io_blob.pbData = nullptr;
    return bytes;
}
}  // namespace

std::string DpapiSecretProtector::Protect(std::string_view in_plain, SecretScope in_scope, std::string_view)
{
    DATA_BLOB input = {static_cast<DWORD>(in_plain.size()),
                       reinterpret_cast<BYTE*>(const_cast<char*>(in_plain.data()))};
    DATA_BLOB output = {};
    // No description, no additional entropy, no prompt; the machine's key
    // for the all-users scope.
    const DWORD flags = in_scope == SecretScope::AllUsers ? CRYPTPROTECT_LOCAL_MACHINE : 0;
    if (!CryptProtectData(&input, nullptr, nullptr, nullptr, nullptr, flags, &output))
    {
        ThrowDpapiError(u"DSEncryptError", SystemError::LastErrorCode());
    }
    return TakeBlob(output);
}

std::optional<std::string> DpapiSecretProtector::Unprotect(std::string_view in_protected, SecretScope,
                                                           std::string_view)
{
    // The blob itself records whether the user's or the machine's key
    // protected it; the scope of the leading text is only reported back.
    DATA_BLOB input = {static_cast<DWORD>(in_protected.size()),
                       reinterpret_cast<BYTE*>(const_cast<char*>(in_protected.data()))};
    DATA_BLOB output = {};
    if (!CryptUnprotectData(&input, nullptr, nullptr, nullptr, nullptr, 0, &output))
    {
        ThrowDpapiError(u"DSDecryptError", SystemError::LastErrorCode());
    }
    return TakeBlob(output);
}
}  // namespace Tarni::Platform
