#include "thrift/connectiontest/server/TestTCLIServer.h"

#include <algorithm>
#include <cctype>
#include <csignal>
#include <cstring>

#include <openssl/ssl.h>
#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/transport/TBufferTransports.h>
#include <thrift/transport/TSSLServerSocket.h>
#include <thrift/transport/TSSLSocket.h>
#include <thrift/transport/TServerSocket.h>
#include <thrift/transport/TTransportException.h>

#include "driversupport/DSBase64.h"
#include "thrift/connectiontest/server/TestKerberosAcceptor.h"
#include "thrift/connectiontest/server/TestTCLIHandler.h"

namespace Tarni::Testing
{
using apache::thrift::protocol::TBinaryProtocol;
using apache::thrift::transport::TBufferedTransport;
using apache::thrift::transport::TFramedTransport;
using apache::thrift::transport::TMemoryBuffer;
using apache::thrift::transport::TServerSocket;
using apache::thrift::transport::TSSLServerSocket;
using apache::thrift::transport::TSSLSocketFactory;
using apache::thrift::transport::TTransport;
using apache::thrift::transport::TTransportException;
namespace Cli = apache::hive::service::rpc::thrift;

namespace
{
// The server's TLS context, with a ceiling on the protocol version for the
// test of a client's minimum.
class ServerTlsFactory : public TSSLSocketFactory
{
public:
    ServerTlsFactory(const std::string& in_certificate, const std::string& in_key, const std::string& in_maxTls)
    {
        server(true);
        loadCertificate(in_certificate.c_str());
        loadPrivateKey(in_key.c_str());
        if (!in_maxTls.empty())
        {
            const int version = in_maxTls == "1.0" ? TLS1_VERSION : in_maxTls == "1.1" ? TLS1_1_VERSION : TLS1_2_VERSION;
            SSL_CTX_set_security_level(ctx_->get(), 0);
            SSL_CTX_set_cipher_list(ctx_->get(), "DEFAULT:@SECLEVEL=0");
            SSL_CTX_set_max_proto_version(ctx_->get(), version);
        }
    }
};

std::uint32_t GetLength(const std::uint8_t* in_bytes)
{
    return (std::uint32_t{in_bytes[0]} << 24) | (std::uint32_t{in_bytes[1]} << 16) |
           (std::uint32_t{in_bytes[2]} << 8) | std::uint32_t{in_bytes[3]};
}

void SendSasl(TTransport& io_client, std::uint8_t in_status, const std::string& in_payload)
{
    std::string frame(5, '\0');
    frame[0] = static_cast<char>(in_status);
    const auto length = static_cast<std::uint32_t>(in_payload.size());
    frame[1] = static_cast<char>(length >> 24);
    frame[2] = static_cast<char>(length >> 16);
    frame[3] = static_cast<char>(length >> 8);
    frame[4] = static_cast<char>(length);
    frame += in_payload;
    io_client.write(reinterpret_cast<const std::uint8_t*>(frame.data()), static_cast<std::uint32_t>(frame.size()));
    io_client.flush();
}

std::string ReadSasl(TTransport& io_client, std::uint8_t& out_status)
{
    std::uint8_t header[5];
    io_client.readAll(header, 5);
    out_status = header[0];
    const std::uint32_t length = GetLength(header + 1);
    if (length > 65536)
    {
        throw TTransportException(TTransportException::CORRUPTED_DATA, "SASL frame too large");
    }
    std::string payload(length, '\0');
    if (length > 0)
    {
        io_client.readAll(reinterpret_cast<std::uint8_t*>(payload.data()), length);
    }
    return payload;
}

std::string ReadLine(TTransport& io_client)
{
    std::string line;
    for (;;)
    {
        std::uint8_t byte;
        io_client.readAll(&byte, 1);
        if (byte == '\n')
        {
            return line;
        }
        if (byte != '\r')
        {
            line.push_back(static_cast<char>(byte));
        }
    }
}

void Respond(TTransport& io_client, const std::string& in_status, const std::string& in_body,
             const std::string& in_contentType)
{
    const std::string reply = "HTTP/1.1 " + in_status + "\r\nContent-Type: " + in_contentType +
                              "\r\nContent-Length: " + std::to_string(in_body.size()) + "\r\n\r\n" + in_body;
    io_client.write(reinterpret_cast<const std::uint8_t*>(reply.data()), static_cast<std::uint32_t>(reply.size()));
    io_client.flush();
}
}  // namespace

TestTCLIServer::TestTCLIServer(Options in_options)
    : m_options(std::move(in_options)),
      m_handler(std::make_shared<TestTCLIHandler>(m_options.user, m_options.password, m_options.refusedUser))
{
    // A client that gives up mid-reply must not end the test program (Windows
    // has no such signal: a send on a closed connection fails there).
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);
#endif
    m_handler->SetRefuseGetInfo(m_options.refuseGetInfo);
    m_handler->SetCheckRequestCredentials(m_options.mode == Mode::Binary && !m_options.user.empty());
    if (m_options.certificateFile.empty())
    {
        m_listener = std::make_shared<TServerSocket>("127.0.0.1", 0);
    }
    else
    {
        auto factory =
            std::make_shared<ServerTlsFactory>(m_options.certificateFile, m_options.keyFile, m_options.maxTls);
        m_listener = std::make_shared<TSSLServerSocket>("127.0.0.1", 0, factory);
    }
    m_listener->listen();
    m_port = static_cast<std::uint16_t>(m_listener->getPort());
    m_thread = std::thread([this] { Serve(); });
}

TestTCLIServer::~TestTCLIServer()
{
    {
        std::lock_guard<std::mutex> lock(m_lock);
        m_stopping = true;
    }
    m_listener->interrupt();
    m_listener->interruptChildren();
    if (m_thread.joinable())
    {
        m_thread.join();
    }
    m_listener->close();
}

void TestTCLIServer::Wait()
{
    m_thread.join();
}

std::map<std::string, std::string> TestTCLIServer::LastHeaders() const
{
    std::lock_guard<std::mutex> lock(m_lock);
    return m_lastHeaders;
}

int TestTCLIServer::SessionsOpened() const
{
    return m_handler->SessionsOpened();
}

int TestTCLIServer::SessionsClosed() const
{
    return m_handler->SessionsClosed();
}

void TestTCLIServer::Serve()
{
    for (;;)
    {
        std::shared_ptr<TTransport> client;
        try
        {
            client = m_listener->accept();
        }
        catch (const TTransportException&)
        {
            std::lock_guard<std::mutex> lock(m_lock);
            if (m_stopping)
            {
                return;
            }
            continue;
        }
        try
        {
            ServeConnection(client);
        }
        catch (const std::exception&)
        {
            // The client went away, failed TLS or spoke something else.
        }
        try
        {
            client->close();
        }
        catch (const std::exception&)
        {
        }
    }
}

void TestTCLIServer::ServeConnection(const std::shared_ptr<TTransport>& in_client)
{
    Cli::TCLIServiceProcessor processor(m_handler);
    switch (m_options.mode)
    {
        case Mode::Binary:
        {
            auto transport = std::make_shared<TBufferedTransport>(in_client);
            auto protocol = std::make_shared<TBinaryProtocol>(transport);
            while (processor.process(protocol, protocol, nullptr))
            {
            }
            break;
        }
        case Mode::Sasl:
        {
            if (!NegotiateSasl(*in_client))
            {
                return;
            }
            // After the negotiation, messages are length-prefixed frames.
            auto transport = std::make_shared<TFramedTransport>(in_client);
            auto protocol = std::make_shared<TBinaryProtocol>(transport);
            while (processor.process(protocol, protocol, nullptr))
            {
            }
            break;
        }
        case Mode::Http:
            ServeHttp(*in_client);
            break;
    }
}

std::string TestTCLIServer::LastKerberosClient() const
{
    std::lock_guard<std::mutex> lock(m_lock);
    return m_kerberosClient;
}

bool TestTCLIServer::LastKerberosDelegated() const
{
    std::lock_guard<std::mutex> lock(m_lock);
    return m_kerberosDelegated;
}

bool TestTCLIServer::NegotiateSasl(TTransport& io_client)
{
    if (!m_options.keytab.empty())
    {
        return NegotiateGssapi(io_client);
    }
    std::uint8_t status = 0;
    const std::string mechanism = ReadSasl(io_client, status);
    if (status != 1 || mechanism != "PLAIN")
    {
        SendSasl(io_client, 4, "Unsupported mechanism type " + mechanism);
        return false;
    }
    const std::string response = ReadSasl(io_client, status);
    // authzid NUL user NUL password
    const std::size_t first = response.find('\0');
    const std::size_t second = first == std::string::npos ? first : response.find('\0', first + 1);
    if ((status != 2 && status != 5) || second == std::string::npos)
    {
        SendSasl(io_client, 3, "Malformed PLAIN response");
        return false;
    }
    const std::string user = response.substr(first + 1, second - first - 1);
    const std::string password = response.substr(second + 1);
    if (user != m_options.user || password != m_options.password)
    {
        SendSasl(io_client, 3, "Error validating the login");
        return false;
    }
    SendSasl(io_client, 5, "");
    return true;
}

// SASL GSSAPI as the servers do it: context tokens until established, then a
// wrapped offer of "no security layer" and a 64 KiB buffer, whose wrapped
// answer must choose that layer.
bool TestTCLIServer::NegotiateGssapi(TTransport& io_client)
{
    std::uint8_t status = 0;
    const std::string mechanism = ReadSasl(io_client, status);
    if (status != 1 || mechanism != "GSSAPI")
    {
        SendSasl(io_client, 4, "Unsupported mechanism type " + mechanism);
        return false;
    }
    TestKerberosAcceptor acceptor(m_options.keytab);
    std::string token = ReadSasl(io_client, status);
    std::string reply;
    std::string error;
    while (!acceptor.IsEstablished())
    {
        if (!acceptor.Accept(token, reply, error))
        {
            SendSasl(io_client, 3, "GSS initiate failed: " + error);
            return false;
        }
        if (!acceptor.IsEstablished() || !reply.empty())
        {
            SendSasl(io_client, 2, reply);
            token = ReadSasl(io_client, status);
        }
    }
    std::string offer;
    acceptor.Wrap(std::string("\x01\x00\x10\x00", 4), offer);
    SendSasl(io_client, 2, offer);
    std::string choice;
    if (!acceptor.Unwrap(ReadSasl(io_client, status), choice) || choice.size() < 4 || choice[0] != 1)
    {
        SendSasl(io_client, 3, "No common protection layer between client and server");
        return false;
    }
    {
        std::lock_guard<std::mutex> lock(m_lock);
        m_kerberosClient = acceptor.ClientPrincipal();
        m_kerberosDelegated = acceptor.Delegated();
    }
    SendSasl(io_client, 5, "");
    return true;
}

// One request's "Negotiate" token, accepted by a context of its own.
bool TestTCLIServer::AcceptNegotiate(const std::string& in_authorization)
{
    if (in_authorization.compare(0, 10, "Negotiate ") != 0)
    {
        return false;
    }
    TestKerberosAcceptor acceptor(m_options.keytab);
    std::string reply;
    std::string error;
    if (!acceptor.Accept(DriverSupport::DSBase64::Decode(in_authorization.substr(10)), reply, error))
    {
        return false;
    }
    std::lock_guard<std::mutex> lock(m_lock);
    m_kerberosClient = acceptor.ClientPrincipal();
    m_kerberosDelegated = acceptor.Delegated();
    return true;
}

void TestTCLIServer::ServeHttp(TTransport& io_client)
{
    Cli::TCLIServiceProcessor processor(m_handler);
    for (;;)
    {
        const std::string requestLine = ReadLine(io_client);
        std::map<std::string, std::string> headers;
        for (std::string line = ReadLine(io_client); !line.empty(); line = ReadLine(io_client))
        {
            const std::size_t colon = line.find(':');
            if (colon == std::string::npos)
            {
                continue;
            }
            std::string name = line.substr(0, colon);
            std::transform(name.begin(), name.end(), name.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            std::size_t start = colon + 1;
            while (start < line.size() && line[start] == ' ')
            {
                ++start;
            }
            headers[name] = line.substr(start);
        }
        {
            std::lock_guard<std::mutex> lock(m_lock);
            m_lastHeaders = headers;
        }
        std::string body(std::stoul(headers.count("content-length") ? headers["content-length"] : "0"), '\0');
        if (!body.empty())
        {
            io_client.readAll(reinterpret_cast<std::uint8_t*>(body.data()), static_cast<std::uint32_t>(body.size()));
        }

        const std::size_t pathStart = requestLine.find(' ');
        const std::size_t pathEnd = requestLine.find(' ', pathStart + 1);
        const std::string path = requestLine.substr(pathStart + 1, pathEnd - pathStart - 1);
        if (requestLine.compare(0, 5, "POST ") != 0 || path != m_options.httpPath)
        {
            Respond(io_client, "404 Not Found", "no service at " + path, "text/plain");
            continue;
        }
        const std::string authorization = headers["authorization"];
        const bool basicOk =
            !m_options.user.empty() &&
            authorization == "Basic " + DriverSupport::DSBase64::Encode(m_options.user + ":" + m_options.password);
        const bool bearerOk = !m_options.bearerToken.empty() && authorization == "Bearer " + m_options.bearerToken;
        const bool negotiateOk = !m_options.keytab.empty() && AcceptNegotiate(authorization);
        const bool open = m_options.user.empty() && m_options.bearerToken.empty() && m_options.keytab.empty();
        if (!open && !basicOk && !bearerOk && !negotiateOk)
        {
            Respond(io_client, "401 Unauthorized", "Authentication failed", "text/plain");
            continue;
        }
        auto input = std::make_shared<TMemoryBuffer>(reinterpret_cast<std::uint8_t*>(body.data()),
                                                     static_cast<std::uint32_t>(body.size()));
        auto output = std::make_shared<TMemoryBuffer>();
        auto inputProtocol = std::make_shared<TBinaryProtocol>(input);
        auto outputProtocol = std::make_shared<TBinaryProtocol>(output);
        processor.process(inputProtocol, outputProtocol, nullptr);
        Respond(io_client, "200 OK", output->getBufferAsString(), "application/x-thrift");
    }
}
}  // namespace Tarni::Testing
