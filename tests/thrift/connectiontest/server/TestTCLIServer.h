#pragma once
// A TCLIService server for the connection tests, on 127.0.0.1 and a free
// port, serving one connection at a time on its own thread: binary, SASL
// PLAIN or HTTP, each optionally over TLS. It checks the user and password it
// is given and keeps the headers of the last HTTP request.
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace apache::thrift::transport
{
class TServerSocket;
class TTransport;
}

namespace Tarni::Testing
{
class TestTCLIHandler;

class TestTCLIServer
{
public:
    enum class Mode
    {
        Binary,
        Sasl,
        Http,
    };

    struct Options
    {
        Mode mode = Mode::Binary;
        std::string user;
        std::string password;
        /// HTTP: the accepted Bearer token (besides user and password).
        std::string bearerToken;
        /// HTTP: the one path served; others answer 404.
        std::string httpPath = "/cliservice";
        /// A user whose OpenSession is refused with an error status.
        std::string refusedUser;
        /// TLS with this certificate chain and key (PEM); none when empty.
        std::string certificateFile;
        std::string keyFile;
        /// GetInfo answers with an error status.
        bool refuseGetInfo = false;
        /// The highest TLS version offered ("1.1"...); empty: the library's.
        std::string maxTls;
        /// Kerberos with the service's keytab instead of user and password:
        /// SASL GSSAPI, or HTTP Negotiate.
        std::string keytab;
    };

    explicit TestTCLIServer(Options in_options);
    ~TestTCLIServer();
    TestTCLIServer(const TestTCLIServer&) = delete;
    TestTCLIServer& operator=(const TestTCLIServer&) = delete;

    std::uint16_t Port() const { return m_port; }

    /// The headers of the last HTTP request, names in lower case.
    std::map<std::string, std::string> LastHeaders() const;
    int SessionsOpened() const;
    int SessionsClosed() const;
    /// The client principal of the last Kerberos authentication, and
    /// whether it delegated its ticket.
    std::string LastKerberosClient() const;
    bool LastKerberosDelegated() const;

    /// Serves until the process ends (the standalone server).
    void Wait();

private:
    void Serve();
    void ServeConnection(const std::shared_ptr<apache::thrift::transport::TTransport>& in_client);
    bool NegotiateSasl(apache::thrift::transport::TTransport& io_client);
    bool NegotiateGssapi(apache::thrift::transport::TTransport& io_client);
    bool AcceptNegotiate(const std::string& in_authorization);
    void ServeHttp(apache::thrift::transport::TTransport& io_client);

    Options m_options;
    std::shared_ptr<TestTCLIHandler> m_handler;
    std::shared_ptr<apache::thrift::transport::TServerSocket> m_listener;
    std::uint16_t m_port = 0;
    mutable std::mutex m_lock;
    std::map<std::string, std::string> m_lastHeaders;
    std::string m_kerberosClient;
    bool m_kerberosDelegated = false;
    bool m_stopping = false;
    std::thread m_thread;
};
}  // namespace Tarni::Testing
