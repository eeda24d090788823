#pragma once
// Defaults and offers that the product settings decide. Each result is
// computed once per loaded set of product settings, under a lock.
#include "core/TarniString.h"

namespace Tarni::SparkODBC
{
class SOProductSettings
{
public:
    /// "dsn-port" when it is a number, else 10000.
    static unsigned long long GetDefaultPort();
    /// "default-string-column-length" when it is a number, else 255.
    static unsigned long long GetDefaultStringColumnLength();
    /// "dsn-hs-type" when it is a number from 1 to 4, else 3.
    static unsigned GetDefaultServerType();
    /// "dsn-auth-mech": below 14 is used; 14 or more, not a number or absent give 2.
    static unsigned GetDefaultAuthMech();
    /// "1" or "true" is true; anything else (or nothing) is false.
    static bool GetBoolean(tarni_wstring_view in_setting);
    /// Mode 0 always; none other with "supress-service-discovery" "1"; with no
    /// "supported-service-discovery-modes" list, AOSS unless "suppress-aoss" is
    /// "1" and never ZooKeeper; otherwise the comma-separated list must hold
    /// the mode's name exactly (no trimming, case-sensitive).
    static bool IsServiceDiscoveryModeSupported(unsigned in_mode);
};
}  // namespace Tarni::SparkODBC
