#pragma once
// A proxy for a connection: how to reach it (scheme, host, port) and the
// credentials it asks for. An empty description (no host) means no proxy.
// The password is a secret: it is never part of the text made for logs or
// messages.
#include <cstdint>

#include "core/TarniString.h"

namespace Tarni::DriverSupport
{
struct DSProxyDescription
{
    /// "http" or "https": how the transport speaks to the proxy.
    tarni_wstring scheme;
    /// Host name or address; an IPv6 address without brackets.
    tarni_wstring host;
    std::uint16_t port = 0;
    tarni_wstring user;
    tarni_wstring password;
    /// True when user or password came with the proxy's own URL.
    bool hasOwnCredentials = false;

    bool IsEmpty() const { return host.empty(); }

    /// "host:port", an IPv6 address in brackets.
    tarni_wstring GetAuthority() const;

    /// "scheme://[user:****@]host:port" for logs and messages; the password
    /// is never shown, only whether there is one.
    tarni_wstring ToDisplayText() const;
};
}  // namespace Tarni::DriverSupport
