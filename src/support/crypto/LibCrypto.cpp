#include "support/crypto/LibCrypto.h"

#include <mutex>

#include "platform/DynamicLibrary.h"
#include "platform/SystemLibraryNames.h"
#include "support/StringConverter.h"
#include "core/SupportException.h"

namespace Tarni::Support
{
namespace
{
std::mutex s_lock;
std::shared_ptr<const LibCrypto> s_instance;
tarni_wstring s_libraryName;  // empty: the platform's name
}  // namespace

std::shared_ptr<const LibCrypto> LibCrypto::Get()
{
    std::lock_guard<std::mutex> guard(s_lock);
    if (s_instance == nullptr)
    {
        s_instance = Load(s_libraryName.empty() ? Platform::SystemLibraryNames::CryptoLibrary() : s_libraryName);
    }
    return s_instance;
}

void LibCrypto::SetLibraryName(tarni_wstring_view in_libraryName)
{
    std::lock_guard<std::mutex> guard(s_lock);
    s_libraryName = tarni_wstring(in_libraryName);
    s_instance.reset();
}

tarni_wstring LibCrypto::GetLibraryName()
{
    std::lock_guard<std::mutex> guard(s_lock);
    return s_libraryName.empty() ? Platform::SystemLibraryNames::CryptoLibrary() : s_libraryName;
}

std::shared_ptr<const LibCrypto> LibCrypto::Load(tarni_wstring_view in_libraryName)
{
    tarni_wstring reason;
    std::unique_ptr<Platform::DynamicLibrary> library = Platform::DynamicLibrary::TryOpen(in_libraryName, &reason);
    if (library == nullptr)
    {
        throw SupportException(u"CryptoLibraryLoadErr", {tarni_wstring(in_libraryName), reason});
    }

    std::shared_ptr<LibCrypto> crypto(new LibCrypto());
    crypto->m_library = std::move(library);
    const Platform::DynamicLibrary& lib = *crypto->m_library;
    const tarni_wstring minimum = FormatVersion(MINIMUM_VERSION);

    // The version comes first: a 1.x library lacks some of the functions
    // below, and "too old" is the clearer message for it.
    crypto->OpenSSL_version_num = lib.FindFunction<decltype(OpenSSL_version_num)>("OpenSSL_version_num");
    if (crypto->OpenSSL_version_num == nullptr)
    {
        throw SupportException(u"CryptoLibraryVersionErr", {lib.GetName(), u"unknown", minimum});
    }
    crypto->m_version = crypto->OpenSSL_version_num();
    if (crypto->m_version < MINIMUM_VERSION)
    {
        throw SupportException(u"CryptoLibraryVersionErr", {lib.GetName(), FormatVersion(crypto->m_version), minimum});
    }

#define TARNI_LIBCRYPTO_FUNCTION(returnType, name, parameters)                                      \
    crypto->name = lib.FindFunction<decltype(crypto->name)>(#name);                                  \
    if (crypto->name == nullptr)                                                                     \
    {                                                                                                \
        throw SupportException(u"CryptoLibraryFunctionErr", {lib.GetName(), StringConverter::FromAscii(#name)}); \
    }
#include "support/crypto/LibCryptoFunctions.inc"
#undef TARNI_LIBCRYPTO_FUNCTION

    return crypto;
}

LibCrypto::~LibCrypto() = default;

const tarni_wstring& LibCrypto::GetName() const
{
    return m_library->GetName();
}

tarni_wstring LibCrypto::TakeErrorText() const
{
    std::string text;
    for (unsigned long error = ERR_get_error(); error != 0; error = ERR_get_error())
    {
        char buffer[256] = {};
        ERR_error_string_n(error, buffer, sizeof(buffer));
        text += (text.empty() ? "" : "; ");
        text += buffer;
    }
    if (text.empty() || !StringConverter::IsValidUtf8(text))
    {
        return u"no details";
    }
    return StringConverter::FromUtf8(text);
}

tarni_wstring LibCrypto::FormatVersion(unsigned long in_version)
{
    const unsigned long major = (in_version >> 28) & 0xF;
    const unsigned long minor = (in_version >> 20) & 0xFF;
    const unsigned long patch = major >= 3 ? (in_version >> 4) & 0xFF : (in_version >> 12) & 0xFF;
    return StringConverter::FromNumber(static_cast<unsigned long long>(major)) + u"." +
           StringConverter::FromNumber(static_cast<unsigned long long>(minor)) + u"." +
           StringConverter::FromNumber(static_cast<unsigned long long>(patch));
}
}  // namespace Tarni::Support
