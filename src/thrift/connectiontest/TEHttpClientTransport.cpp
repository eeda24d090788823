#include "thrift/connectiontest/TEHttpClientTransport.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <thrift/transport/TTransportException.h>

namespace Tarni::ThriftExtension
{
using apache::thrift::transport::TTransport;
using apache::thrift::transport::TTransportException;

namespace
{
bool StartsWithNoCase(std::string_view in_text, std::string_view in_prefix)
{
    return in_text.size() >= in_prefix.size() &&
           std::equal(in_prefix.begin(), in_prefix.end(), in_text.begin(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
           });
}

std::string_view Trim(std::string_view in_text)
{
    while (!in_text.empty() && std::isspace(static_cast<unsigned char>(in_text.front())))
    {
        in_text.remove_prefix(1);
    }
    while (!in_text.empty() && std::isspace(static_cast<unsigned char>(in_text.back())))
    {
        in_text.remove_suffix(1);
    }
    return in_text;
}
}  // namespace

TEHttpClientTransport::TEHttpClientTransport(std::shared_ptr<TTransport> in_transport, std::string in_hostHeader,
                                             std::string in_target, std::map<std::string, std::string> in_headers)
    : THttpTransport(std::move(in_transport)),
      m_hostHeader(std::move(in_hostHeader)),
      m_target(std::move(in_target)),
      m_headers(std::move(in_headers))
{
}

TEHttpClientTransport::~TEHttpClientTransport()
{
    // Header values may hold credentials (Authorization).
    for (auto& [name, value] : m_headers)
    {
        std::fill(value.begin(), value.end(), '\0');
    }
}

void TEHttpClientTransport::flush()
{
    resetConsumedMessageSize();
    std::uint8_t* body = nullptr;
    std::uint32_t length = 0;
    writeBuffer_.getBuffer(&body, &length);

    if (m_authorizationSource)
    {
        m_headers["Authorization"] = m_authorizationSource();
    }
    std::string request = "POST " + m_target + " HTTP/1.1\r\nHost: " + m_hostHeader +
                          "\r\nContent-Type: application/x-thrift\r\nAccept: application/x-thrift\r\n"
                          "Content-Length: " +
                          std::to_string(length) + "\r\n";
    for (const auto& [name, value] : m_headers)
    {
        request += name + ": " + value + "\r\n";
    }
    request += "\r\n";
    transport_->write(reinterpret_cast<const std::uint8_t*>(request.data()),
                      static_cast<std::uint32_t>(request.size()));
    std::fill(request.begin(), request.end(), '\0');
    transport_->write(body, length);
    transport_->flush();
    writeBuffer_.resetBuffer();
    readHeaders_ = true;
}

void TEHttpClientTransport::parseHeader(char* in_header)
{
    const std::string_view header(in_header);
    const std::size_t colon = header.find(':');
    if (colon == std::string_view::npos)
    {
        return;
    }
    const std::string_view name = Trim(header.substr(0, colon));
    const std::string value(Trim(header.substr(colon + 1)));
    if (StartsWithNoCase(name, "Transfer-Encoding") && name.size() == 17)
    {
        std::string lower = value;
        std::transform(lower.begin(), lower.end(), lower.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        if (lower.find("chunked") != std::string::npos)
        {
            chunked_ = true;
        }
    }
    else if (StartsWithNoCase(name, "Content-Length") && name.size() == 14)
    {
        chunked_ = false;
        contentLength_ = static_cast<std::uint32_t>(std::strtoul(value.c_str(), nullptr, 10));
    }
}

bool TEHttpClientTransport::ParseStatusLine(const std::string& in_line, int& out_status, std::string& out_reason)
{
    if (!StartsWithNoCase(in_line, "HTTP/"))
    {
        return false;
    }
    const std::size_t space = in_line.find(' ');
    if (space == std::string::npos || space + 4 > in_line.size())
    {
        return false;
    }
    const std::string code = in_line.substr(space + 1, 3);
    if (!std::all_of(code.begin(), code.end(), [](unsigned char c) { return std::isdigit(c) != 0; }))
    {
        return false;
    }
    out_status = std::atoi(code.c_str());
    out_reason = std::string(Trim(std::string_view(in_line).substr(space + 4)));
    return true;
}

bool TEHttpClientTransport::parseStatusLine(char* in_status)
{
    int status = 0;
    std::string reason;
    if (!ParseStatusLine(in_status, status, reason))
    {
        throw TTransportException(TTransportException::CORRUPTED_DATA,
                                  std::string("not an HTTP reply: ") + std::string(in_status).substr(0, 80));
    }
    if (status == 100)
    {
        // 100 Continue: the real status line follows.
        return false;
    }
    if (status != 200)
    {
        m_refusedStatus = status;
        m_refusedReason = reason;
        throw TTransportException(TTransportException::UNKNOWN,
                                  "HTTP Response code: " + std::to_string(status) + " " + reason);
    }
    return true;
}
}  // namespace Tarni::ThriftExtension
