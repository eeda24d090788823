#include "platform/HttpServiceProxy.h"

#include <windows.h>
#include <winhttp.h>

namespace Tarni::Platform
{
namespace
{
const char* const NS = "Tarni::Platform";
const char* const CLS = "HttpServiceProxy";

/// Frees a string that WinHTTP allocated for the caller.
class WinHttpString
{
public:
    WinHttpString() = default;
    WinHttpString(const WinHttpString&) = delete;
    WinHttpString& operator=(const WinHttpString&) = delete;
    ~WinHttpString()
    {
        if (m_text != nullptr)
        {
            ::GlobalFree(m_text);
        }
    }
    LPWSTR* Out() { return &m_text; }
    LPWSTR Get() const { return m_text; }
    bool IsEmpty() const { return m_text == nullptr || *m_text == L'\0'; }
    tarni_wstring Text() const
    {
        return m_text == nullptr ? tarni_wstring() : tarni_wstring(reinterpret_cast<const char16_t*>(m_text));
    }

private:
    LPWSTR m_text = nullptr;
};

/// The user's configuration with every string it holds freed on the way out.
struct UserConfiguration
{
    BOOL autoDetect = FALSE;
    WinHttpString autoConfigUrl;
    WinHttpString proxy;
    WinHttpString proxyBypass;

    bool Read()
    {
        WINHTTP_CURRENT_USER_IE_PROXY_CONFIG config{};
        const BOOL ok = ::WinHttpGetIEProxyConfigForCurrentUser(&config);
        // Take ownership of whatever came back, also after a failure.
        autoDetect = config.fAutoDetect;
        *autoConfigUrl.Out() = config.lpszAutoConfigUrl;
        *proxy.Out() = config.lpszProxy;
        *proxyBypass.Out() = config.lpszProxyBypass;
        return ok != FALSE;
    }
};

class SessionHandle
{
public:
    explicit SessionHandle(HINTERNET in_handle) : m_handle(in_handle) {}
    SessionHandle(const SessionHandle&) = delete;
    SessionHandle& operator=(const SessionHandle&) = delete;
    ~SessionHandle()
    {
        if (m_handle != nullptr)
        {
            ::WinHttpCloseHandle(m_handle);
        }
    }
    HINTERNET Get() const { return m_handle; }

private:
    HINTERNET m_handle;
};

/// Automatic discovery for the probe address: with the configuration
/// script's address when there is one, else by DHCP and DNS. The list it
/// gives, or nothing when it fails or answers "no proxy".
std::optional<tarni_wstring> Discover(const tarni_wstring& in_userAgent, const tarni_wstring& in_probeUrl,
                                      LPCWSTR in_scriptUrl, Support::ILogger* in_log)
{
    SessionHandle session(::WinHttpOpen(reinterpret_cast<LPCWSTR>(in_userAgent.c_str()),
                                        WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, WINHTTP_NO_PROXY_NAME,
                                        WINHTTP_NO_PROXY_BYPASS, 0));
    if (session.Get() == nullptr)
    {
        if (in_log != nullptr)
        {
            in_log->LogDebug(NS, CLS, "Query", "WinHttpOpen failed with error %lu.", ::GetLastError());
        }
        return std::nullopt;
    }
    const int limit = HttpServiceProxy::STEP_TIMEOUT_MS;
    ::WinHttpSetTimeouts(session.Get(), limit, limit, limit, limit);

    WINHTTP_AUTOPROXY_OPTIONS options{};
    if (in_scriptUrl != nullptr && *in_scriptUrl != L'\0')
    {
        options.dwFlags = WINHTTP_AUTOPROXY_CONFIG_URL;
        options.lpszAutoConfigUrl = in_scriptUrl;
    }
    else
    {
        options.dwFlags = WINHTTP_AUTOPROXY_AUTO_DETECT;
        options.dwAutoDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DHCP | WINHTTP_AUTO_DETECT_TYPE_DNS_A;
    }
    options.fAutoLogonIfChallenged = TRUE;

    WINHTTP_PROXY_INFO info{};
    const BOOL found =
        ::WinHttpGetProxyForUrl(session.Get(), reinterpret_cast<LPCWSTR>(in_probeUrl.c_str()), &options, &info);
    const DWORD error = found ? 0 : ::GetLastError();
    WinHttpString proxy;
    WinHttpString bypass;
    *proxy.Out() = info.lpszProxy;
    *bypass.Out() = info.lpszProxyBypass;
    if (!found)
    {
        if (in_log != nullptr)
        {
            in_log->LogDebug(NS, CLS, "Query", "Automatic proxy discovery found nothing (error %lu).", error);
        }
        return std::nullopt;
    }
    if (info.dwAccessType == WINHTTP_ACCESS_TYPE_NO_PROXY || proxy.IsEmpty())
    {
        return std::nullopt;
    }
    return proxy.Text();
}
}  // namespace

std::optional<HttpServiceProxyList> HttpServiceProxy::Query(tarni_wstring_view in_userAgent,
                                                            tarni_wstring_view in_probeUrl, Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "Query");
    UserConfiguration user;
    const bool haveUserConfiguration = user.Read();
    if (!haveUserConfiguration || user.autoDetect || !user.autoConfigUrl.IsEmpty())
    {
        if (auto discovered = Discover(tarni_wstring(in_userAgent), tarni_wstring(in_probeUrl),
                                       haveUserConfiguration ? user.autoConfigUrl.Get() : nullptr, in_log))
        {
            return HttpServiceProxyList{std::move(*discovered), true};
        }
    }
    if (!haveUserConfiguration || user.proxy.IsEmpty())
    {
        return std::nullopt;
    }
    return HttpServiceProxyList{user.proxy.Text(), false};
}
}  // namespace Tarni::Platform
