#pragma once
// Proxy addresses as users and systems write them, parsed with Boost.URL:
//   [scheme://][user[:password]@]host[:port][/]
// The supported schemes are "http" (default port 80) and "https" (443): the
// connection's HTTP transport reaches its server through the proxy with an
// HTTP CONNECT request, in plain text or over TLS to the proxy. A bare
// "host:port" is an http proxy. User information is percent-decoded; an
// IPv6 host is written in brackets. Anything else (another scheme, a path, a
// port that is not 1 to 65535, no host, blanks inside) is an ErrorException
// that names where the value came from and shows it with its password
// masked.
#include <cstdint>

#include "driversupport/DSProxyDescription.h"

namespace Tarni::DriverSupport
{
class DSProxyUrl
{
public:
    /// Parses in_text (blanks around it are ignored). in_source names where
    /// it came from in errors ("HTTP_PROXY", "ProxyHost", ...). Throws
    /// ErrorException "DSProxyUrlErr", "DSProxySchemeErr", "DSProxyHostErr",
    /// "DSProxyPortErr" or "DSProxyPathErr".
    static DSProxyDescription Parse(tarni_wstring_view in_text, tarni_wstring_view in_source);

    /// A proxy from a host (name, IPv4 or IPv6 address, brackets optional)
    /// and a port text, as the settings ProxyHost and ProxyPort give them.
    /// Throws as Parse; in_hostSource and in_portSource name the settings.
    static DSProxyDescription FromHostAndPort(tarni_wstring_view in_host, tarni_wstring_view in_port,
                                              tarni_wstring_view in_hostSource, tarni_wstring_view in_portSource);

    /// True for the schemes above (any letter case).
    static bool IsSupportedScheme(tarni_wstring_view in_scheme);
    /// 80 for http, 443 for https, 0 for anything else.
    static std::uint16_t DefaultPort(tarni_wstring_view in_scheme);

    /// The text with the password of its user information replaced by "****"
    /// (the user name stays); works on text that is not a valid URL too.
    static tarni_wstring MaskCredentials(tarni_wstring_view in_text);
};
}  // namespace Tarni::DriverSupport
