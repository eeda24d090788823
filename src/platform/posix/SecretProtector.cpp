#include "platform/SecretProtector.h"

#include <unistd.h>

#include "platform/ProcessEnvironment.h"
#include "platform/posix/AesSecretProtector.h"

namespace Tarni::Platform
{
SecretKeyLocations SecretKeyLocations::Default()
{
    SecretKeyLocations locations;
    // The XDG base directory rules ignore a relative XDG_CONFIG_HOME.
    const std::optional<tarni_wstring> xdg = ProcessEnvironment::GetVariable(u"XDG_CONFIG_HOME");
    const tarni_wstring configHome = xdg.has_value() && !xdg->empty() && xdg->front() == u'/'
                                         ? *xdg
                                         : ProcessEnvironment::GetHomeDirectory() + u"/.config";
    locations.userKeyFile = configHome + u"/tarni/secret.key";
    locations.machineIdentityFile = u"/etc/machine-id";
    if (access("/etc/machine-id", F_OK) != 0 && access("/var/lib/dbus/machine-id", F_OK) == 0)
    {
        locations.machineIdentityFile = u"/var/lib/dbus/machine-id";
    }
    return locations;
}

std::unique_ptr<SecretProtector> SecretProtector::Create(const SecretKeyLocations& in_locations,
                                                         const SecretSealer& in_sealer)
{
    return std::make_unique<AesSecretProtector>(in_locations, in_sealer);
}
}  // namespace Tarni::Platform
