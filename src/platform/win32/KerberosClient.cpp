#include "platform/KerberosClient.h"

#define SECURITY_WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#include <windows.h>
#include <security.h>
#include <sspi.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <utility>

namespace Tarni::Platform
{
namespace
{
std::wstring Wide(const std::string& in_utf8)
{
    if (in_utf8.empty())
    {
        return {};
    }
    const int length = MultiByteToWideChar(CP_UTF8, 0, in_utf8.data(), static_cast<int>(in_utf8.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, in_utf8.data(), static_cast<int>(in_utf8.size()), wide.data(), length);
    return wide;
}

std::string Utf8(const wchar_t* in_wide)
{
    if (in_wide == nullptr || *in_wide == L'\0')
    {
        return {};
    }
    const int length = WideCharToMultiByte(CP_UTF8, 0, in_wide, -1, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, in_wide, -1, text.data(), length, nullptr, nullptr);
    text.resize(static_cast<std::size_t>(length > 0 ? length - 1 : 0));
    return text;
}

const char* StatusName(SECURITY_STATUS in_status)
{
    switch (in_status)
    {
        case SEC_E_INVALID_TOKEN: return "SEC_E_INVALID_TOKEN: the token given to the provider is not valid";
        case SEC_E_INTERNAL_ERROR: return "SEC_E_INTERNAL_ERROR: the Kerberos provider failed";
        case SEC_E_MESSAGE_ALTERED: return "SEC_E_MESSAGE_ALTERED: the message's checksum does not match";
        case SEC_E_OUT_OF_SEQUENCE: return "SEC_E_OUT_OF_SEQUENCE: the message is out of sequence";
        case SEC_E_BUFFER_TOO_SMALL: return "SEC_E_BUFFER_TOO_SMALL: a buffer is too small";
        case SEC_E_UNSUPPORTED_FUNCTION: return "SEC_E_UNSUPPORTED_FUNCTION: the provider does not support this";
        case SEC_E_QOP_NOT_SUPPORTED: return "SEC_E_QOP_NOT_SUPPORTED: the protection asked for is not supported";
        case SEC_E_LOGON_DENIED: return "SEC_E_LOGON_DENIED: the logon was denied";
        default: return "";
    }
}

// The system's text of a security status (or its name), with its number.
std::string StatusText(SECURITY_STATUS in_status)
{
    wchar_t* buffer = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
        static_cast<DWORD>(in_status), 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    std::string text = length > 0 ? Utf8(buffer) : std::string();
    if (buffer != nullptr)
    {
        LocalFree(buffer);
    }
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' ' || text.back() == '.'))
    {
        text.pop_back();
    }
    char code[16];
    std::snprintf(code, sizeof code, "0x%08lX", static_cast<unsigned long>(in_status));
    if (text.empty())
    {
        // Wine has no texts for these statuses; their names still say what
        // went wrong.
        text = StatusName(in_status);
    }
    return text.empty() ? std::string("security status ") + code : text + " (" + code + ")";
}

KerberosClient::Failure Classify(SECURITY_STATUS in_status)
{
    switch (in_status)
    {
        case SEC_E_NO_CREDENTIALS:
        case SEC_E_NO_KERB_KEY:
            return KerberosClient::Failure::NoTicket;
        case SEC_E_CONTEXT_EXPIRED:
        case SEC_E_KDC_CERT_EXPIRED:
            return KerberosClient::Failure::TicketExpired;
        case SEC_E_TARGET_UNKNOWN:
        case SEC_E_WRONG_PRINCIPAL:
            return KerberosClient::Failure::UnknownServicePrincipal;
        case SEC_E_TIME_SKEW:
            return KerberosClient::Failure::ClockSkew;
        case SEC_E_NO_AUTHENTICATING_AUTHORITY:
        case SEC_E_KDC_UNABLE_TO_REFER:
            return KerberosClient::Failure::RealmUnreachable;
        default:
            return KerberosClient::Failure::Other;
    }
}

// Wine's Kerberos provider sits on the host's MIT libraries; it lays out
// protected messages as data followed by token and has no stream buffers.
bool RunningOnWine()
{
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    return ntdll != nullptr && GetProcAddress(ntdll, "wine_get_version") != nullptr;
}

constexpr std::size_t NOT_MEASURABLE = static_cast<std::size_t>(-1);

// The length of the message inside a wrap token without confidentiality in
// the form of RFC 4121 (token id 05 04, then flags, a filler byte, EC, RRC
// and the sequence number): the 16-byte header and the EC bytes of checksum
// are the protection, the rest is the message. NOT_MEASURABLE for an
// encrypted token or an older form.
std::size_t WrappedMessageLength(const KerberosClient::Bytes& in_token)
{
    constexpr std::size_t HEADER = 16;
    constexpr std::uint8_t SEALED = 0x02;
    if (in_token.size() < HEADER || in_token[0] != 0x05 || in_token[1] != 0x04 || (in_token[2] & SEALED) != 0)
    {
        return NOT_MEASURABLE;
    }
    const std::size_t checksum = (static_cast<std::size_t>(in_token[4]) << 8) | in_token[5];
    return HEADER + checksum <= in_token.size() ? in_token.size() - HEADER - checksum : NOT_MEASURABLE;
}
}  // namespace

struct KerberosClient::Context
{
    CredHandle credential{};
    bool haveCredential = false;
    CtxtHandle context{};
    bool haveContext = false;
    bool established = false;
    unsigned long maxToken = 0;
    std::string clientPrincipal;
    std::wstring package;

    ~Context()
    {
        if (haveContext)
        {
            DeleteSecurityContext(&context);
        }
        if (haveCredential)
        {
            FreeCredentialsHandle(&credential);
        }
    }
};

KerberosClient::KerberosClient(Mechanism in_mechanism, std::string in_principal, bool in_delegate)
    : m_mechanism(in_mechanism), m_principal(std::move(in_principal)), m_delegate(in_delegate),
      m_context(std::make_unique<Context>())
{
    // "Negotiate" wraps Kerberos in SPNEGO for HTTP; SASL wants Kerberos
    // tokens themselves.
    m_context->package = m_mechanism == Mechanism::Spnego ? L"Negotiate" : L"Kerberos";
}

KerberosClient::~KerberosClient() = default;

std::string KerberosClient::GetClientPrincipal() const
{
    return m_context->clientPrincipal;
}

bool KerberosClient::IsEstablished() const
{
    return m_context->established;
}

bool KerberosClient::Step(const Bytes& in_token, Bytes& out_token)
{
    out_token.clear();
    Context& c = *m_context;
    if (!c.haveCredential)
    {
        PSecPkgInfoW info = nullptr;
        SECURITY_STATUS status = QuerySecurityPackageInfoW(c.package.data(), &info);
        if (status != SEC_E_OK)
        {
            SetFailure(Failure::Other, StatusText(status));
            return false;
        }
        c.maxToken = info->cbMaxToken;
        FreeContextBuffer(info);
        TimeStamp expiry{};
        status = AcquireCredentialsHandleW(nullptr, c.package.data(), SECPKG_CRED_OUTBOUND, nullptr, nullptr,
                                           nullptr, nullptr, &c.credential, &expiry);
        if (status != SEC_E_OK)
        {
            SetFailure(Classify(status), StatusText(status));
            return false;
        }
        c.haveCredential = true;
        SecPkgCredentials_NamesW names{};
        if (QueryCredentialsAttributesW(&c.credential, SECPKG_CRED_ATTR_NAMES, &names) == SEC_E_OK)
        {
            c.clientPrincipal = Utf8(names.sUserName);
            FreeContextBuffer(names.sUserName);
        }
    }
    std::wstring target = Wide(m_principal);
    // Buffers of our own: Wine's provider refuses ISC_REQ_ALLOCATE_MEMORY.
    Bytes output(c.maxToken);
    SecBuffer outBuffer{static_cast<unsigned long>(output.size()), SECBUFFER_TOKEN, output.data()};
    SecBufferDesc outDesc{SECBUFFER_VERSION, 1, &outBuffer};
    Bytes input = in_token;
    SecBuffer inBuffer{static_cast<unsigned long>(input.size()), SECBUFFER_TOKEN, input.data()};
    SecBufferDesc inDesc{SECBUFFER_VERSION, 1, &inBuffer};
    unsigned long flags = ISC_REQ_MUTUAL_AUTH | ISC_REQ_SEQUENCE_DETECT | ISC_REQ_INTEGRITY;
    if (m_delegate)
    {
        flags |= ISC_REQ_DELEGATE;
    }
    unsigned long attributes = 0;
    TimeStamp expiry{};
    SECURITY_STATUS status = InitializeSecurityContextW(
        &c.credential, c.haveContext ? &c.context : nullptr, target.data(), flags, 0, SECURITY_NATIVE_DREP,
        in_token.empty() ? nullptr : &inDesc, 0, &c.context, &outDesc, &attributes, &expiry);
    if (status == SEC_I_COMPLETE_NEEDED || status == SEC_I_COMPLETE_AND_CONTINUE)
    {
        const SECURITY_STATUS completed = CompleteAuthToken(&c.context, &outDesc);
        status = completed != SEC_E_OK ? completed : status == SEC_I_COMPLETE_NEEDED ? SEC_E_OK : SEC_I_CONTINUE_NEEDED;
    }
    if (status != SEC_E_OK && status != SEC_I_CONTINUE_NEEDED)
    {
        Failure failure = Classify(status);
        if (failure == Failure::Other && status == SEC_E_INTERNAL_ERROR && !c.haveContext && RunningOnWine())
        {
            // Windows names the cause of a refused service ticket (unknown
            // target, time skew, no authority); Wine answers every failure
            // of its library's first step with an internal error.
            failure = Failure::NoServiceTicket;
        }
        SetFailure(failure, StatusText(status));
        return false;
    }
    c.haveContext = true;
    c.established = status == SEC_E_OK;
    if (c.clientPrincipal.empty())
    {
        // Some providers name the user only through the context.
        SecPkgContext_NamesW names{};
        if (QueryContextAttributesW(&c.context, SECPKG_ATTR_NAMES, &names) == SEC_E_OK)
        {
            c.clientPrincipal = Utf8(names.sUserName);
            FreeContextBuffer(names.sUserName);
        }
    }
    out_token.assign(output.begin(), output.begin() + outBuffer.cbBuffer);
    return true;
}

bool KerberosClient::Wrap(const Bytes& in_message, Bytes& out_token)
{
    Context& c = *m_context;
    SecPkgContext_Sizes sizes{};
    SECURITY_STATUS status = QueryContextAttributesW(&c.context, SECPKG_ATTR_SIZES, &sizes);
    if (status != SEC_E_OK)
    {
        SetFailure(Failure::Other, StatusText(status));
        return false;
    }
    Bytes token(sizes.cbSecurityTrailer);
    Bytes data = in_message;
    Bytes padding(sizes.cbBlockSize);
    SecBuffer buffers[3] = {
        {static_cast<unsigned long>(token.size()), SECBUFFER_TOKEN, token.data()},
        {static_cast<unsigned long>(data.size()), SECBUFFER_DATA, data.data()},
        {static_cast<unsigned long>(padding.size()), SECBUFFER_PADDING, padding.data()},
    };
    // Wine leaves the padding buffer as it is given (it has no padding to
    // report), so it is not offered there.
    const bool wine = RunningOnWine();
    SecBufferDesc desc{SECBUFFER_VERSION, wine ? 2UL : 3UL, buffers};
    status = EncryptMessage(&c.context, SECQOP_WRAP_NO_ENCRYPT, &desc, 0);
    if (status != SEC_E_OK)
    {
        SetFailure(Failure::Other, StatusText(status));
        return false;
    }
    const auto append = [&out_token](const SecBuffer& in_buffer) {
        const auto* bytes = static_cast<const std::uint8_t*>(in_buffer.pvBuffer);
        out_token.insert(out_token.end(), bytes, bytes + in_buffer.cbBuffer);
    };
    out_token.clear();
    if (wine)
    {
        // Wine splits its library's wrap token into the data buffer (the
        // first bytes) and the token buffer (the rest).
        append(buffers[1]);
        append(buffers[0]);
    }
    else
    {
        // Windows: header (token), data, then padding.
        append(buffers[0]);
        append(buffers[1]);
        append(buffers[2]);
    }
    return true;
}

bool KerberosClient::Unwrap(const Bytes& in_token, Bytes& out_message)
{
    Context& c = *m_context;
    unsigned long qop = 0;
    if (!RunningOnWine())
    {
        // Windows takes the whole message as a stream and points the data
        // buffer at the message inside it.
        Bytes stream = in_token;
        SecBuffer buffers[2] = {
            {static_cast<unsigned long>(stream.size()), SECBUFFER_STREAM, stream.data()},
            {0, SECBUFFER_DATA, nullptr},
        };
        SecBufferDesc desc{SECBUFFER_VERSION, 2, buffers};
        const SECURITY_STATUS status = DecryptMessage(&c.context, &desc, 0, &qop);
        if (status != SEC_E_OK)
        {
            SetFailure(Failure::Other, StatusText(status));
            return false;
        }
        const auto* bytes = static_cast<const std::uint8_t*>(buffers[1].pvBuffer);
        out_message.assign(bytes, bytes + buffers[1].cbBuffer);
        return true;
    }
    // Wine refuses SECBUFFER_STREAM. It joins the data buffer and then the
    // token buffer into one message for its Kerberos library and returns the
    // message in the data buffer, which must therefore be exactly as long as
    // the message inside.
    const std::size_t length = WrappedMessageLength(in_token);
    if (length == NOT_MEASURABLE)
    {
        SetFailure(Failure::Other,
                   "the server's protected message is encrypted or not in the RFC 4121 form, which Wine's Kerberos "
                   "provider cannot unwrap");
        return false;
    }
    Bytes data(in_token.begin(), in_token.begin() + static_cast<std::ptrdiff_t>(length));
    Bytes token(in_token.begin() + static_cast<std::ptrdiff_t>(length), in_token.end());
    SecBuffer buffers[2] = {
        {static_cast<unsigned long>(token.size()), SECBUFFER_TOKEN, token.data()},
        {static_cast<unsigned long>(data.size()), SECBUFFER_DATA, data.data()},
    };
    SecBufferDesc desc{SECBUFFER_VERSION, 2, buffers};
    const SECURITY_STATUS status = DecryptMessage(&c.context, &desc, 0, &qop);
    if (status != SEC_E_OK)
    {
        SetFailure(Failure::Other, StatusText(status));
        return false;
    }
    out_message = std::move(data);
    return true;
}

std::string KerberosClient::CanonicalHostName(const std::string& in_host)
{
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0)
    {
        return in_host;
    }
    std::string canonical = in_host;
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* addresses = nullptr;
    if (getaddrinfo(in_host.c_str(), nullptr, &hints, &addresses) == 0 && addresses != nullptr)
    {
        char name[NI_MAXHOST] = {};
        if (getnameinfo(addresses->ai_addr, static_cast<socklen_t>(addresses->ai_addrlen), name, sizeof name, nullptr,
                        0, NI_NAMEREQD) == 0)
        {
            canonical = name;
            std::transform(canonical.begin(), canonical.end(), canonical.begin(),
                           [](unsigned char in_c) { return static_cast<char>(std::tolower(in_c)); });
        }
        freeaddrinfo(addresses);
    }
    WSACleanup();
    return canonical;
}
}  // namespace Tarni::Platform
