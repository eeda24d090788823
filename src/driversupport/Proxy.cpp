#include "driversupport/Proxy.h"

#include <optional>

#include "core/ErrorException.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSConnectionUtils.h"
#include "driversupport/DSEncryptionUtils.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/DSProxyUrl.h"
#include "platform/HttpServiceProxy.h"
#include "platform/ProcessEnvironment.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using Support::ErrorException;
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "Proxy";

std::string U8(tarni_wstring_view in_text)
{
    return StringConverter::ToUtf8(in_text);
}

tarni_wstring TrimBlanks(tarni_wstring_view in_text)
{
    const size_t first = in_text.find_first_not_of(u" \t\r\n");
    if (first == tarni_wstring_view::npos)
    {
        return {};
    }
    const size_t last = in_text.find_last_not_of(u" \t\r\n");
    return tarni_wstring(in_text.substr(first, last - first + 1));
}

/// The value of the first key of the pair that is given.
std::optional<tarni_wstring> FirstOf(tarni_wstring_view in_preferred, tarni_wstring_view in_older,
                                     const ConfigurationMap& in_settings)
{
    if (auto value = DSConnectionUtils::GetSettingValue(in_preferred, in_settings))
    {
        return value;
    }
    return DSConnectionUtils::GetSettingValue(in_older, in_settings);
}

/// A switch of the settings; absent gives in_default.
bool ReadSwitch(tarni_wstring_view in_key, const ConfigurationMap& in_settings, bool in_default,
                Support::ILogger* in_log)
{
    bool value = in_default;
    DSWarningList warnings;
    DSConnectionUtils::ReadBooleanSetting(in_key, in_settings, value, false, in_log, warnings);
    return value;
}

tarni_wstring Lower(tarni_wstring_view in_text)
{
    tarni_wstring lower(in_text);
    for (char16_t& c : lower)
    {
        if (c >= u'A' && c <= u'Z')
        {
            c = static_cast<char16_t>(c - u'A' + u'a');
        }
    }
    return lower;
}

tarni_wstring StripBrackets(tarni_wstring_view in_host)
{
    if (in_host.size() >= 2 && in_host.front() == u'[' && in_host.back() == u']')
    {
        in_host = in_host.substr(1, in_host.size() - 2);
    }
    return tarni_wstring(in_host);
}

/// One entry of a bypass list (lower case) against a host (lower case,
/// without brackets) and its port.
bool MatchesBypassEntry(tarni_wstring_view in_entry, tarni_wstring_view in_host, tarni_wstring_view in_port)
{
    if (in_entry == u"*")
    {
        return true;
    }
    tarni_wstring pattern(in_entry);
    // A port follows the last ":" of a name, an IPv4 address or a bracketed
    // IPv6 address; a bare IPv6 address has several colons and no port.
    const size_t colon = pattern.rfind(u':');
    const bool bracketed = !pattern.empty() && pattern.front() == u'[';
    if (colon != tarni_wstring::npos && (bracketed ? colon > pattern.find(u']') : pattern.find(u':') == colon))
    {
        if (pattern.substr(colon + 1) != in_port)
        {
            return false;
        }
        pattern.erase(colon);
    }
    pattern = StripBrackets(pattern);
    if (pattern.rfind(u"*.", 0) == 0)
    {
        pattern.erase(0, 2);
    }
    else if (pattern.rfind(u".", 0) == 0)
    {
        pattern.erase(0, 1);
    }
    if (pattern.empty())
    {
        return false;
    }
    if (in_host == pattern)
    {
        return true;
    }
    return in_host.size() > pattern.size() && in_host.substr(in_host.size() - pattern.size()) == pattern &&
           in_host[in_host.size() - pattern.size() - 1] == u'.';
}

bool IsNoProxyList(tarni_wstring_view in_list)
{
    return in_list == u":" || in_list == u"::";
}

void LogChosen(Support::ILogger* in_log, const char* in_function, const char* in_source,
               const DSProxyDescription& in_proxy)
{
    if (in_log == nullptr)
    {
        return;
    }
    if (in_proxy.IsEmpty())
    {
        in_log->LogInfo(NS, CLS, in_function, "%s names no proxy.", in_source);
    }
    else
    {
        in_log->LogInfo(NS, CLS, in_function, "%s names the proxy %s.", in_source,
                        U8(in_proxy.ToDisplayText()).c_str());
    }
}
}  // namespace

DSProxyDescription Proxy::ReadProxyConnectionSettings(const ConfigurationMap& in_settings, Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadProxyConnectionSettings");
    DSProxyDescription proxy;
    if (ReadSwitch(Keys::UseDefaultSystemProxy, in_settings, false, in_log))
    {
        const tarni_wstring server = DSConnectionUtils::GetSettingValue(Keys::Host, in_settings).value_or(u"");
        const tarni_wstring port = DSConnectionUtils::GetSettingValue(Keys::Port, in_settings).value_or(u"");
        if (!TrimBlanks(server).empty() && IsBypassedHost(TrimBlanks(server), TrimBlanks(port), in_log))
        {
            // The system says to reach this server directly: neither its
            // proxy nor the one of the settings is used.
            LogChosen(in_log, "ReadProxyConnectionSettings", "The system's bypass list", proxy);
            return proxy;
        }
        proxy = GetSystemProxy(in_log);
    }
    // "UseProxy" off keeps ProxyHost and ProxyPort stored for later without
    // using them; an absent switch counts as on.
    if (proxy.IsEmpty() && ReadSwitch(Keys::UseProxy, in_settings, true, in_log))
    {
        const tarni_wstring host = DSConnectionUtils::GetSettingValue(Keys::ProxyHost, in_settings).value_or(u"");
        if (!TrimBlanks(host).empty())
        {
            const std::optional<tarni_wstring> port = DSConnectionUtils::GetSettingValue(Keys::ProxyPort, in_settings);
            if (!port || TrimBlanks(*port).empty())
            {
                throw ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSRequiredSettingNotFound",
                                     {tarni_wstring(Keys::ProxyPort)});
            }
            proxy = DSProxyUrl::FromHostAndPort(host, *port, Keys::ProxyHost, Keys::ProxyPort);
        }
    }
    if (!proxy.IsEmpty() && !proxy.hasOwnCredentials)
    {
        if (auto user = FirstOf(Keys::ProxyUsername, Keys::ProxyUID, in_settings))
        {
            proxy.user = *user;
            if (auto password = FirstOf(Keys::ProxyPassword, Keys::ProxyPWD, in_settings))
            {
                proxy.password = *password;
            }
            else if (auto stored = DSConnectionUtils::GetSettingValue(Keys::ProxyEncryptedPWD, in_settings);
                     stored && !stored->empty())
            {
                proxy.password = DSEncryptionUtils::Decrypt(*stored, Keys::ProxyEncryptedPWD, in_log).value;
            }
        }
    }
    LogChosen(in_log, "ReadProxyConnectionSettings", "The connection settings", proxy);
    return proxy;
}

DSProxyDescription Proxy::GetSystemProxy(Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "GetSystemProxy");
    DSProxyDescription proxy = GetEnvironmentProxy(in_log);
    if (!proxy.IsEmpty())
    {
        return proxy;
    }
    const auto list = Platform::HttpServiceProxy::Query(DSProductHelper::GetDriverName(), PROBE_URL, in_log);
    if (!list)
    {
        LogChosen(in_log, "GetSystemProxy", "The system's HTTP service", proxy);
        return proxy;
    }
    if (in_log != nullptr)
    {
        in_log->LogDebug(NS, CLS, "GetSystemProxy", "The system's HTTP service gave the %s proxy list \"%s\".",
                         list->discovered ? "discovered" : "manual", U8(DSProxyUrl::MaskCredentials(list->list)).c_str());
    }
    return ParseProxyList(list->list, in_log);
}

bool Proxy::IsBypassedHost(tarni_wstring_view in_host, tarni_wstring_view in_port, Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "IsBypassedHost");
    std::optional<tarni_wstring> list;
    const char16_t* source = nullptr;
    for (const char16_t* name : {u"NO_PROXY", u"no_proxy"})
    {
        list = Platform::ProcessEnvironment::GetVariable(name);
        if (list && !TrimBlanks(*list).empty())
        {
            source = name;
            break;
        }
        list.reset();
    }
    if (!list)
    {
        return false;
    }
    const tarni_wstring host = Lower(StripBrackets(in_host));
    size_t start = 0;
    while (start <= list->size())
    {
        size_t end = list->find_first_of(u", \t", start);
        if (end == tarni_wstring::npos)
        {
            end = list->size();
        }
        const tarni_wstring entry = Lower(list->substr(start, end - start));
        start = end + 1;
        if (!entry.empty() && MatchesBypassEntry(entry, host, in_port))
        {
            if (in_log != nullptr)
            {
                in_log->LogInfo(NS, CLS, "IsBypassedHost", "%s names the server %s (entry \"%s\"): no proxy.",
                                U8(source).c_str(), U8(in_host).c_str(), U8(entry).c_str());
            }
            return true;
        }
    }
    return false;
}

DSProxyDescription Proxy::GetEnvironmentProxy(Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "GetEnvironmentProxy");
    // Where names are case-sensitive the lower-case variable is a second
    // one; where they are not (Windows), the same one is read twice.
    for (const char16_t* name : {u"HTTP_PROXY", u"http_proxy"})
    {
        const std::optional<tarni_wstring> value = Platform::ProcessEnvironment::GetVariable(name);
        if (!value || TrimBlanks(*value).empty())
        {
            continue;
        }
        if (in_log != nullptr)
        {
            in_log->LogDebug(NS, CLS, "GetEnvironmentProxy", "Value read for the environment variable %s is: %s",
                             U8(name).c_str(), U8(DSProxyUrl::MaskCredentials(*value)).c_str());
        }
        DSProxyDescription proxy = DSProxyUrl::Parse(*value, name);
        LogChosen(in_log, "GetEnvironmentProxy", U8(name).c_str(), proxy);
        return proxy;
    }
    return {};
}

DSProxyDescription Proxy::ParseProxyList(tarni_wstring_view in_list, Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ParseProxyList");
    const tarni_wstring list = TrimBlanks(in_list);
    DSProxyDescription chosen;
    if (IsNoProxyList(list))
    {
        LogChosen(in_log, "ParseProxyList", "The proxy list", chosen);
        return chosen;
    }
    // Lower ranks win: an entry for https, then one for every scheme, then one for http.
    int chosenRank = 3;
    size_t start = 0;
    while (start <= list.size())
    {
        size_t end = list.find_first_of(u"\t\r\n ;", start);
        if (end == tarni_wstring::npos)
        {
            end = list.size();
        }
        tarni_wstring entry = list.substr(start, end - start);
        start = end + 1;
        if (entry.empty() || IsNoProxyList(entry))
        {
            continue;
        }
        tarni_wstring forScheme;
        const size_t equals = entry.find(u'=');
        if (equals != tarni_wstring::npos && equals < entry.find(u"://"))
        {
            forScheme = entry.substr(0, equals);
            entry.erase(0, equals + 1);
        }
        int rank = 1;
        if (StringConverter::EqualsIgnoreCase(forScheme, u"https"))
        {
            rank = 0;
        }
        else if (StringConverter::EqualsIgnoreCase(forScheme, u"http"))
        {
            rank = 2;
        }
        else if (!forScheme.empty())
        {
            if (in_log != nullptr)
            {
                in_log->LogDebug(NS, CLS, "ParseProxyList", "The proxy for %s is not used by the connection.",
                                 U8(forScheme).c_str());
            }
            continue;
        }
        if (rank >= chosenRank || entry.empty() || IsNoProxyList(entry))
        {
            continue;
        }
        try
        {
            chosen = DSProxyUrl::Parse(entry, u"WinHTTP");
            chosenRank = rank;
        }
        catch (const ErrorException& e)
        {
            if (in_log != nullptr)
            {
                in_log->LogWarning(NS, CLS, "ParseProxyList", "The proxy list entry \"%s\" is skipped: %s",
                                   U8(DSProxyUrl::MaskCredentials(entry)).c_str(), e.what());
            }
        }
    }
    LogChosen(in_log, "ParseProxyList", "The proxy list", chosen);
    return chosen;
}
}  // namespace Tarni::DriverSupport
