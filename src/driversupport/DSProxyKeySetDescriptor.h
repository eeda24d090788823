#pragma once
#include "core/TarniString.h"

namespace Tarni::DriverSupport
{
/// The keys of the proxy settings in the owner's configuration map.
struct DSProxyKeySetDescriptor
{
    tarni_wstring useProxyKey = u"UseProxy";
    tarni_wstring hostKey = u"ProxyHost";
    tarni_wstring portKey = u"ProxyPort";
};
}  // namespace Tarni::DriverSupport
