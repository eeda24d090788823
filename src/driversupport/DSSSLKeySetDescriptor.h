#pragma once
#include "core/TarniString.h"

namespace Tarni::DriverSupport
{
/// How an owner uses the SSL settings: the prefix of its keys and what it supports.
struct DSSSLKeySetDescriptor
{
    tarni_wstring prefix;
    bool twoWaySSLSupported = false;
    bool sslForced = false;
    bool sslOnByDefault = false;
};
}  // namespace Tarni::DriverSupport
