#include "thrift/connectiontest/TEStepDetails.h"

#include "thrift/connectiontest/TEConnectionTarget.h"

namespace Tarni::ThriftExtension
{
std::string TEStepDetails::Mechanism(const TEConnectionTarget& in_target)
{
    using Authentication = TEConnectionTarget::Authentication;
    switch (in_target.m_transport)
    {
        case TETransportMode::SASL:
            if (in_target.m_authentication == Authentication::Kerberos)
            {
                return {};
            }
            return "SASL PLAIN as " +
                   (in_target.m_authentication == Authentication::None || in_target.m_user.empty() ? "anonymous"
                                                                                                    : in_target.m_user);
        case TETransportMode::HTTP:
            switch (in_target.m_authentication)
            {
                case Authentication::None:
                    return {};
                case Authentication::Plain:
                    return "HTTP Basic as " + in_target.m_user;
                case Authentication::BearerToken:
                    return "HTTP Bearer token";
                case Authentication::Kerberos:
                    // Described by the Kerberos authenticator, with the principals.
                    return {};
            }
            return {};
        case TETransportMode::Binary:
            break;
    }
    if (in_target.m_authentication == Authentication::None || in_target.m_user.empty())
    {
        return {};
    }
    return "user name" + std::string(in_target.m_secret.empty() ? "" : " and password") +
           " in the OpenSession request, as " + in_target.m_user;
}
}  // namespace Tarni::ThriftExtension
