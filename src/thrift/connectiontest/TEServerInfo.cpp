#include "thrift/connectiontest/TEServerInfo.h"

#include <thrift/TApplicationException.h>

#include "TCLIService.h"

namespace Tarni::ThriftExtension
{
namespace Cli = apache::hive::service::rpc::thrift;

namespace
{
// One GetInfo value; false with the server's reason when it refused.
bool Ask(Cli::TCLIServiceClient& io_client, const Cli::TSessionHandle& in_session, Cli::TGetInfoType::type in_type,
         std::string& out_value)
{
    Cli::TGetInfoReq request;
    request.__set_sessionHandle(in_session);
    request.__set_infoType(in_type);
    Cli::TGetInfoResp response;
    try
    {
        io_client.GetInfo(response, request);
    }
    catch (const apache::thrift::TApplicationException& e)
    {
        out_value = e.what();
        return false;
    }
    if (response.status.statusCode != Cli::TStatusCode::SUCCESS_STATUS &&
        response.status.statusCode != Cli::TStatusCode::SUCCESS_WITH_INFO_STATUS)
    {
        out_value = response.status.errorMessage.empty() ? "refused" : response.status.errorMessage;
        return false;
    }
    out_value = response.infoValue.stringValue;
    return true;
}
}  // namespace

std::string TEServerInfo::Query(Cli::TCLIServiceClient& io_client, const Cli::TSessionHandle& in_session)
{
    std::string name;
    std::string version;
    if (!Ask(io_client, in_session, Cli::TGetInfoType::CLI_DBMS_NAME, name))
    {
        return "version unknown: " + name;
    }
    if (!Ask(io_client, in_session, Cli::TGetInfoType::CLI_DBMS_VER, version))
    {
        return (name.empty() ? "" : name + ", ") + "version unknown: " + version;
    }
    if (version.empty())
    {
        return (name.empty() ? "" : name + ", ") + "version unknown: the server gave none";
    }
    return (name.empty() ? "" : name + " ") + version;
}
}  // namespace Tarni::ThriftExtension
