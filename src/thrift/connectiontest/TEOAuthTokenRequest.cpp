#include "thrift/connectiontest/TEOAuthTokenRequest.h"

#include <cctype>
#include <memory>

#include <thrift/transport/TSSLSocket.h>
#include <thrift/transport/TTransportException.h>

#include "driversupport/DSBase64.h"
#include "driversupport/DSCancellation.h"
#include "platform/TcpConnector.h"
#include "thrift/TEException.h"
#include "thrift/connectiontest/TEConnectionTarget.h"
#include "thrift/connectiontest/TETlsSocketFactory.h"

namespace Tarni::ThriftExtension
{
using apache::thrift::transport::TSSLException;
using apache::thrift::transport::TSSLSocket;
using apache::thrift::transport::TTransportException;
using Platform::TcpConnector;

namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEOAuthTokenRequest";

/// The largest answer read from a token end point.
constexpr std::size_t MAX_ANSWER = 1024 * 1024;

[[noreturn]] void Fail(const char16_t* in_key, const std::vector<std::string>& in_texts)
{
    throw TEException::WithTexts(in_key, in_texts);
}

/// application/x-www-form-urlencoded, also used for the basic credentials.
std::string FormEncode(const std::string& in_text)
{
    static const char* const hex = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : in_text)
    {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) != 0 || c == '-' || c == '.' || c == '_' || c == '~')
        {
            encoded.push_back(c);
        }
        else if (c == ' ')
        {
            encoded.push_back('+');
        }
        else
        {
            encoded += {'%', hex[byte >> 4], hex[byte & 15]};
        }
    }
    return encoded;
}

std::string Lower(std::string in_text)
{
    for (char& c : in_text)
    {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return in_text;
}

// Wipes a string that held a secret.
struct Wipe
{
    std::string& text;
    ~Wipe() { std::fill(text.begin(), text.end(), '\0'); }
};

// Shuts the socket down when the test is cancelled, which ends a wait in it.
class CancelHook
{
public:
    CancelHook(DriverSupport::DSCancellation& io_cancellation, std::intptr_t in_socket)
        : m_cancellation(io_cancellation)
    {
        m_id = m_cancellation.AddHandler([in_socket] { TcpConnector::Shutdown(in_socket); });
    }
    ~CancelHook() { m_cancellation.RemoveHandler(m_id); }
    CancelHook(const CancelHook&) = delete;
    CancelHook& operator=(const CancelHook&) = delete;

private:
    DriverSupport::DSCancellation& m_cancellation;
    std::size_t m_id = 0;
};

struct Answer
{
    int status = 0;
    std::string reason;
    std::string body;
};

/// Decodes a "Transfer-Encoding: chunked" body; false when it is malformed.
bool Unchunk(const std::string& in_body, std::string& out_body)
{
    out_body.clear();
    std::size_t at = 0;
    for (;;)
    {
        const std::size_t lineEnd = in_body.find("\r\n", at);
        if (lineEnd == std::string::npos)
        {
            return false;
        }
        std::size_t size = 0;
        try
        {
            size = std::stoul(in_body.substr(at, lineEnd - at), nullptr, 16);
        }
        catch (const std::exception&)
        {
            return false;
        }
        at = lineEnd + 2;
        if (size == 0)
        {
            return true;
        }
        if (at + size > in_body.size())
        {
            return false;
        }
        out_body.append(in_body, at, size);
        at += size + 2;
    }
}

/// Whether the received bytes hold a whole answer: the headers, and the body
/// by its length or up to the last chunk.
bool IsComplete(const std::string& in_received)
{
    const std::size_t headerEnd = in_received.find("\r\n\r\n");
    if (headerEnd == std::string::npos)
    {
        return false;
    }
    const std::string headers = Lower(in_received.substr(0, headerEnd));
    if (headers.find("\r\ntransfer-encoding: chunked") != std::string::npos)
    {
        return in_received.find("\r\n0\r\n\r\n", headerEnd) != std::string::npos;
    }
    const std::size_t length = headers.find("\r\ncontent-length:");
    if (length == std::string::npos)
    {
        return false;  // up to the end of the connection
    }
    return in_received.size() - headerEnd - 4 >= std::strtoul(headers.c_str() + length + 17, nullptr, 10);
}

Answer ReadAnswer(TSSLSocket& io_socket, const std::string& in_authority)
{
    std::string received;
    std::uint8_t buffer[4096];
    while (!IsComplete(received) && received.size() <= MAX_ANSWER)
    {
        std::uint32_t n = 0;
        try
        {
            n = io_socket.read(buffer, sizeof(buffer));
        }
        catch (const TTransportException&)
        {
            // The end point may end the connection without a TLS goodbye
            // once it has answered; before an answer it is a failure.
            if (received.empty())
            {
                throw;
            }
        }
        if (n == 0)
        {
            break;
        }
        received.append(reinterpret_cast<const char*>(buffer), n);
    }
    Answer answer;
    const std::size_t headerEnd = received.find("\r\n\r\n");
    const std::size_t statusEnd = received.find("\r\n");
    const std::string statusLine = received.substr(0, statusEnd);
    const std::size_t firstSpace = statusLine.find(' ');
    if (headerEnd == std::string::npos || statusLine.rfind("HTTP/", 0) != 0 || firstSpace == std::string::npos)
    {
        Fail(u"TEOAuthNoToken", {in_authority, "the answer is not HTTP"});
    }
    const std::size_t secondSpace = statusLine.find(' ', firstSpace + 1);
    try
    {
        answer.status = std::stoi(statusLine.substr(firstSpace + 1, secondSpace - firstSpace - 1));
    }
    catch (const std::exception&)
    {
        Fail(u"TEOAuthNoToken", {in_authority, "the answer is not HTTP"});
    }
    answer.reason = secondSpace == std::string::npos ? std::string() : statusLine.substr(secondSpace + 1);
    const std::string headers = Lower(received.substr(statusEnd, headerEnd - statusEnd));
    answer.body = received.substr(headerEnd + 4);
    const std::size_t length = headers.find("\r\ncontent-length:");
    if (headers.find("\r\ntransfer-encoding: chunked") != std::string::npos)
    {
        std::string body;
        if (!Unchunk(answer.body, body))
        {
            Fail(u"TEOAuthNoToken", {in_authority, "the chunked answer is incomplete"});
        }
        answer.body = body;
    }
    else if (length != std::string::npos)
    {
        const std::size_t size = std::strtoul(headers.c_str() + length + 17, nullptr, 10);
        if (answer.body.size() > size)
        {
            answer.body.resize(size);
        }
    }
    return answer;
}
}  // namespace

TEOAuthTokenRequest::EndPoint TEOAuthTokenRequest::ParseEndPoint(const std::string& in_url)
{
    const std::string scheme = "https://";
    if (Lower(in_url.substr(0, scheme.size())) != scheme)
    {
        Fail(u"TEOAuthTokenEndPointInvalid", {in_url});
    }
    EndPoint endPoint;
    const std::string rest = in_url.substr(scheme.size());
    const std::size_t pathStart = rest.find_first_of("/?#");
    std::string authority = rest.substr(0, pathStart);
    if (pathStart != std::string::npos)
    {
        endPoint.path = rest.substr(pathStart);
        endPoint.path = endPoint.path.substr(0, endPoint.path.find('#'));
        if (endPoint.path.front() != '/')
        {
            endPoint.path.insert(0, "/");
        }
    }
    if (authority.find('@') != std::string::npos)
    {
        // Credentials in the URL would travel outside the secret's protection.
        Fail(u"TEOAuthTokenEndPointInvalid", {in_url});
    }
    std::string port;
    if (!authority.empty() && authority.front() == '[')
    {
        const std::size_t close = authority.find(']');
        if (close == std::string::npos || (close + 1 < authority.size() && authority[close + 1] != ':'))
        {
            Fail(u"TEOAuthTokenEndPointInvalid", {in_url});
        }
        endPoint.host = authority.substr(1, close - 1);
        port = close + 1 < authority.size() ? authority.substr(close + 2) : std::string();
    }
    else
    {
        const std::size_t colon = authority.find(':');
        endPoint.host = authority.substr(0, colon);
        port = colon == std::string::npos ? std::string() : authority.substr(colon + 1);
    }
    if (endPoint.host.empty() || endPoint.host.find_first_of(" \t") != std::string::npos)
    {
        Fail(u"TEOAuthTokenEndPointInvalid", {in_url});
    }
    if (!port.empty())
    {
        const bool digits = port.size() <= 5 && port.find_first_not_of("0123456789") == std::string::npos;
        const unsigned long number = digits ? std::stoul(port) : 0;
        if (number == 0 || number > 65535)
        {
            Fail(u"TEOAuthTokenEndPointInvalid", {in_url});
        }
        endPoint.port = static_cast<std::uint16_t>(number);
    }
    return endPoint;
}

std::string TEOAuthTokenRequest::JsonString(const std::string& in_json, const std::string& in_name)
{
    // A scanner for the members of the outermost object: strings are decoded,
    // nested values skipped.
    int depth = 0;
    bool expectValue = false;
    bool matched = false;
    std::size_t at = 0;
    const auto readString = [&in_json, &at](std::string& out_text) {
        out_text.clear();
        for (++at; at < in_json.size(); ++at)
        {
            const char c = in_json[at];
            if (c == '"')
            {
                ++at;
                return true;
            }
            if (c != '\\')
            {
                out_text.push_back(c);
                continue;
            }
            if (++at >= in_json.size())
            {
                return false;
            }
            switch (in_json[at])
            {
                case 'n': out_text.push_back('\n'); break;
                case 't': out_text.push_back('\t'); break;
                case 'r': out_text.push_back('\r'); break;
                case 'b': out_text.push_back('\b'); break;
                case 'f': out_text.push_back('\f'); break;
                case 'u':
                {
                    if (at + 4 >= in_json.size())
                    {
                        return false;
                    }
                    const unsigned code = static_cast<unsigned>(std::stoul(in_json.substr(at + 1, 4), nullptr, 16));
                    at += 4;
                    // UTF-8 of the code unit; pairs of surrogates are rare in
                    // these answers and come out as two replacement marks.
                    if (code < 0x80)
                    {
                        out_text.push_back(static_cast<char>(code));
                    }
                    else if (code < 0x800)
                    {
                        out_text.push_back(static_cast<char>(0xC0 | (code >> 6)));
                        out_text.push_back(static_cast<char>(0x80 | (code & 0x3F)));
                    }
                    else if (code >= 0xD800 && code < 0xE000)
                    {
                        out_text += "\xEF\xBF\xBD";
                    }
                    else
                    {
                        out_text.push_back(static_cast<char>(0xE0 | (code >> 12)));
                        out_text.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
                        out_text.push_back(static_cast<char>(0x80 | (code & 0x3F)));
                    }
                    break;
                }
                default: out_text.push_back(in_json[at]); break;
            }
        }
        return false;
    };
    std::string text;
    while (at < in_json.size())
    {
        const char c = in_json[at];
        if (c == '"')
        {
            if (!readString(text))
            {
                return {};
            }
            if (depth != 1)
            {
                continue;
            }
            if (expectValue)
            {
                if (matched)
                {
                    return text;
                }
                expectValue = false;
            }
            else
            {
                matched = text == in_name;
            }
            continue;
        }
        if (c == '{' || c == '[')
        {
            if (depth == 1 && expectValue && matched)
            {
                return {};
            }
            ++depth;
        }
        else if (c == '}' || c == ']')
        {
            --depth;
            if (depth == 1)
            {
                expectValue = false;
            }
        }
        else if (depth == 1 && c == ':')
        {
            expectValue = true;
        }
        else if (depth == 1 && c == ',')
        {
            expectValue = false;
            matched = false;
        }
        ++at;
    }
    return {};
}

std::string TEOAuthTokenRequest::Fetch(const TEConnectionTarget& in_target,
                                       DriverSupport::DSCancellation& io_cancellation, Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "Fetch");
    const EndPoint endPoint = ParseEndPoint(in_target.m_tokenEndPoint);
    const bool ipv6 = endPoint.host.find(':') != std::string::npos;
    const std::string authority =
        (ipv6 ? "[" + endPoint.host + "]" : endPoint.host) + ":" + std::to_string(endPoint.port);
    if (io_cancellation.IsCancelled())
    {
        throw TEException(u"TETestCancelled", {});
    }

    const TcpConnector::Result connected = TcpConnector::Connect(endPoint.host, endPoint.port, in_target.m_timeoutMs);
    const std::string seconds = std::to_string(in_target.m_timeoutMs / 1000);
    switch (connected.failure)
    {
        case TcpConnector::Failure::None:
            break;
        case TcpConnector::Failure::HostNotFound:
            Fail(u"TEHostNotFound", {endPoint.host, connected.detail});
        case TcpConnector::Failure::Refused:
            Fail(u"TEConnectionRefused", {authority});
        case TcpConnector::Failure::TimedOut:
            Fail(u"TEConnectTimeout", {authority, seconds});
        case TcpConnector::Failure::Unreachable:
        case TcpConnector::Failure::Other:
            Fail(u"TEConnectFailed", {authority, connected.detail});
    }

    TETlsSocketFactory tls(in_target);
    const std::shared_ptr<TSSLSocket> socket = tls.Wrap(static_cast<THRIFT_SOCKET>(connected.socket), endPoint.host);
    socket->setRecvTimeout(in_target.m_timeoutMs);
    socket->setSendTimeout(in_target.m_timeoutMs);
    const CancelHook hook(io_cancellation, connected.socket);

    std::string body = "grant_type=client_credentials";
    if (!in_target.m_scope.empty())
    {
        body += "&scope=" + FormEncode(in_target.m_scope);
    }
    std::string credentials = FormEncode(in_target.m_clientId) + ":" + FormEncode(in_target.m_clientSecret);
    const Wipe wipeCredentials{credentials};
    std::string request = "POST " + endPoint.path + " HTTP/1.1\r\nHost: " + authority +
                          "\r\nUser-Agent: " + in_target.m_settings.m_userAgent +
                          "\r\nAccept: application/json\r\nConnection: close\r\n"
                          "Content-Type: application/x-www-form-urlencoded\r\nAuthorization: Basic " +
                          DriverSupport::DSBase64::Encode(credentials) +
                          "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    const Wipe wipeRequest{request};

    Answer answer;
    try
    {
        socket->write(reinterpret_cast<const std::uint8_t*>(request.data()), static_cast<std::uint32_t>(request.size()));
        socket->flush();
        answer = ReadAnswer(*socket, authority);
    }
    catch (const TTransportException& e)
    {
        if (io_cancellation.IsCancelled())
        {
            throw TEException(u"TETestCancelled", {});
        }
        if (dynamic_cast<const TSSLException*>(&e) != nullptr)
        {
            const std::string verifyFailure = TETlsSocketFactory::LastVerifyFailure();
            if (!verifyFailure.empty())
            {
                Fail(u"TETlsCertificateRefused", {authority, verifyFailure});
            }
            Fail(u"TETlsHandshakeFailed", {authority, e.what()});
        }
        if (e.getType() == TTransportException::TIMED_OUT)
        {
            Fail(u"TEReadTimeout", {authority, seconds});
        }
        Fail(u"TETransportError", {authority, e.what()});
    }
    if (io_cancellation.IsCancelled())
    {
        throw TEException(u"TETestCancelled", {});
    }

    const std::string error = JsonString(answer.body, "error");
    if (answer.status != 200 || !error.empty())
    {
        std::string cause = error.empty() ? "no error named" : error;
        const std::string description = JsonString(answer.body, "error_description");
        if (!description.empty())
        {
            cause += ": " + description;
        }
        Fail(u"TEOAuthTokenRefused", {authority, std::to_string(answer.status), answer.reason, cause});
    }
    std::string token = JsonString(answer.body, "access_token");
    if (token.empty())
    {
        Fail(u"TEOAuthNoToken", {authority, "the answer has no access_token"});
    }
    const std::string type = JsonString(answer.body, "token_type");
    if (!type.empty() && Lower(type) != "bearer")
    {
        Fail(u"TEOAuthNoToken", {authority, "the token type is \"" + type + "\", not Bearer"});
    }
    if (in_log != nullptr)
    {
        in_log->LogInfo(NS, CLS, "Fetch", "Received an access token from %s%s.", authority.c_str(),
                        endPoint.path.c_str());
    }
    return token;
}
}  // namespace Tarni::ThriftExtension
