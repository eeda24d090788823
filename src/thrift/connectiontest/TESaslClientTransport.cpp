#include "thrift/connectiontest/TESaslClientTransport.h"

#include <algorithm>
#include <cstring>

#include <thrift/transport/TTransportException.h>

namespace Tarni::ThriftExtension
{
using apache::thrift::transport::TTransport;
using apache::thrift::transport::TTransportException;

namespace
{
void PutLength(std::uint32_t in_length, std::uint8_t* out_bytes)
{
    out_bytes[0] = static_cast<std::uint8_t>(in_length >> 24);
    out_bytes[1] = static_cast<std::uint8_t>(in_length >> 16);
    out_bytes[2] = static_cast<std::uint8_t>(in_length >> 8);
    out_bytes[3] = static_cast<std::uint8_t>(in_length);
}
}  // namespace

TESaslClientTransport::TESaslClientTransport(std::shared_ptr<TTransport> in_transport, std::string in_user,
                                             std::string in_password)
    : m_transport(std::move(in_transport)), m_user(std::move(in_user)), m_password(std::move(in_password))
{
}

TESaslClientTransport::~TESaslClientTransport()
{
    // The password is not left behind in freed memory.
    std::fill(m_password.begin(), m_password.end(), '\0');
}

std::string TESaslClientTransport::PlainResponse(const std::string& in_user, const std::string& in_password)
{
    std::string response;
    response.reserve(in_user.size() + in_password.size() + 2);
    response.push_back('\0');
    response += in_user;
    response.push_back('\0');
    response += in_password;
    return response;
}

void TESaslClientTransport::open()
{
    SendNegotiation(Start, "PLAIN");
    std::string response = PlainResponse(m_user, m_password);
    SendNegotiation(Complete, response);
    std::fill(response.begin(), response.end(), '\0');

    std::string payload;
    const Status status = ReceiveNegotiation(payload);
    switch (status)
    {
        case Complete:
            return;
        case Bad:
        case Error:
            m_refused = true;
            throw TTransportException(TTransportException::NOT_OPEN,
                                      payload.empty() ? std::string("no reason given") : payload);
        default:
            // PLAIN has no further round: anything else is a protocol error.
            throw TTransportException(TTransportException::CORRUPTED_DATA,
                                      "unexpected SASL negotiation status " + std::to_string(status));
    }
}

bool TESaslClientTransport::isOpen() const
{
    return m_transport->isOpen();
}

void TESaslClientTransport::close()
{
    m_transport->close();
}

void TESaslClientTransport::SendNegotiation(Status in_status, const std::string& in_payload)
{
    std::vector<std::uint8_t> frame(5 + in_payload.size());
    frame[0] = in_status;
    PutLength(static_cast<std::uint32_t>(in_payload.size()), &frame[1]);
    std::memcpy(frame.data() + 5, in_payload.data(), in_payload.size());
    m_transport->write(frame.data(), static_cast<std::uint32_t>(frame.size()));
    m_transport->flush();
    std::fill(frame.begin(), frame.end(), std::uint8_t{0});
}

TESaslClientTransport::Status TESaslClientTransport::ReceiveNegotiation(std::string& out_payload)
{
    std::uint8_t status = 0;
    m_transport->readAll(&status, 1);
    const std::uint32_t length = ReadLength();
    out_payload.assign(length, '\0');
    if (length > 0)
    {
        m_transport->readAll(reinterpret_cast<std::uint8_t*>(out_payload.data()), length);
    }
    if (status < Start || status > Complete)
    {
        throw TTransportException(TTransportException::CORRUPTED_DATA,
                                  "invalid SASL negotiation status " + std::to_string(status));
    }
    return static_cast<Status>(status);
}

std::uint32_t TESaslClientTransport::ReadLength()
{
    std::uint8_t bytes[4];
    m_transport->readAll(bytes, 4);
    const std::uint32_t length = (std::uint32_t{bytes[0]} << 24) | (std::uint32_t{bytes[1]} << 16) |
                                 (std::uint32_t{bytes[2]} << 8) | std::uint32_t{bytes[3]};
    if (length > MAX_FRAME_SIZE)
    {
        throw TTransportException(TTransportException::CORRUPTED_DATA,
                                  "SASL frame of " + std::to_string(length) + " bytes exceeds the limit");
    }
    return length;
}

void TESaslClientTransport::ReadFrame()
{
    const std::uint32_t length = ReadLength();
    m_readBuffer.resize(length);
    m_readPosition = 0;
    if (length > 0)
    {
        m_transport->readAll(m_readBuffer.data(), length);
    }
}

std::uint32_t TESaslClientTransport::read(std::uint8_t* out_buffer, std::uint32_t in_length)
{
    while (m_readPosition >= m_readBuffer.size())
    {
        ReadFrame();
    }
    const std::size_t available = m_readBuffer.size() - m_readPosition;
    const std::uint32_t count = static_cast<std::uint32_t>(std::min<std::size_t>(available, in_length));
    std::memcpy(out_buffer, m_readBuffer.data() + m_readPosition, count);
    m_readPosition += count;
    return count;
}

void TESaslClientTransport::write(const std::uint8_t* in_buffer, std::uint32_t in_length)
{
    m_writeBuffer.insert(m_writeBuffer.end(), in_buffer, in_buffer + in_length);
}

void TESaslClientTransport::flush()
{
    std::uint8_t header[4];
    PutLength(static_cast<std::uint32_t>(m_writeBuffer.size()), header);
    m_transport->write(header, 4);
    if (!m_writeBuffer.empty())
    {
        m_transport->write(m_writeBuffer.data(), static_cast<std::uint32_t>(m_writeBuffer.size()));
    }
    m_writeBuffer.clear();
    m_transport->flush();
}
}  // namespace Tarni::ThriftExtension
