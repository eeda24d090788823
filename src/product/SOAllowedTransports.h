#pragma once
// The Thrift transports a connection may use for a server type and an
// authentication mechanism. The main dialog offers exactly these in its
// transport list; the table is kept here, beside the other fixed tables of
// the configuration, so that every user of the keys reads the same rules.
#include <vector>

namespace Tarni::SparkODBC
{
class SOAllowedTransports
{
public:
    /// The transports allowed for the server type ("SparkServerType" value)
    /// and the mechanism ("AuthMech" value), in list order (Binary, SASL,
    /// HTTP). Never empty: an unknown server type or mechanism allows all
    /// three. The first entry is the transport to use when none is stored.
    static const std::vector<unsigned>& Get(unsigned in_serverType, unsigned in_authMech);

    static bool IsAllowed(unsigned in_serverType, unsigned in_authMech, unsigned in_transport);

    /// The first allowed transport: what a configuration without a stored
    /// "ThriftTransport" uses.
    static unsigned GetDefault(unsigned in_serverType, unsigned in_authMech);
};
}  // namespace Tarni::SparkODBC
