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

void TestTCLIHandler::CloseSession(Cli::TCloseSessionResp& out_response, const Cli::TCloseSessionReq&)
{
    ++m_closed;
    out_response.status.__set_statusCode(Cli::TStatusCode::SUCCESS_STATUS);
}
}  // namespace Tarni::Testing
