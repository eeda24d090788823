#include "thrift/connectiontest/server/TestTCLIHandler.h"

namespace Tarni::Testing
{
namespace Cli = apache::hive::service::rpc::thrift;

TestTCLIHandler::TestTCLIHandler(std::string in_user, std::string in_password, std::string in_refusedUser)
    : m_user(std::move(in_user)), m_password(std::move(in_password)), m_refusedUser(std::move(in_refusedUser))
{
}

void TestTCLIHandler::OpenSession(Cli::TOpenSessionResp& out_response, const Cli::TOpenSessionReq& in_request)
{
    if (!m_refusedUser.empty() && in_request.username == m_refusedUser)
    {
        out_response.status.__set_statusCode(Cli::TStatusCode::ERROR_STATUS);
        out_response.status.__set_errorMessage("User " + m_refusedUser + " may not open a session");
        out_response.status.__set_sqlState("08004");
        return;
    }
    if (m_checkRequestCredentials && (in_request.username != m_user || in_request.password != m_password))
    {
        out_response.status.__set_statusCode(Cli::TStatusCode::ERROR_STATUS);
        out_response.status.__set_errorMessage("Error validating the login");
        return;
    }
    ++m_opened;
    out_response.status.__set_statusCode(Cli::TStatusCode::SUCCESS_STATUS);
    out_response.__set_serverProtocolVersion(Cli::TProtocolVersion::HIVE_CLI_SERVICE_PROTOCOL_V10);
    Cli::THandleIdentifier id;
    id.guid = std::string(16, '\x01');
    id.secret = std::string(16, '\x02');
    out_response.sessionHandle.__set_sessionId(id);
    out_response.__isset.sessionHandle = true;
}

void TestTCLIHandler::GetInfo(Cli::TGetInfoResp& out_response, const Cli::TGetInfoReq& in_request)
{
    if (m_refuseGetInfo)
    {
        out_response.status.__set_statusCode(Cli::TStatusCode::ERROR_STATUS);
        out_response.status.__set_errorMessage("GetInfo is not allowed here");
        return;
    }
    out_response.status.__set_statusCode(Cli::TStatusCode::SUCCESS_STATUS);
    if (in_request.infoType == Cli::TGetInfoType::CLI_DBMS_NAME)
    {
        out_response.infoValue.__set_stringValue("Tarni Test Server");
    }
    else if (in_request.infoType == Cli::TGetInfoType::CLI_DBMS_VER)
    {
        out_response.infoValue.__set_stringValue("3.5.1");
    }
}

void TestTCLIHandler::CloseSession(Cli::TCloseSessionResp& out_response, const Cli::TCloseSessionReq&)
{
    ++m_closed;
    out_response.status.__set_statusCode(Cli::TStatusCode::SUCCESS_STATUS);
}
}  // namespace Tarni::Testing
