#pragma once
// The client side of the SASL transport of TCLIService servers, with the
// PLAIN mechanism. Negotiation frames are a status byte, a 4-byte big-endian
// length and the payload; after a successful negotiation every message
// travels as a 4-byte big-endian length followed by the payload.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <thrift/transport/TVirtualTransport.h>

namespace Tarni::ThriftExtension
{
class TESaslClientTransport
    : public apache::thrift::transport::TVirtualTransport<TESaslClientTransport>
{
public:
    /// The negotiation status bytes.
    enum Status : std::uint8_t
    {
        Start = 1,
        Ok = 2,
        Bad = 3,
        Error = 4,
        Complete = 5,
    };

    /// The largest frame accepted from the server (a bigger length means the
    /// peer does not speak this transport).
    static constexpr std::uint32_t MAX_FRAME_SIZE = 256 * 1024 * 1024;

    TESaslClientTransport(std::shared_ptr<apache::thrift::transport::TTransport> in_transport,
                          std::string in_user, std::string in_password);
    ~TESaslClientTransport() override;

    /// Negotiates PLAIN over the transport below, which is connected already
    /// (a TLS socket over an open connection reports itself open only after
    /// its handshake). A refusal by the
    /// server throws TTransportException whose text is the server's message
    /// (WasRefused() tells it apart from a failure of the transport).
    void open() override;
    bool isOpen() const override;
    void close() override;

    std::uint32_t read(std::uint8_t* out_buffer, std::uint32_t in_length);
    void write(const std::uint8_t* in_buffer, std::uint32_t in_length);
    void flush() override;

    /// True after the server refused the credentials (status Bad or Error).
    bool WasRefused() const { return m_refused; }

    /// The PLAIN initial response: authorization id (empty), NUL, user, NUL,
    /// password.
    static std::string PlainResponse(const std::string& in_user, const std::string& in_password);

protected:
    void SendNegotiation(Status in_status, const std::string& in_payload);
    Status ReceiveNegotiation(std::string& out_payload);
    /// Marks the negotiation as refused by the server.
    void SetRefused() { m_refused = true; }

private:
    std::uint32_t ReadLength();
    void ReadFrame();

    std::shared_ptr<apache::thrift::transport::TTransport> m_transport;
    std::string m_user;
    std::string m_password;
    std::vector<std::uint8_t> m_readBuffer;
    std::size_t m_readPosition = 0;
    std::vector<std::uint8_t> m_writeBuffer;
    bool m_refused = false;
};
}  // namespace Tarni::ThriftExtension
