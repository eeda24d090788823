#pragma once
// The proxy of a connection, read when the connection is made: either the
// system's proxy (with UseDefaultSystemProxy) or the one the settings name
// (UseProxy, ProxyHost, ProxyPort), with the proxy's credentials.
//
// The system proxy is looked up in the environment first: HTTP_PROXY, and
// where variable names are case-sensitive (Linux) the lower-case http_proxy
// that tools there set; HTTP_PROXY wins when both are set. Only when the
// environment names no proxy is the operating system's HTTP service asked
// (WinHTTP on Windows, see Platform::HttpServiceProxy).
#include "driversupport/ConfigurationMap.h"
#include "driversupport/DSProxyDescription.h"
#include "core/ILogger.h"

namespace Tarni::DriverSupport
{
class Proxy
{
public:
    /// The public HTTPS address that the system's automatic proxy discovery
    /// is asked about.
    static constexpr const char16_t* PROBE_URL = u"https://www.example.com/";

    /// The connection's proxy; empty for none.
    ///  1. "ProxyUsername" and "ProxyPassword" are the names of "ProxyUid" and
    ///     "ProxyPwd" too; when both names of a pair are given, the longer
    ///     ("ProxyUsername", "ProxyPassword") wins.
    ///  2. With "UseDefaultSystemProxy" on, the system proxy, unless the
    ///     system's bypass list names "Host" (then no proxy at all).
    ///  3. Without one, and unless "UseProxy" is off, "ProxyHost" with the
    ///     then required "ProxyPort" (ErrorException "DSRequiredSettingNotFound"
    ///     when it is missing; "DSProxyPortErr" when it is not 1 to 65535).
    ///  4. A proxy without credentials of its own (from a URL's user
    ///     information) takes "ProxyUid" and, with it, "ProxyPwd" (or the
    ///     protected "ProxyEncryptedPWD", recovered).
    /// The password is never logged.
    static DSProxyDescription ReadProxyConnectionSettings(const ConfigurationMap& in_settings,
                                                          Support::ILogger* in_log);

    /// The environment lookup, then the HTTP service's; empty for none.
    /// Throws for an environment value that is not a usable proxy URL; the
    /// HTTP service never makes it throw.
    static DSProxyDescription GetSystemProxy(Support::ILogger* in_log);

    /// True when the system's list of hosts reached directly, NO_PROXY (and
    /// no_proxy where names are case-sensitive; NO_PROXY wins when both are
    /// set), names the server in_host (with its port in_port, possibly
    /// empty). Entries are separated by commas or blanks: "*" for every
    /// host; a name, which also covers its subdomains (a leading "." or
    /// "*." is allowed); an IP address, IPv6 in brackets or not; each
    /// optionally with ":port", which then must match. Case is ignored.
    static bool IsBypassedHost(tarni_wstring_view in_host, tarni_wstring_view in_port, Support::ILogger* in_log);

    /// HTTP_PROXY (and http_proxy, see above); empty when not set or empty.
    static DSProxyDescription GetEnvironmentProxy(Support::ILogger* in_log);

    /// A proxy list as WinHTTP gives it: entries separated by tabs, line
    /// breaks, blanks or ";", each "[scheme=][scheme://]host[:port]". ":"
    /// and "::" mean no proxy. An entry for "https=" wins over one for every
    /// scheme, which wins over one for "http=" (the transport's connections
    /// are mostly HTTPS); among equals the first. Entries for other schemes
    /// ("socks=", "ftp=") and entries that do not parse are skipped with a
    /// log line; a missing port is the scheme's default.
    static DSProxyDescription ParseProxyList(tarni_wstring_view in_list, Support::ILogger* in_log);
};
}  // namespace Tarni::DriverSupport
