#pragma once
// OpenSSL 3 libcrypto, loaded at run time ("libcrypto.so.3" on Linux,
// "libcrypto-3-x64.dll" on Windows). The program has no link-time dependency
// on OpenSSL: this loader opens the library once per process, checks that it
// is version 3 or later, and resolves every function listed in
// LibCryptoFunctions.inc. Callers use the members by their OpenSSL names:
//
//     const auto crypto = LibCrypto::Get();
//     LibCrypto::EVP_CIPHER_CTX* context = crypto->EVP_CIPHER_CTX_new();
//
// A missing library, an older one or one that lacks a listed function is one
// SupportException naming the library (keys "CryptoLibraryLoadErr",
// "CryptoLibraryVersionErr", "CryptoLibraryFunctionErr"); nothing is cached
// after a failure, so the next call tries again.
#include <cstddef>
#include <memory>

#include "core/TarniString.h"

namespace Tarni::Platform
{
class DynamicLibrary;
}

namespace Tarni::Support
{
class LibCrypto
{
public:
    // Opaque OpenSSL types; only pointers to them cross the interface.
    struct ENGINE;
    struct EVP_MD;
    struct EVP_CIPHER;
    struct EVP_CIPHER_CTX;
    struct EVP_PKEY;
    struct EVP_PKEY_CTX;
    struct EVP_MD_CTX;
    struct BIO;
    struct BIO_METHOD;

    // Constants of the OpenSSL 3 headers that callers pass to the functions.
    static constexpr int EVP_PKEY_HKDF = 1036;       // NID_hkdf
    static constexpr int OPENSSL_VERSION = 0;        // OpenSSL_version(): "OpenSSL 3.x.y  date"
    static constexpr int EVP_PKEY_RSA = 6;           // NID_rsaEncryption
    // BIO_ctrl commands and flags behind the header macros BIO_read_filename,
    // BIO_flush and BIO_get_mem_data.
    static constexpr int BIO_CTRL_INFO = 3;
    static constexpr int BIO_CTRL_FLUSH = 11;
    static constexpr int BIO_C_SET_FILENAME = 108;
    static constexpr long BIO_CLOSE = 0x01;
    static constexpr long BIO_FP_READ = 0x02;
    static constexpr int BIO_FLAGS_BASE64_NO_NL = 0x100;

    /// Lowest accepted OpenSSL_version_num(): 3.0.0.
    static constexpr unsigned long MINIMUM_VERSION = 0x30000000UL;

    /// The process-wide library, loaded on first use. Throws SupportException
    /// (see above) when it cannot be used.
    static std::shared_ptr<const LibCrypto> Get();

    /// Loads the named library on its own, outside the process-wide instance.
    static std::shared_ptr<const LibCrypto> Load(tarni_wstring_view in_libraryName);

    /// Changes the name the process-wide instance is loaded from and drops the
    /// loaded one (callers holding it keep theirs). Empty text restores the
    /// platform's name. Lets a test stand in for a machine without the library.
    static void SetLibraryName(tarni_wstring_view in_libraryName);

    /// The name the process-wide instance is (or will be) loaded from.
    static tarni_wstring GetLibraryName();

    ~LibCrypto();
    LibCrypto(const LibCrypto&) = delete;
    LibCrypto& operator=(const LibCrypto&) = delete;

    const tarni_wstring& GetName() const;
    unsigned long GetVersionNumber() const { return m_version; }

    /// Takes the entries of the library's error queue (of the calling thread)
    /// as one text, "error:...; error:...", or "no details" when it is empty.
    tarni_wstring TakeErrorText() const;

    /// Version number as "major.minor.patch" for either numbering scheme
    /// (0xMNN00PP0 from 3.0 on, 0xMNNFFPPS before).
    static tarni_wstring FormatVersion(unsigned long in_version);

#define TARNI_LIBCRYPTO_FUNCTION(returnType, name, parameters) returnType(*name) parameters = nullptr;
#include "support/crypto/LibCryptoFunctions.inc"
#undef TARNI_LIBCRYPTO_FUNCTION

private:
    LibCrypto() = default;

    std::unique_ptr<Platform::DynamicLibrary> m_library;
    unsigned long m_version = 0;
};
}  // namespace Tarni::Support
