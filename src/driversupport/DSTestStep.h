#pragma once
// One step of a connection test (name resolution, TCP connect, TLS, discovery,
// token, authentication, session...), as the result lists it.
#include <cstdint>
#include <string>

#include "core/TarniString.h"

namespace Tarni::DriverSupport
{
struct DSTestStep
{
    enum class Status
    {
        Running,  ///< begun and not finished: the test stopped inside it
        Passed,
        Failed,
    };

    /// A stable identifier ("settings", "resolve", "connect", "tls", "discovery", "token",
    /// "authentication", "open-session", "server-info", "close-session") for
    /// machine-readable output; the shown name comes from the catalogue.
    std::string id;
    Status status = Status::Running;
    /// What the step found (the addresses, the protocol, the principal...) or
    /// why it failed. Never a secret.
    tarni_wstring detail;
    std::uint64_t durationMs = 0;
};
}  // namespace Tarni::DriverSupport
