#pragma once
// The TCLIService of the test server: opens and closes sessions, refuses a
// chosen user, and checks the credentials of a request without SASL or HTTP.
#include <atomic>
#include <string>

#include "TCLIService.h"

namespace Tarni::Testing
{
class TestTCLIHandler : public apache::hive::service::rpc::thrift::TCLIServiceNull
{
public:
    /// in_user / in_password: what a binary connection must send in its
    /// OpenSession request (nothing is checked when in_user is empty);
    /// in_refusedUser: a user whose session is refused with an error status.
    TestTCLIHandler(std::string in_user, std::string in_password, std::string in_refusedUser);

    void OpenSession(apache::hive::service::rpc::thrift::TOpenSessionResp& out_response,
                     const apache::hive::service::rpc::thrift::TOpenSessionReq& in_request) override;
    void CloseSession(apache::hive::service::rpc::thrift::TCloseSessionResp& out_response,
                      const apache::hive::service::rpc::thrift::TCloseSessionReq& in_request) override;

    /// Answers the server's name and version; refuses with an error status
    /// after SetRefuseGetInfo(true).
    void GetInfo(apache::hive::service::rpc::thrift::TGetInfoResp& out_response,
                 const apache::hive::service::rpc::thrift::TGetInfoReq& in_request) override;
    void SetRefuseGetInfo(bool in_refuse) { m_refuseGetInfo = in_refuse; }

    /// Whether a binary connection's OpenSession must carry credentials.
    void SetCheckRequestCredentials(bool in_check) { m_checkRequestCredentials = in_check; }

    int SessionsOpened() const { return m_opened; }
    int SessionsClosed() const { return m_closed; }

private:
    std::string m_user;
    std::string m_password;
    std::string m_refusedUser;
    bool m_checkRequestCredentials = false;
    bool m_refuseGetInfo = false;
    std::atomic<int> m_opened{0};
    std::atomic<int> m_closed{0};
};
}  // namespace Tarni::Testing
