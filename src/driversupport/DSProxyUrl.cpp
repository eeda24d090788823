#include "driversupport/DSProxyUrl.h"

#include <optional>

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include "core/ErrorException.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using Support::ErrorException;
using Support::StringConverter;

namespace
{
tarni_wstring_view TrimBlanks(tarni_wstring_view in_text)
{
    const auto isBlank = [](char16_t in_c) { return in_c == u' ' || in_c == u'\t' || in_c == u'\r' || in_c == u'\n'; };
    while (!in_text.empty() && isBlank(in_text.front()))
    {
        in_text.remove_prefix(1);
    }
    while (!in_text.empty() && isBlank(in_text.back()))
    {
        in_text.remove_suffix(1);
    }
    return in_text;
}

[[noreturn]] void Fail(const char16_t* in_key, tarni_wstring_view in_source, tarni_wstring_view in_value,
                       tarni_wstring in_detail = {})
{
    std::vector<tarni_wstring> parameters{tarni_wstring(in_source), DSProxyUrl::MaskCredentials(in_value)};
    if (!in_detail.empty())
    {
        parameters.push_back(std::move(in_detail));
    }
    throw ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, in_key, std::move(parameters));
}

tarni_wstring Wide(boost::core::string_view in_text)
{
    return StringConverter::FromUtf8(std::string_view(in_text.data(), in_text.size()));
}

/// 1 to 65535 in decimal digits, else nothing.
std::optional<std::uint16_t> ParsePort(tarni_wstring_view in_text)
{
    if (in_text.empty() || in_text.size() > 5)
    {
        return std::nullopt;
    }
    unsigned value = 0;
    for (const char16_t c : in_text)
    {
        if (c < u'0' || c > u'9')
        {
            return std::nullopt;
        }
        value = value * 10 + static_cast<unsigned>(c - u'0');
    }
    if (value == 0 || value > 65535)
    {
        return std::nullopt;
    }
    return static_cast<std::uint16_t>(value);
}
}  // namespace

bool DSProxyUrl::IsSupportedScheme(tarni_wstring_view in_scheme)
{
    return DefaultPort(in_scheme) != 0;
}

std::uint16_t DSProxyUrl::DefaultPort(tarni_wstring_view in_scheme)
{
    if (StringConverter::EqualsIgnoreCase(in_scheme, u"http"))
    {
        return 80;
    }
    if (StringConverter::EqualsIgnoreCase(in_scheme, u"https"))
    {
        return 443;
    }
    return 0;
}

tarni_wstring DSProxyUrl::MaskCredentials(tarni_wstring_view in_text)
{
    // The user information ends at the last "@": a password typed without
    // percent-encoding may hold "@", "/" or ":" itself.
    const size_t at = in_text.rfind(u'@');
    if (at == tarni_wstring_view::npos)
    {
        return tarni_wstring(in_text);
    }
    const size_t schemeEnd = in_text.find(u"://");
    const size_t userStart = (schemeEnd != tarni_wstring_view::npos && schemeEnd < at) ? schemeEnd + 3 : 0;
    const size_t colon = in_text.find(u':', userStart);
    if (colon == tarni_wstring_view::npos || colon > at)
    {
        return tarni_wstring(in_text);
    }
    return tarni_wstring(in_text.substr(0, colon + 1)) + u"****" + tarni_wstring(in_text.substr(at));
}

DSProxyDescription DSProxyUrl::Parse(tarni_wstring_view in_text, tarni_wstring_view in_source)
{
    const tarni_wstring_view text = TrimBlanks(in_text);
    if (text.empty())
    {
        Fail(u"DSProxyHostErr", in_source, in_text);
    }
    // Without "://" the text is a bare "host:port": an http proxy.
    const bool hasScheme = text.find(u"://") != tarni_wstring_view::npos;
    const std::string utf8 = (hasScheme ? std::string() : std::string("http://")) + StringConverter::ToUtf8(text);
    const auto parsed = boost::urls::parse_uri(utf8);
    if (!parsed)
    {
        Fail(u"DSProxyUrlErr", in_source, text);
    }
    const boost::urls::url_view url = *parsed;

    DSProxyDescription proxy;
    proxy.scheme = Wide(url.scheme());
    if (!IsSupportedScheme(proxy.scheme))
    {
        Fail(u"DSProxySchemeErr", in_source, text, proxy.scheme);
    }
    for (auto& c : proxy.scheme)
    {
        c = (c >= u'A' && c <= u'Z') ? static_cast<char16_t>(c - u'A' + u'a') : c;
    }

    const tarni_wstring path = Wide(url.encoded_path());
    if (url.has_port() && !path.empty() && path.front() != u'/')
    {
        // "host:80x" reads as the port "80" followed by the path "x".
        Fail(u"DSProxyPortErr", in_source, text, Wide(url.port()) + path);
    }
    if ((!path.empty() && path != u"/") || url.has_query() || url.has_fragment())
    {
        Fail(u"DSProxyPathErr", in_source, text);
    }

    proxy.host = Wide(url.host_address());
    if (proxy.host.empty())
    {
        Fail(u"DSProxyHostErr", in_source, text);
    }
    const tarni_wstring portText = Wide(url.port());
    if (portText.empty())
    {
        proxy.port = DefaultPort(proxy.scheme);
    }
    else if (const auto port = ParsePort(portText))
    {
        proxy.port = *port;
    }
    else
    {
        Fail(u"DSProxyPortErr", in_source, text, portText);
    }

    if (url.has_userinfo())
    {
        proxy.user = Wide(url.user());
        proxy.password = Wide(url.password());
        proxy.hasOwnCredentials = !proxy.user.empty() || !proxy.password.empty();
    }
    return proxy;
}

DSProxyDescription DSProxyUrl::FromHostAndPort(tarni_wstring_view in_host, tarni_wstring_view in_port,
                                               tarni_wstring_view in_hostSource, tarni_wstring_view in_portSource)
{
    const tarni_wstring_view host = TrimBlanks(in_host);
    // An IPv6 address may be given with or without its brackets. Characters
    // that would end the host part of a URL are not part of a host.
    const bool bareIPv6 = host.find(u':') != tarni_wstring_view::npos && !host.empty() && host.front() != u'[';
    const tarni_wstring authority = bareIPv6 ? u"[" + tarni_wstring(host) + u"]" : tarni_wstring(host);
    if (host.empty() || host.find_first_of(u"/?#@") != tarni_wstring_view::npos ||
        (host.front() == u'[' && host.back() != u']'))
    {
        Fail(u"DSProxyUrlErr", in_hostSource, in_host);
    }
    DSProxyDescription proxy;
    try
    {
        proxy = Parse(u"http://" + authority, in_hostSource);
    }
    catch (const ErrorException&)
    {
        Fail(u"DSProxyUrlErr", in_hostSource, in_host);
    }
    const tarni_wstring_view portText = TrimBlanks(in_port);
    const auto port = ParsePort(portText);
    if (!port)
    {
        Fail(u"DSProxyPortErr", in_portSource, in_port, tarni_wstring(portText));
    }
    proxy.port = *port;
    return proxy;
}
}  // namespace Tarni::DriverSupport
