#include "platform/KerberosClient.h"

namespace Tarni::Platform
{
std::string KerberosClient::PrincipalName(const std::string& in_service, const std::string& in_host,
                                          const std::string& in_realm)
{
    std::string name = in_service + "/" + in_host;
    if (!in_realm.empty())
    {
        name += "@" + in_realm;
    }
    return name;
}

void KerberosClient::SetFailure(Failure in_failure, std::string in_detail)
{
    m_failure = in_failure;
    m_detail = std::move(in_detail);
}
}  // namespace Tarni::Platform
