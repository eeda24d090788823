#include "thrift/TEUtils.h"

#include <cmath>

#include <boost/regex.hpp>
#include <nlohmann/json.hpp>

#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSBase64.h"
#include "support/StringConverter.h"
#include "thrift/TEAutoEVPPKey.h"
#include "thrift/TEAutoRSASignCtx.h"
#include "thrift/TECatalogRemovalPatternCache.h"
#include "thrift/TEException.h"

namespace Tarni::ThriftExtension
{
using Support::ILogger;

namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEUtils";

/// The value of an upper-case hexadecimal digit, or -1.
int HexValue(char in_c)
{
    if (in_c >= '0' && in_c <= '9')
    {
        return in_c - '0';
    }
    if (in_c >= 'A' && in_c <= 'F')
    {
        return in_c - 'A' + 10;
    }
    return -1;
}

[[noreturn]] void ThrowJsonError(ILogger* in_log, const std::string& in_detail)
{
    if (in_log != nullptr)
    {
        in_log->LogError(NS, CLS, "GetTokenExpiry", "%s", in_detail.c_str());
    }
    throw TEException::WithText(u"JSONParseError", in_detail);
}
}  // namespace

void TEUtils::RemoveCatalogOrTempSchemaFromQueryString(const std::string& in_name, std::string& io_query,
                                                       bool in_removeBetweenDots, ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "RemoveCatalogOrTempSchemaFromQueryString");
    if (io_query.empty())
    {
        return;
    }
    const std::shared_ptr<const TECatalogRemovalPatterns> patterns =
        TECatalogRemovalPatternCache::GetInstance().Get(in_name);
    if (!patterns->MayMatch(io_query))
    {
        return;
    }
    // Pieces between single quotes alternate: outside a literal, inside, outside ...
    std::string result;
    result.reserve(io_query.size());
    std::string piece;
    bool isOutside = true;
    size_t start = 0;
    while (true)
    {
        const size_t quote = io_query.find('\'', start);
        const size_t end = quote == std::string::npos ? io_query.size() : quote;
        if (isOutside)
        {
            piece.assign(io_query, start, end - start);
            if (patterns->MayMatch(piece))
            {
                patterns->Apply(piece, in_removeBetweenDots);
            }
            result += piece;
        }
        else
        {
            result.append(io_query, start, end - start);
        }
        if (quote == std::string::npos)
        {
            break;
        }
        result += '\'';
        isOutside = !isOutside;
        start = quote + 1;
    }
    io_query.swap(result);
}

void TEUtils::RemoveCatalogOrTempSchemaFromQueryStringInternal(const std::string& in_name, std::string& io_text,
                                                               bool in_removeBetweenDots, ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "RemoveCatalogOrTempSchemaFromQueryStringInternal");
    const std::shared_ptr<const TECatalogRemovalPatterns> patterns =
        TECatalogRemovalPatternCache::GetInstance().Get(in_name);
    if (patterns->MayMatch(io_text))
    {
        patterns->Apply(io_text, in_removeBetweenDots);
    }
}

void TEUtils::RegexReplace(const std::string& in_pattern, const std::string& in_replacement, std::string& io_text,
                           ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "RegexReplace");
    if (io_text.empty())
    {
        return;
    }
    boost::regex pattern;
    try
    {
        pattern.assign(in_pattern, boost::regex::perl);
    }
    catch (const boost::regex_error& e)
    {
        const std::string text = "The regular expression " + in_pattern + " is not valid: " + e.what();
        if (in_log != nullptr)
        {
            in_log->LogError(NS, CLS, "RegexReplace", "%s", text.c_str());
        }
        throw TEException::WithText(u"TERegexError", text);
    }
    io_text = boost::regex_replace(io_text, pattern, in_replacement, boost::match_default | boost::regex_constants::format_literal);
}

std::string TEUtils::DeriveKerberosHostFQDN(const std::string& in_host, const std::string& in_hostFQDN,
                                            ILogger* in_log)
{
    if (in_log == nullptr)
    {
        return in_hostFQDN;
    }
    in_log->LogFunctionEntrance(NS, CLS, "DeriveKerberosHostFQDN");
    if (in_hostFQDN == "_HOST")
    {
        in_log->LogInfo(NS, CLS, "DeriveKerberosHostFQDN",
                        "Special value _HOST specified for Host FQDN configuration. Using %s for Host FQDN instead.",
                        in_host.c_str());
        return in_host;
    }
    return in_hostFQDN;
}

std::string TEUtils::UrlDecode(const std::string& in_url, ILogger* in_log, bool in_maskInLog)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "UrlDecode");
    const bool logErrors = in_log != nullptr && in_log->IsEnabled(Support::LOG_ERROR);
    if (in_url.empty())
    {
        if (logErrors)
        {
            in_log->LogError(NS, CLS, "UrlDecode", "The url is empty");
        }
        return {};
    }
    const char* const shown = in_maskInLog ? "***" : in_url.c_str();
    std::string decoded;
    decoded.reserve(in_url.size());
    for (size_t i = 0; i < in_url.size(); ++i)
    {
        const char c = in_url[i];
        if (c == '+')
        {
            decoded += ' ';
            continue;
        }
        if (c != '%')
        {
            decoded += c;
            continue;
        }
        if (i + 2 >= in_url.size())
        {
            if (logErrors)
            {
                in_log->LogError(NS, CLS, "UrlDecode",
                                 "Invalid %% found at position %d in url: %s. '%%' must be followed by two "
                                 "hexadecimal characters (0-9, A-F). It will not be decoded.",
                                 static_cast<int>(i), shown);
            }
            decoded += c;
            continue;
        }
        const int high = HexValue(in_url[i + 1]);
        const int low = HexValue(in_url[i + 2]);
        if (high < 0 || low < 0)
        {
            if (logErrors)
            {
                const std::string sequence = in_url.substr(i, 3);
                in_log->LogError(NS, CLS, "UrlDecode",
                                 "Invalid characters %s found at position %d in url: %s. '%%' must be followed by two "
                                 "hexadecimal characters (0-9, A-F). It will not be decoded.",
                                 sequence.c_str(), static_cast<int>(i), shown);
            }
            // The two characters are then read as ordinary characters.
            decoded += c;
            continue;
        }
        decoded += static_cast<char>(high * 16 + low);
        i += 2;
    }
    // The decoded text is used as a C string: it ends at an encoded zero byte.
    const size_t zero = decoded.find('\0');
    if (zero != std::string::npos)
    {
        decoded.resize(zero);
    }
    return decoded;
}

std::uint64_t TEUtils::GetTokenExpiry(const std::string& in_token, ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "GetTokenExpiry");
    // header.payload.signature: the payload is the second part.
    std::string payload;
    if (const size_t first = in_token.find('.'); first != std::string::npos)
    {
        const size_t second = in_token.find('.', first + 1);
        payload = in_token.substr(first + 1, second == std::string::npos ? std::string::npos : second - first - 1);
    }
    const std::string json = DriverSupport::DSBase64::Decode(payload);

    nlohmann::json document;
    try
    {
        document = nlohmann::json::parse(json);
    }
    catch (const nlohmann::json::exception& e)
    {
        ThrowJsonError(in_log, e.what());
    }
    if (!document.is_object())
    {
        ThrowJsonError(in_log, "The payload of the token is not a JSON object.");
    }
    const auto exp = document.find("exp");
    if (exp == document.end())
    {
        ThrowJsonError(in_log, "The payload of the token has no \"exp\" member.");
    }
    if (exp->is_number_unsigned())
    {
        return exp->get<std::uint64_t>();
    }
    // A NumericDate may carry a fraction of a second.
    if (exp->is_number_float())
    {
        const double seconds = exp->get<double>();
        if (std::isfinite(seconds) && seconds >= 0 && seconds < 18446744073709551616.0)
        {
            return static_cast<std::uint64_t>(seconds);
        }
    }
    ThrowJsonError(in_log, "The \"exp\" member of the token's payload is not an unsigned number: " + exp->dump() + ".");
}

std::string TEUtils::SignWithRSA(const TEAutoEVPPKey& in_key, std::string_view in_data, ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "SignWithRSA");
    using Support::LibCrypto;
    const LibCrypto& c = *in_key.GetCrypto();
    const auto fail = [&](const char* in_step) {
        const std::string text =
            std::string(in_step) + " failed: " + Support::StringConverter::ToUtf8(c.TakeErrorText());
        if (in_log != nullptr)
        {
            in_log->LogError(NS, CLS, "SignWithRSA", "%s", text.c_str());
        }
        return TEException::WithText(u"TERSASignatureError", text);
    };
    c.ERR_clear_error();

    const TEAutoRSASignCtx context(in_key.GetCrypto());
    if (context.Get() == nullptr)
    {
        throw fail("EVP_MD_CTX_new");
    }
    if (c.EVP_DigestSignInit(context.Get(), nullptr, c.EVP_sha256(), nullptr, in_key.Get()) != 1)
    {
        throw fail("EVP_DigestSignInit");
    }
    if (c.EVP_DigestSignUpdate(context.Get(), in_data.data(), in_data.size()) != 1)
    {
        throw fail("EVP_DigestSignUpdate");
    }
    // First call: the length of the signature; second call: the signature.
    size_t length = 0;
    if (c.EVP_DigestSignFinal(context.Get(), nullptr, &length) != 1)
    {
        throw fail("EVP_DigestSignFinal");
    }
    std::string signature(length, '\0');
    if (c.EVP_DigestSignFinal(context.Get(), reinterpret_cast<unsigned char*>(signature.data()), &length) != 1)
    {
        throw fail("EVP_DigestSignFinal");
    }
    signature.resize(length);

    // Base64 without line breaks: a base64 filter over a memory buffer.
    std::unique_ptr<LibCrypto::BIO, void (*)(LibCrypto::BIO*)> chain(nullptr, c.BIO_free_all);
    LibCrypto::BIO* base64 = c.BIO_new(c.BIO_f_base64());
    LibCrypto::BIO* memory = c.BIO_new(c.BIO_s_mem());
    if (base64 == nullptr || memory == nullptr)
    {
        if (base64 != nullptr) c.BIO_free(base64);
        if (memory != nullptr) c.BIO_free(memory);
        throw fail("BIO_new");
    }
    chain.reset(c.BIO_push(base64, memory));
    c.BIO_set_flags(base64, LibCrypto::BIO_FLAGS_BASE64_NO_NL);
    if (c.BIO_write(base64, signature.data(), static_cast<int>(signature.size())) != static_cast<int>(signature.size()) ||
        c.BIO_ctrl(base64, LibCrypto::BIO_CTRL_FLUSH, 0, nullptr) != 1)
    {
        throw fail("BIO_write");
    }
    char* encoded = nullptr;
    const long encodedLength = c.BIO_ctrl(memory, LibCrypto::BIO_CTRL_INFO, 0, &encoded);
    if (encodedLength <= 0 || encoded == nullptr)
    {
        throw fail("BIO_get_mem_data");
    }
    return std::string(encoded, static_cast<size_t>(encodedLength));
}

void TEUtils::TranslateTransportErrorText(std::string_view in_text, bool in_isSasl)
{
    const tarni_wstring parameter = TEException::ToParameter(std::string(in_text));
    if (in_text.find("SSL_read:") != std::string_view::npos)
    {
        throw TEException(in_isSasl ? u"TESASLClientToNOSASLServer" : u"TENOSASLClientToSASLServer", {parameter});
    }
    if (in_text.find("SSL_connect: errno =") != std::string_view::npos ||
        in_text.find("SSL_connect: error code:") != std::string_view::npos ||
        in_text == "SSL_connect: Resource temporarily unavailable")
    {
        throw TEException(u"TESSLCxnToNonSSLServerError", {parameter});
    }
}

DriverSupport::DSUidPwdKeySet TEUtils::GetKeyFilePasswordKey()
{
    return DriverSupport::DSUidPwdKeySet{u"", tarni_wstring(DriverSupport::Keys::keyFilePassword),
                                         tarni_wstring(DriverSupport::Keys::EncryptedKeyFilePassword), u""};
}
}  // namespace Tarni::ThriftExtension
