#pragma once
// An OAuth 2.0 token end point for the connection tests: HTTPS on 127.0.0.1
// and a free port, one request at a time on its own thread. It grants
// client_credentials to the one client it knows (HTTP basic authentication)
// and answers others as an authorization server does: 401 with a JSON error.
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace apache::thrift::transport
{
class TServerSocket;
}

namespace Tarni::Testing
{
class TestTokenEndPoint
{
public:
    struct Options
    {
        std::string clientId;
        std::string clientSecret;
        /// The token granted.
        std::string token;
        /// The certificate chain and key (PEM).
        std::string certificateFile;
        std::string keyFile;
    };

    explicit TestTokenEndPoint(Options in_options);
    ~TestTokenEndPoint();
    TestTokenEndPoint(const TestTokenEndPoint&) = delete;
    TestTokenEndPoint& operator=(const TestTokenEndPoint&) = delete;

    std::uint16_t Port() const { return m_port; }

    /// The body of the last request.
    std::string LastBody() const;

private:
    void Serve();

    Options m_options;
    std::shared_ptr<apache::thrift::transport::TServerSocket> m_listener;
    std::uint16_t m_port = 0;
    mutable std::mutex m_lock;
    std::string m_lastBody;
    std::thread m_thread;
};
}  // namespace Tarni::Testing
