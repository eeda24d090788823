#pragma once
// The fixed tables that translate between what the dialogs show and what is
// stored: authentication mechanisms, server types, Thrift transports, service
// discovery modes and OAuth flows, each with its reverse map (name -> value).
#include <optional>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::SparkODBC
{
class SOConfigurationTables
{
public:
    enum ServiceDiscoveryMode : unsigned
    {
        SD_NONE = 0,
        SD_ZOOKEEPER = 1,
        SD_AOSS = 2,
        SD_UNKNOWN = 3,
    };
    enum ServerType : unsigned
    {
        SERVER_SHARK = 1,
        SERVER_SHARK2 = 2,
        SERVER_SPARK_THRIFT = 3,
        SERVER_DFI = 4,
    };
    enum Transport : unsigned
    {
        TRANSPORT_BINARY = 0,
        TRANSPORT_SASL = 1,
        TRANSPORT_HTTP = 2,
    };
    enum AuthMech : unsigned
    {
        AUTH_NONE = 0,
        AUTH_KERBEROS = 1,
        AUTH_USER_NAME = 2,
        AUTH_USER_NAME_PASSWORD = 3,
        AUTH_USER_NAME_PASSWORD_SSL = 4,
        AUTH_HDINSIGHT_EMULATOR = 5,
        AUTH_HDINSIGHT_SERVICE = 6,
        AUTH_HTTP = 7,
        AUTH_HTTPS = 8,
        AUTH_KERBEROS_HTTP = 9,
        AUTH_KERBEROS_HTTPS = 10,
        AUTH_OAUTH2 = 11,
        AUTH_SAML2 = 12,
        AUTH_MAPR_SASL = 13,
        AUTH_END = 14,  ///< one past the table: "unknown mechanism"
    };

    /// Index = stored "AuthMech" value (14 entries).
    static const std::vector<tarni_wstring>& AuthMechNames();
    /// Index + 1 = stored "SparkServerType" value.
    static const std::vector<tarni_wstring>& ServerTypeNames();
    /// Index = stored "ThriftTransport" value.
    static const std::vector<tarni_wstring>& TransportNames();
    /// Index = mode; the last entry is "Unknown".
    static const std::vector<tarni_wstring>& ServiceDiscoveryModeNames();
    /// Index = stored "Auth_Flow" value.
    static const std::vector<tarni_wstring>& OAuthFlowNames();

    /// Reverse maps: the value for an exact display name, or nothing.
    static std::optional<unsigned> AuthMechFromName(tarni_wstring_view in_name);
    static std::optional<unsigned> ServerTypeFromName(tarni_wstring_view in_name);
    static std::optional<unsigned> TransportFromName(tarni_wstring_view in_name);
    static std::optional<unsigned> OAuthFlowFromName(tarni_wstring_view in_name);
};
}  // namespace Tarni::SparkODBC
