#include "product/SOAllowedTransports.h"

#include <algorithm>

#include "product/SOConfigurationTables.h"

namespace Tarni::SparkODBC
{
namespace
{
using T = SOConfigurationTables;

const std::vector<unsigned> ALL = {T::TRANSPORT_BINARY, T::TRANSPORT_SASL, T::TRANSPORT_HTTP};
const std::vector<unsigned> BINARY = {T::TRANSPORT_BINARY};
const std::vector<unsigned> BINARY_SASL = {T::TRANSPORT_BINARY, T::TRANSPORT_SASL};
const std::vector<unsigned> SASL = {T::TRANSPORT_SASL};
const std::vector<unsigned> SASL_HTTP = {T::TRANSPORT_SASL, T::TRANSPORT_HTTP};
const std::vector<unsigned> HTTP = {T::TRANSPORT_HTTP};
}  // namespace

const std::vector<unsigned>& SOAllowedTransports::Get(unsigned in_serverType, unsigned in_authMech)
{
    switch (in_serverType)
    {
        case T::SERVER_SHARK:
            // The first Shark server speaks the old protocol over a plain socket only.
            return BINARY;
        case T::SERVER_DFI:
            // The DFI service is reached through its HTTPS end point only.
            return HTTP;
        case T::SERVER_SHARK2:
        case T::SERVER_SPARK_THRIFT:
            break;
        default:
            return ALL;
    }
    switch (in_authMech)
    {
        case T::AUTH_NONE:
            return ALL;
        case T::AUTH_USER_NAME:
            // The user name travels in the session request (Binary) or as a SASL PLAIN identity.
            return BINARY_SASL;
        case T::AUTH_KERBEROS:
        case T::AUTH_USER_NAME_PASSWORD:
        case T::AUTH_USER_NAME_PASSWORD_SSL:
            // GSSAPI and PLAIN need a SASL exchange, or HTTP's own negotiation and basic authentication.
            return SASL_HTTP;
        case T::AUTH_HDINSIGHT_EMULATOR:
        case T::AUTH_HDINSIGHT_SERVICE:
        case T::AUTH_HTTP:
        case T::AUTH_HTTPS:
        case T::AUTH_KERBEROS_HTTP:
        case T::AUTH_KERBEROS_HTTPS:
        case T::AUTH_OAUTH2:
        case T::AUTH_SAML2:
            // Gateways and token or browser flows: HTTP headers carry the credentials.
            return HTTP;
        case T::AUTH_MAPR_SASL:
            return SASL;
        default:
            return ALL;
    }
}

bool SOAllowedTransports::IsAllowed(unsigned in_serverType, unsigned in_authMech, unsigned in_transport)
{
    const auto& allowed = Get(in_serverType, in_authMech);
    return std::find(allowed.begin(), allowed.end(), in_transport) != allowed.end();
}

unsigned SOAllowedTransports::GetDefault(unsigned in_serverType, unsigned in_authMech)
{
    return Get(in_serverType, in_authMech).front();
}
}  // namespace Tarni::SparkODBC
