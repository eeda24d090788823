#include "driversupport/DSProxyDescription.h"

#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
tarni_wstring DSProxyDescription::GetAuthority() const
{
    const bool ipv6 = host.find(u':') != tarni_wstring::npos;
    const tarni_wstring shownHost = ipv6 ? u"[" + host + u"]" : host;
    return shownHost + u":" + Support::StringConverter::FromNumber(static_cast<unsigned long long>(port));
}

tarni_wstring DSProxyDescription::ToDisplayText() const
{
    if (IsEmpty())
    {
        return u"(no proxy)";
    }
    tarni_wstring text = scheme + u"://";
    if (!user.empty() || !password.empty())
    {
        text += user;
        if (!password.empty())
        {
            text += u":****";
        }
        text += u"@";
    }
    return text + GetAuthority();
}
}  // namespace Tarni::DriverSupport
