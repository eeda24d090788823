#include "thrift/connectiontest/TEStepConnector.h"

#include "driversupport/DSCancellation.h"
#include "platform/TcpConnector.h"
#include "thrift/TEException.h"
#include "thrift/connectiontest/TEStepRecorder.h"

namespace Tarni::ThriftExtension
{
using Platform::TcpConnector;

namespace
{
[[noreturn]] void Fail(const char16_t* in_key, const std::vector<std::string>& in_texts)
{
    throw TEException::WithTexts(in_key, in_texts);
}

std::string Seconds(int in_ms)
{
    return std::to_string(in_ms / 1000);
}
}  // namespace

std::intptr_t TEStepConnector::Connect(const std::string& in_host, std::uint16_t in_port,
                                       const std::string& in_authority, int in_timeoutMs, bool in_isProxy,
                                       TEStepRecorder& io_steps, DriverSupport::DSCancellation& io_cancellation)
{
    const std::string what = in_isProxy ? "the proxy " + in_authority : in_authority;

    io_steps.Begin("resolve");
    const TcpConnector::Resolution resolution = TcpConnector::Resolve(in_host, in_port);
    if (resolution.failure == TcpConnector::Failure::HostNotFound)
    {
        Fail(u"TEHostNotFound", {in_host, resolution.detail});
    }
    if (resolution.failure != TcpConnector::Failure::None || resolution.addresses.empty())
    {
        Fail(u"TEConnectFailed", {what, resolution.detail});
    }
    std::string found;
    for (const TcpConnector::Address& address : resolution.addresses)
    {
        found += (found.empty() ? "" : ", ") + address.text;
    }
    io_steps.Pass(in_host + ": " + found);

    io_steps.Begin("connect");
    const auto stop = [&io_cancellation] { return io_cancellation.IsCancelled(); };
    TcpConnector::Result result;
    std::string tried;
    for (const TcpConnector::Address& address : resolution.addresses)
    {
        result = TcpConnector::ConnectTo(address, in_timeoutMs, stop);
        if (result.failure == TcpConnector::Failure::None || io_cancellation.IsCancelled())
        {
            break;
        }
        tried += (tried.empty() ? "" : ", ") + address.text + " (" + result.detail + ")";
    }
    if (io_cancellation.IsCancelled())
    {
        TcpConnector::Close(result.failure == TcpConnector::Failure::None ? result.socket : -1);
        throw TEException(u"TETestCancelled", {});
    }
    switch (result.failure)
    {
        case TcpConnector::Failure::None:
            io_steps.Pass((in_isProxy ? what + " at " : "") + result.address +
                          (tried.empty() ? "" : "; refused first: " + tried));
            return result.socket;
        case TcpConnector::Failure::HostNotFound:
            Fail(u"TEHostNotFound", {in_host, result.detail});
        case TcpConnector::Failure::Refused:
            Fail(u"TEConnectionRefused", {what});
        case TcpConnector::Failure::TimedOut:
            Fail(u"TEConnectTimeout", {what, Seconds(in_timeoutMs)});
        case TcpConnector::Failure::Unreachable:
        case TcpConnector::Failure::Other:
            break;
    }
    Fail(u"TEConnectFailed", {what, result.detail});
}
}  // namespace Tarni::ThriftExtension
