#pragma once
// The HTTP client transport of the connection test: each Thrift message is
// POSTed to the server's path with the connection's headers (user agent,
// authorisation, custom headers, session tag). Unlike the stock client it
// carries arbitrary headers, keeps the status and reason of a refused reply,
// and can address an HTTP proxy with the absolute URL.
#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include <thrift/transport/THttpTransport.h>

namespace Tarni::ThriftExtension
{
class TEHttpClientTransport : public apache::thrift::transport::THttpTransport
{
public:
    /// in_hostHeader: the value of the Host header ("host:port");
    /// in_target: the request target, a path ("/cliservice") or, through a
    /// plain HTTP proxy, the absolute URL.
    TEHttpClientTransport(std::shared_ptr<apache::thrift::transport::TTransport> in_transport,
                          std::string in_hostHeader, std::string in_target,
                          std::map<std::string, std::string> in_headers);
    ~TEHttpClientTransport() override;

    void flush() override;

    /// A source of the Authorization header's value, asked once per request
    /// (a Kerberos token is good for one request only).
    void SetAuthorizationSource(std::function<std::string()> in_source) { m_authorizationSource = std::move(in_source); }

    /// The status and reason of the last reply that was not 200; 0 and empty
    /// before one.
    int GetRefusedStatus() const { return m_refusedStatus; }
    const std::string& GetRefusedReason() const { return m_refusedReason; }

    /// Splits "HTTP/1.1 404 Not Found" into status and reason; false when the
    /// line is not an HTTP status line.
    static bool ParseStatusLine(const std::string& in_line, int& out_status, std::string& out_reason);

protected:
    void parseHeader(char* in_header) override;
    bool parseStatusLine(char* in_status) override;

private:
    std::string m_hostHeader;
    std::string m_target;
    std::map<std::string, std::string> m_headers;
    std::function<std::string()> m_authorizationSource;
    int m_refusedStatus = 0;
    std::string m_refusedReason;
};
}  // namespace Tarni::ThriftExtension
