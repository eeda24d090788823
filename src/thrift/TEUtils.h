#pragma once
// Stateless helpers of the Thrift connection layer: query rewriting, the
// Kerberos host, URL decoding, token expiry, RSA signing and the translation
// of transport failures into diagnostics. Text is UTF-8. Every helper logs
// its entry at TRACE to the logger it is given (which may be null).
#include <cstdint>
#include <string>
#include <string_view>

#include "driversupport/DSUidPwdKeySet.h"
#include "core/ILogger.h"
#include "core/TarniString.h"

namespace apache::thrift::transport
{
class TTransportException;
}

namespace Tarni::ThriftExtension
{
class TEAutoEVPPKey;

class TEUtils
{
public:
    /// Removes the name N where it qualifies an object ("N.t", "`N`.t",
    /// "\"N\".t", "[N].t") after white space or an opening parenthesis and,
    /// with in_removeBetweenDots, between two dots. Text inside single-quoted
    /// string literals is left alone. See TECatalogRemovalPatterns for the
    /// exact patterns. Throws TEException "TERegexError" for a name that
    /// makes a pattern invalid.
    static void RemoveCatalogOrTempSchemaFromQueryString(const std::string& in_name, std::string& io_query,
                                                         bool in_removeBetweenDots, Support::ILogger* in_log);

    /// The same removal for one stretch of text outside string literals.
    static void RemoveCatalogOrTempSchemaFromQueryStringInternal(const std::string& in_name, std::string& io_text,
                                                                 bool in_removeBetweenDots, Support::ILogger* in_log);

    /// Replaces every match of the pattern (Perl syntax) by the replacement,
    /// taken literally. Empty text is left untouched. Throws TEException
    /// "TERegexError" for an invalid pattern.
    static void RegexReplace(const std::string& in_pattern, const std::string& in_replacement, std::string& io_text,
                             Support::ILogger* in_log);

    /// The configured host FQDN, or the connection's host when it is exactly
    /// "_HOST". Without a logger the configured value is returned as it is.
    static std::string DeriveKerberosHostFQDN(const std::string& in_host, const std::string& in_hostFQDN,
                                              Support::ILogger* in_log);

    /// Decodes "+" and "%XX" (upper-case hexadecimal digits). Bad escapes are
    /// copied unchanged and logged at ERROR ("***" stands for the text with
    /// in_maskInLog). The result ends at its first zero byte. Never throws.
    static std::string UrlDecode(const std::string& in_url, Support::ILogger* in_log, bool in_maskInLog);

    /// The "exp" member (seconds) of a token's payload, its second
    /// dot-separated part, base64-encoded JSON. Throws ErrorException
    /// "DSInvalidBase64EncodedStringLenError" / "DSInvalidBase64EncodedStringCharError"
    /// for a payload that is not base64, TEException "JSONParseError" when
    /// it is not JSON or has no unsigned "exp".
    static std::uint64_t GetTokenExpiry(const std::string& in_token, Support::ILogger* in_log);

    /// Signs the data with RSA over its SHA-256 digest (PKCS #1 v1.5) and
    /// returns the signature in base64 on one line. Throws TEException
    /// "TERSASignatureError" with libcrypto's error text when a step fails.
    static std::string SignWithRSA(const TEAutoEVPPKey& in_key, std::string_view in_data, Support::ILogger* in_log);

    /// Throws the connection diagnostic for the text of a transport failure:
    /// "TESASLClientToNOSASLServer" / "TENOSASLClientToSASLServer" when an SSL
    /// read failed (by in_isSasl), "TESSLCxnToNonSSLServerError" when the SSL
    /// handshake failed. Returns for any other text.
    static void TranslateTransportErrorText(std::string_view in_text, bool in_isSasl);

    /// Rethrows the exception a transport error wraps; otherwise translates
    /// its text as above, and returns when the caller must handle it as is.
    static void TranslateTransportException(const apache::thrift::transport::TTransportException& in_error,
                                            bool in_isSasl);

    /// The stored-secret entry of the private key file's password: the plain
    /// connection key "keyFilePassword" and its protected form
    /// "EncryptedKeyFilePassword", as the credential model stores secrets.
    static DriverSupport::DSUidPwdKeySet GetKeyFilePasswordKey();
};
}  // namespace Tarni::ThriftExtension
