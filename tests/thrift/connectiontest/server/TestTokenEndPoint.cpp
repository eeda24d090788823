#include "thrift/connectiontest/server/TestTokenEndPoint.h"

#include <cctype>

#include <thrift/transport/TSSLServerSocket.h>
#include <thrift/transport/TSSLSocket.h>
#include <thrift/transport/TTransportException.h>

#include "driversupport/DSBase64.h"

namespace Tarni::Testing
{
using apache::thrift::transport::TSSLServerSocket;
using apache::thrift::transport::TSSLSocketFactory;
using apache::thrift::transport::TTransport;

namespace
{
std::string ReadLine(TTransport& io_client)
{
    std::string line;
    for (std::uint8_t byte = 0; io_client.readAll(&byte, 1), byte != '\n';)
    {
        if (byte != '\r')
        {
            line.push_back(static_cast<char>(byte));
        }
    }
    return line;
}

// application/x-www-form-urlencoded back to text.
std::string FormDecode(const std::string& in_text)
{
    std::string text;
    for (std::size_t i = 0; i < in_text.size(); ++i)
    {
        if (in_text[i] == '+')
        {
            text.push_back(' ');
        }
        else if (in_text[i] == '%' && i + 2 < in_text.size())
        {
            text.push_back(static_cast<char>(std::stoi(in_text.substr(i + 1, 2), nullptr, 16)));
            i += 2;
        }
        else
        {
            text.push_back(in_text[i]);
        }
    }
    return text;
}

// The client ID and secret of a basic Authorization value: each form-encoded
// before they are joined with ":".
bool Credentials(const std::string& in_authorization, std::string& out_id, std::string& out_secret)
{
    if (in_authorization.rfind("Basic ", 0) != 0)
    {
        return false;
    }
    const std::string joined = DriverSupport::DSBase64::Decode(in_authorization.substr(6));
    const std::size_t colon = joined.find(':');
    if (colon == std::string::npos)
    {
        return false;
    }
    out_id = FormDecode(joined.substr(0, colon));
    out_secret = FormDecode(joined.substr(colon + 1));
    return true;
}

void Respond(TTransport& io_client, const std::string& in_status, const std::string& in_json)
{
    const std::string reply = "HTTP/1.1 " + in_status + "\r\nContent-Type: application/json\r\nContent-Length: " +
                              std::to_string(in_json.size()) + "\r\nConnection: close\r\n\r\n" + in_json;
    io_client.write(reinterpret_cast<const std::uint8_t*>(reply.data()), static_cast<std::uint32_t>(reply.size()));
    io_client.flush();
}
}  // namespace

TestTokenEndPoint::TestTokenEndPoint(Options in_options) : m_options(std::move(in_options))
{
    auto factory = std::make_shared<TSSLSocketFactory>();
    factory->server(true);
    factory->loadCertificate(m_options.certificateFile.c_str());
    factory->loadPrivateKey(m_options.keyFile.c_str());
    m_listener = std::make_shared<TSSLServerSocket>("127.0.0.1", 0, factory);
    m_listener->listen();
    m_port = static_cast<std::uint16_t>(m_listener->getPort());
    m_thread = std::thread([this] { Serve(); });
}

TestTokenEndPoint::~TestTokenEndPoint()
{
    m_listener->interrupt();
    m_thread.join();
    m_listener->close();
}

std::string TestTokenEndPoint::LastBody() const
{
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_lastBody;
}

void TestTokenEndPoint::Serve()
{
    for (;;)
    {
        std::shared_ptr<TTransport> client;
        try
        {
            client = m_listener->accept();
        }
        catch (const std::exception&)
        {
            return;  // interrupted
        }
        try
        {
            ReadLine(*client);
            std::string authorization;
            std::size_t length = 0;
            for (std::string line = ReadLine(*client); !line.empty(); line = ReadLine(*client))
            {
                std::string name = line.substr(0, line.find(':'));
                for (char& c : name)
                {
                    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
                }
                const std::string value = line.substr(line.find(':') + 2);
                if (name == "authorization")
                {
                    authorization = value;
                }
                else if (name == "content-length")
                {
                    length = std::stoul(value);
                }
            }
            std::string body(length, '\0');
            if (length > 0)
            {
                client->readAll(reinterpret_cast<std::uint8_t*>(body.data()), static_cast<std::uint32_t>(length));
            }
            {
                const std::lock_guard<std::mutex> hold(m_lock);
                m_lastBody = body;
            }
            std::string id;
            std::string secret;
            const bool known = Credentials(authorization, id, secret) && id == m_options.clientId &&
                               secret == m_options.clientSecret;
            if (body.rfind("grant_type=client_credentials", 0) != 0)
            {
                Respond(*client, "400 Bad Request", R"({"error":"unsupported_grant_type"})");
            }
            else if (!known)
            {
                Respond(*client, "401 Unauthorized",
                        R"({"error":"invalid_client","error_description":"Client authentication failed \"(bad secret)\""})");
            }
            else
            {
                Respond(*client, "200 OK",
                        R"({"token_type":"Bearer","expires_in":3600,"access_token":")" + m_options.token + "\"}");
            }
            client->close();
        }
        catch (const std::exception&)
        {
            // A client that went away; serve the next one.
        }
    }
}
}  // namespace Tarni::Testing
