#include "thrift/connectiontest/TEConnectionTester.h"

#include <exception>
#include <memory>

#include <thrift/TApplicationException.h>
#include <thrift/TOutput.h>
#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/protocol/TProtocolException.h>
#include <thrift/transport/TBufferTransports.h>
#include <thrift/transport/TSSLSocket.h>
#include <thrift/transport/TTransportException.h>

#include "TCLIService.h"
#include "driversupport/DSBase64.h"
#include "driversupport/DSDSNConfiguration.h"
#include "platform/TcpConnector.h"
#include "support/StringConverter.h"
#include "support/messages/DSIMessageManager.h"
#include "thrift/connectiontest/TEConnectionTarget.h"
#include "thrift/connectiontest/TEDetachableSocket.h"
#include "thrift/TEException.h"
#include "thrift/connectiontest/TEHttpClientTransport.h"
#include "thrift/connectiontest/TEKerberosAuthenticator.h"
#include "thrift/connectiontest/TEKerberosSaslTransport.h"
#include "thrift/connectiontest/TESaslClientTransport.h"
#include "thrift/connectiontest/TEServerInfo.h"
#include "thrift/connectiontest/TESocketCancelGuard.h"
#include "thrift/connectiontest/TEStepConnector.h"
#include "thrift/connectiontest/TEStepDetails.h"
#include "thrift/connectiontest/TEStepRecorder.h"
#include "thrift/connectiontest/TETlsSocketFactory.h"
#include "thrift/connectiontest/TEOAuthTokenRequest.h"
#ifdef TARNI_HAVE_ZOOKEEPER
#include "thrift/connectiontest/TEZooKeeperConnector.h"
#endif
#include "thrift/TEUtils.h"

namespace Tarni::ThriftExtension
{
namespace Cli = apache::hive::service::rpc::thrift;
using apache::thrift::TApplicationException;
using apache::thrift::protocol::TBinaryProtocol;
using apache::thrift::protocol::TProtocolException;
using apache::thrift::transport::TBufferedTransport;
using apache::thrift::transport::TSocket;
using apache::thrift::transport::TSSLException;
using apache::thrift::transport::TTransport;
using apache::thrift::transport::TTransportException;
using Platform::TcpConnector;
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEConnectionTester";

[[noreturn]] void Fail(const char16_t* in_key, const std::vector<std::string>& in_texts)
{
    throw TEException::WithTexts(in_key, in_texts);
}

// Thrift reports some events (a TLS shutdown during a failed handshake) on
// its own output, standard error by default; during a test they go to the
// test's log instead.
thread_local Support::ILogger* t_thriftOutputLog = nullptr;

void ThriftOutput(const char* in_message)
{
    if (t_thriftOutputLog != nullptr)
    {
        t_thriftOutputLog->LogDebug(NS, CLS, "ThriftOutput", "%s", in_message);
    }
}

class ThriftOutputScope
{
public:
    explicit ThriftOutputScope(Support::ILogger* in_log)
    {
        t_thriftOutputLog = in_log;
        apache::thrift::GlobalOutput.setOutputFunction(&ThriftOutput);
    }
    ~ThriftOutputScope() { t_thriftOutputLog = nullptr; }
    ThriftOutputScope(const ThriftOutputScope&) = delete;
    ThriftOutputScope& operator=(const ThriftOutputScope&) = delete;
};

std::string Seconds(int in_ms)
{
    return std::to_string(in_ms / 1000);
}

// Owns a connected socket until a Thrift socket takes it over.
class SocketGuard
{
public:
    explicit SocketGuard(std::intptr_t in_socket) : m_socket(in_socket) {}
    ~SocketGuard() { TcpConnector::Close(m_socket); }
    SocketGuard(const SocketGuard&) = delete;
    SocketGuard& operator=(const SocketGuard&) = delete;
    THRIFT_SOCKET Release()
    {
        const auto socket = static_cast<THRIFT_SOCKET>(m_socket);
        m_socket = -1;
        return socket;
    }

private:
    std::intptr_t m_socket;
};

void SetTimeouts(TSocket& io_socket, int in_timeoutMs)
{
    io_socket.setRecvTimeout(in_timeoutMs);
    io_socket.setSendTimeout(in_timeoutMs);
}

std::string ProxyAuthorization(const DriverSupport::DSProxyDescription& in_proxy)
{
    if (in_proxy.user.empty())
    {
        return {};
    }
    return "Basic " + DriverSupport::DSBase64::Encode(StringConverter::ToUtf8(in_proxy.user) + ":" +
                                                      StringConverter::ToUtf8(in_proxy.password));
}

// Asks the proxy for a tunnel to the server (HTTP CONNECT) and reads its
// answer up to the empty line.
void OpenTunnel(TSocket& io_socket, const TEConnectionTarget& in_target)
{
    std::string request = "CONNECT " + in_target.GetAuthority() + " HTTP/1.1\r\nHost: " + in_target.GetAuthority() +
                          "\r\n";
    const std::string authorization = ProxyAuthorization(in_target.m_proxy);
    if (!authorization.empty())
    {
        request += "Proxy-Authorization: " + authorization + "\r\n";
    }
    request += "\r\n";
    io_socket.write(reinterpret_cast<const std::uint8_t*>(request.data()), static_cast<std::uint32_t>(request.size()));
    io_socket.flush();
    std::fill(request.begin(), request.end(), '\0');

    std::string line;
    std::string statusLine;
    for (;;)
    {
        std::uint8_t byte = 0;
        io_socket.readAll(&byte, 1);
        if (byte != '\n')
        {
            if (byte != '\r')
            {
                line.push_back(static_cast<char>(byte));
            }
            if (line.size() > 8192)
            {
                Fail(u"TEProxyTunnelRefused", {StringConverter::ToUtf8(in_target.m_proxy.GetAuthority()), "",
                                               "the proxy's answer is not HTTP"});
            }
            continue;
        }
        if (line.empty())
        {
            break;
        }
        if (statusLine.empty())
        {
            statusLine = line;
        }
        line.clear();
    }
    int status = 0;
    std::string reason;
    if (!TEHttpClientTransport::ParseStatusLine(statusLine, status, reason) || status / 100 != 2)
    {
        Fail(u"TEProxyTunnelRefused", {StringConverter::ToUtf8(in_target.m_proxy.GetAuthority()),
                                       status == 0 ? std::string() : std::to_string(status), reason});
    }
}

struct Stack
{
    std::shared_ptr<TSocket> socket;
    std::shared_ptr<TTransport> transport;
    std::shared_ptr<TESaslClientTransport> sasl;
    std::shared_ptr<TEHttpClientTransport> http;
    std::shared_ptr<TEKerberosAuthenticator> kerberos;
    std::unique_ptr<TETlsSocketFactory> tls;
    // Last, so that it is gone before the socket closes.
    std::unique_ptr<TESocketCancelGuard> cancel;
};

Stack BuildStack(const TEConnectionTarget& in_target, TEStepRecorder& io_steps,
                 DriverSupport::DSCancellation& io_cancellation, Support::ILogger* in_log)
{
    Stack stack;
    if (in_target.m_authentication == TEConnectionTarget::Authentication::Kerberos)
    {
        stack.kerberos = std::make_shared<TEKerberosAuthenticator>(in_target, io_cancellation, in_log);
    }
    const bool viaProxy = in_target.m_transport == TETransportMode::HTTP && !in_target.m_proxy.IsEmpty();
    std::intptr_t connected;
    if (viaProxy)
    {
        connected = TEStepConnector::Connect(StringConverter::ToUtf8(in_target.m_proxy.host), in_target.m_proxy.port,
                                             StringConverter::ToUtf8(in_target.m_proxy.GetAuthority()),
                                             in_target.m_timeoutMs, true, io_steps, io_cancellation);
    }
    else
    {
        connected = TEStepConnector::Connect(in_target.m_host, in_target.m_port, in_target.GetAuthority(),
                                             in_target.m_timeoutMs, false, io_steps, io_cancellation);
    }
    SocketGuard guard(connected);
    stack.cancel = std::make_unique<TESocketCancelGuard>(io_cancellation, connected);

    if (in_target.m_ssl)
    {
        // The step lasts from the TLS setup to the end of the handshake,
        // which OpenAndCloseSession completes.
        io_steps.Begin("tls");
        stack.tls = std::make_unique<TETlsSocketFactory>(in_target);
        THRIFT_SOCKET socket = guard.Release();
        if (viaProxy)
        {
            TEDetachableSocket plain(socket);
            SetTimeouts(plain, in_target.m_timeoutMs);
            OpenTunnel(plain, in_target);
            socket = plain.Detach();
        }
        stack.socket = stack.tls->Wrap(socket, in_target.m_host);
    }
    else
    {
        stack.socket = std::make_shared<TSocket>(guard.Release());
    }
    SetTimeouts(*stack.socket, in_target.m_timeoutMs);

    switch (in_target.m_transport)
    {
        case TETransportMode::Binary:
            stack.transport = std::make_shared<TBufferedTransport>(stack.socket);
            break;
        case TETransportMode::SASL:
            stack.sasl = stack.kerberos
                             ? std::make_shared<TEKerberosSaslTransport>(stack.socket, stack.kerberos)
                             : std::make_shared<TESaslClientTransport>(stack.socket, in_target.m_user,
                                                                       in_target.m_secret);
            stack.transport = stack.sasl;
            break;
        case TETransportMode::HTTP:
        {
            std::map<std::string, std::string> headers = in_target.BuildHttpHeaders();
            std::string requestTarget = in_target.GetRequestPath();
            if (viaProxy && !in_target.m_ssl)
            {
                // A plain proxy forwards the request: it needs the absolute URL.
                requestTarget = "http://" + in_target.GetAuthority() + requestTarget;
                const std::string authorization = ProxyAuthorization(in_target.m_proxy);
                if (!authorization.empty())
                {
                    headers["Proxy-Authorization"] = authorization;
                }
            }
            stack.http = std::make_shared<TEHttpClientTransport>(stack.socket, in_target.GetAuthority(),
                                                                 requestTarget, std::move(headers));
            if (stack.kerberos)
            {
                stack.http->SetAuthorizationSource([kerberos = stack.kerberos] { return kerberos->NextNegotiateHeader(); });
            }
            stack.transport = stack.http;
            break;
        }
    }
    return stack;
}

// The cause of a transport failure in the catalogue's words.
[[noreturn]] void ExplainTransportError(const TTransportException& in_error, const Stack& in_stack,
                                        const TEConnectionTarget& in_target)
{
    const std::string authority = in_target.GetAuthority();
    if (in_stack.kerberos && in_stack.sasl && in_stack.sasl->WasRefused())
    {
        Fail(u"TEKerberosRefused", {authority, in_error.what()});
    }
    if (in_stack.kerberos && in_stack.http &&
        (in_stack.http->GetRefusedStatus() == 401 || in_stack.http->GetRefusedStatus() == 403))
    {
        Fail(u"TEKerberosRefused", {authority, "HTTP " + std::to_string(in_stack.http->GetRefusedStatus()) + " " +
                                                   in_stack.http->GetRefusedReason()});
    }
    if (in_stack.sasl && in_stack.sasl->WasRefused())
    {
        Fail(u"TEAuthenticationRefused", {authority, in_error.what()});
    }
    if (in_stack.http && in_stack.http->GetRefusedStatus() != 0)
    {
        const int status = in_stack.http->GetRefusedStatus();
        const std::string code = std::to_string(status);
        const std::string& reason = in_stack.http->GetRefusedReason();
        if (status == 401 || status == 403)
        {
            Fail(u"TEHttpAuthenticationRefused", {authority, code, reason});
        }
        if (status == 404)
        {
            Fail(u"TEHttpPathNotFound", {authority, code, reason, in_target.GetRequestPath()});
        }
        Fail(u"TEHttpStatusError", {authority, code, reason});
    }
    if (dynamic_cast<const TSSLException*>(&in_error) != nullptr)
    {
        const std::string verifyFailure = TETlsSocketFactory::LastVerifyFailure();
        if (!verifyFailure.empty())
        {
            Fail(u"TETlsCertificateRefused", {authority, verifyFailure});
        }
    }
    if (in_error.getType() == TTransportException::TIMED_OUT)
    {
        Fail(u"TEReadTimeout", {authority, Seconds(in_target.m_timeoutMs)});
    }
    // The known mismatches of transport and SSL settings have their own texts.
    TEUtils::TranslateTransportException(in_error, in_target.m_transport == TETransportMode::SASL);
    if (dynamic_cast<const TSSLException*>(&in_error) != nullptr)
    {
        Fail(u"TETlsHandshakeFailed", {authority, in_error.what()});
    }
    if (in_error.getType() == TTransportException::END_OF_FILE)
    {
        Fail(u"TEConnectionClosed", {authority});
    }
    Fail(u"TETransportError", {authority, in_error.what()});
}

std::string StatusText(const Cli::TStatus& in_status)
{
    std::string text = in_status.errorMessage;
    if (text.empty())
    {
        const auto name = Cli::_TStatusCode_VALUES_TO_NAMES.find(in_status.statusCode);
        text = name != Cli::_TStatusCode_VALUES_TO_NAMES.end() ? name->second : "unknown status";
    }
    if (!in_status.sqlState.empty())
    {
        text += " (SQL state " + in_status.sqlState + ")";
    }
    return text;
}

bool Succeeded(const Cli::TStatus& in_status)
{
    return in_status.statusCode == Cli::TStatusCode::SUCCESS_STATUS ||
           in_status.statusCode == Cli::TStatusCode::SUCCESS_WITH_INFO_STATUS;
}
}  // namespace

void TEConnectionTester::OpenAndCloseSession(const TEConnectionTarget& in_target, TEStepRecorder& io_steps,
                                             DriverSupport::DSCancellation& io_cancellation, Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "OpenAndCloseSession");
    if (io_cancellation.IsCancelled())
    {
        throw TEException(u"TETestCancelled", {});
    }
    Stack stack = BuildStack(in_target, io_steps, io_cancellation, in_log);
    try
    {
        if (stack.tls)
        {
            // An empty write makes the TLS socket complete its handshake.
            const std::uint8_t nothing = 0;
            stack.socket->write(&nothing, 0);
            io_steps.Pass(TETlsSocketFactory::LastHandshake());
        }
        const std::string mechanism = TEStepDetails::Mechanism(in_target);
        if (stack.sasl)
        {
            io_steps.Begin("authentication");
            stack.sasl->open();
            io_steps.Pass(stack.kerberos ? stack.kerberos->Describe("SASL GSSAPI") : mechanism);
        }
        else if (stack.kerberos)
        {
            io_steps.Begin("authentication");
            stack.kerberos->PrepareNegotiate();
            io_steps.Pass(stack.kerberos->Describe("HTTP Negotiate"));
        }
        // Without SASL the credentials travel with the OpenSession request:
        // the answer to it is the verdict on them.
        const bool authenticatesInRequest = !stack.sasl && !stack.kerberos && !mechanism.empty();
        io_steps.Begin(authenticatesInRequest ? "authentication" : "open-session");
        auto protocol = std::make_shared<TBinaryProtocol>(stack.transport);
        Cli::TCLIServiceClient client(protocol);

        Cli::TOpenSessionReq openRequest;
        // With a token or a Kerberos ticket the server knows the user already.
        if (!in_target.m_user.empty() && in_target.m_authentication != TEConnectionTarget::Authentication::BearerToken &&
            in_target.m_authentication != TEConnectionTarget::Authentication::Kerberos)
        {
            openRequest.__set_username(in_target.m_user);
            // Without SASL or HTTP the password travels in the request too.
            if (in_target.m_transport == TETransportMode::Binary &&
                in_target.m_authentication == TEConnectionTarget::Authentication::Plain)
            {
                openRequest.__set_password(in_target.m_secret);
            }
        }
        Cli::TOpenSessionResp openResponse;
        client.OpenSession(openResponse, openRequest);
        if (authenticatesInRequest)
        {
            io_steps.Pass(mechanism);
            io_steps.Begin("open-session");
        }
        if (!Succeeded(openResponse.status))
        {
            Fail(u"TEOpenSessionRefused", {in_target.GetAuthority(), StatusText(openResponse.status)});
        }
        io_steps.Pass("protocol version " + std::to_string(static_cast<int>(openResponse.serverProtocolVersion)));
        if (in_log != nullptr)
        {
            in_log->LogInfo(NS, CLS, "OpenAndCloseSession", "Session opened on %s (protocol version %d).",
                            in_target.GetAuthority().c_str(), static_cast<int>(openResponse.serverProtocolVersion));
        }

        io_steps.Begin("server-info");
        io_steps.Pass(TEServerInfo::Query(client, openResponse.sessionHandle));

        io_steps.Begin("close-session");
        Cli::TCloseSessionReq closeRequest;
        closeRequest.__set_sessionHandle(openResponse.sessionHandle);
        Cli::TCloseSessionResp closeResponse;
        client.CloseSession(closeResponse, closeRequest);
        if (!Succeeded(closeResponse.status) && in_log != nullptr)
        {
            // The session was opened: the test has its answer.
            in_log->LogWarning(NS, CLS, "OpenAndCloseSession", "CloseSession failed: %s",
                               StatusText(closeResponse.status).c_str());
        }
        else
        {
            io_steps.Pass();
        }
        stack.transport->close();
    }
    catch (const TTransportException& e)
    {
        ExplainTransportError(e, stack, in_target);
    }
    catch (const TProtocolException& e)
    {
        Fail(u"TEProtocolError", {in_target.GetAuthority(), e.what()});
    }
    catch (const TApplicationException& e)
    {
        Fail(u"TEServerApplicationError", {in_target.GetAuthority(), e.what()});
    }
}

DriverSupport::IConnectionTester::Outcome TEConnectionTester::TestConnection(
    const DriverSupport::DSDSNConfiguration& in_configuration, DriverSupport::DSCancellation& io_cancellation)
{
    Support::ILogger* log = in_configuration.GetLog();
    TARNI_LOG_ENTRY(log, NS, CLS, "TestConnection");
    const ThriftOutputScope output(log);
    Outcome outcome;
    TEStepRecorder steps(outcome.steps);
    try
    {
        TEConnectionTarget target = TEConnectionTarget::FromConfiguration(in_configuration);
        if (target.m_clientCredentials)
        {
            steps.Begin("token");
            target.m_secret = TEOAuthTokenRequest::Fetch(target, io_cancellation, log);
            steps.Pass("client credentials of " + target.m_clientId + " at " + target.m_tokenEndPoint);
        }
#ifdef TARNI_HAVE_ZOOKEEPER
        if (target.m_zooKeeperDiscovery)
        {
            TEZooKeeperConnector::OpenAndCloseSession(target, steps, outcome.steps, io_cancellation, log);
        }
        else
#endif
        {
            OpenAndCloseSession(target, steps, io_cancellation, log);
        }
        outcome.status = Outcome::Status::Succeeded;
    }
    catch (const Support::ErrorException& e)
    {
        outcome.status = Outcome::Status::Failed;
        outcome.errorText = io_cancellation.IsCancelled()
                                ? Support::DSIMessageManager::GetDisplayText(TEException(u"TETestCancelled", {}))
                                : Support::DSIMessageManager::GetDisplayText(e);
        steps.Fail(outcome.errorText);
        if (log != nullptr)
        {
            log->LogWarning(NS, CLS, "TestConnection", "Connection test failed: %s",
                            StringConverter::ToUtf8(outcome.errorText).c_str());
        }
    }
    catch (const std::exception& e)
    {
        // A failure of the Thrift library outside the transport (out of
        // memory, a bad argument): still an answer for the user.
        outcome.status = Outcome::Status::Failed;
        outcome.errorText = io_cancellation.IsCancelled()
                                ? Support::DSIMessageManager::GetDisplayText(TEException(u"TETestCancelled", {}))
                                : TEException::ToParameter(e.what());
        steps.Fail(outcome.errorText);
        if (log != nullptr)
        {
            log->LogError(NS, CLS, "TestConnection", "Connection test failed: %s", e.what());
        }
    }
    return outcome;
}

TEConnectionTester& TEConnectionTester::Instance()
{
    static TEConnectionTester instance;
    return instance;
}
}  // namespace Tarni::ThriftExtension
