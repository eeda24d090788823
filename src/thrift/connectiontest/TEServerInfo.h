#pragma once
// The server-info step of a connection test: asks the open session for the
// server's product name and version (GetInfo). A server that refuses the
// request still passes the test; the detail then says the version is unknown.
#include <string>

namespace apache::hive::service::rpc::thrift
{
class TCLIServiceClient;
class TSessionHandle;
}

namespace Tarni::ThriftExtension
{
class TEServerInfo
{
public:
    /// The step's detail: "<name> <version>", or "version unknown: <reason>".
    /// Transport failures are not caught: the connection itself is broken.
    static std::string Query(apache::hive::service::rpc::thrift::TCLIServiceClient& io_client,
                             const apache::hive::service::rpc::thrift::TSessionHandle& in_session);
};
}  // namespace Tarni::ThriftExtension
