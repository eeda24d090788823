#include "driversupport/DSProxyConfiguration.h"

#include "driversupport/ConfigurationKeys.h"

namespace Tarni::DriverSupport
{
DSProxyConfiguration::DSProxyConfiguration(ConfigurationMap& io_map, Support::ILogger* in_logger,
                                           unsigned in_configType)
    : DSUidPwdConfiguration(io_map, in_logger, in_configType,
                            DSUidPwdKeySet{tarni_wstring(Keys::ProxyUID), tarni_wstring(Keys::ProxyPWD),
                                           tarni_wstring(Keys::ProxyEncryptedPWD), u""})
{
    SetParentDlgName(u"Proxy Options dialog");
}
}  // namespace Tarni::DriverSupport
