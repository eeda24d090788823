#pragma once
// Platform seam: the proxy that the operating system's HTTP service names.
// On Windows this is WinHTTP with the current user's proxy configuration:
// automatic discovery (the configuration script, or DHCP and DNS) when the
// configuration asks for it or cannot be read, else the manual proxy list.
// Elsewhere there is no such service and the answer is always "none".
#include <optional>

#include "core/ILogger.h"
#include "core/TarniString.h"

namespace Tarni::Platform
{
/// A proxy list as the service writes it: entries separated by blanks or
/// ";", each "[scheme=][scheme://]host[:port]"; ":" and "::" mean none.
struct HttpServiceProxyList
{
    tarni_wstring list;
    /// True when automatic discovery gave the list, false for the manual one.
    bool discovered = false;
};

class HttpServiceProxy
{
public:
    /// The limit of each network step of the discovery (name resolution,
    /// connecting, sending, receiving the configuration script), so that a
    /// machine without a network answers quickly.
    static constexpr int STEP_TIMEOUT_MS = 3000;

    /// The proxy list for in_probeUrl; nothing when the service names no
    /// proxy, fails or does not exist here. Never throws. in_userAgent names
    /// the program to the service.
    static std::optional<HttpServiceProxyList> Query(tarni_wstring_view in_userAgent, tarni_wstring_view in_probeUrl,
                                                     Support::ILogger* in_log);
};
}  // namespace Tarni::Platform
