#include "thrift/connectiontest/TEKerberosSaslTransport.h"

#include <thrift/transport/TTransportException.h>

#include "thrift/TEException.h"
#include "thrift/connectiontest/TEKerberosAuthenticator.h"

namespace Tarni::ThriftExtension
{
using apache::thrift::transport::TTransport;
using apache::thrift::transport::TTransportException;
using Platform::KerberosClient;

namespace
{
KerberosClient::Bytes ToBytes(const std::string& in_text)
{
    return KerberosClient::Bytes(in_text.begin(), in_text.end());
}

std::string ToText(const KerberosClient::Bytes& in_bytes)
{
    return std::string(in_bytes.begin(), in_bytes.end());
}
}  // namespace

TEKerberosSaslTransport::TEKerberosSaslTransport(std::shared_ptr<TTransport> in_transport,
                                                 std::shared_ptr<TEKerberosAuthenticator> in_authenticator)
    : TESaslClientTransport(std::move(in_transport), std::string(), std::string()),
      m_authenticator(std::move(in_authenticator))
{
}

std::string TEKerberosSaslTransport::ChooseSecurityLayer(const std::string& in_offer, const std::string& in_service)
{
    if (in_offer.size() != 4)
    {
        throw TEException(u"TEKerberosFailed",
                          {TEException::ToParameter(in_service),
                           TEException::ToParameter("the server's security layer offer has " +
                                                    std::to_string(in_offer.size()) + " bytes instead of 4")});
    }
    if ((static_cast<std::uint8_t>(in_offer[0]) & NO_SECURITY_LAYER) == 0)
    {
        throw TEException(u"TEKerberosSecurityLayer", {TEException::ToParameter(in_service)});
    }
    return std::string{static_cast<char>(NO_SECURITY_LAYER), '\0', '\0', '\0'};
}

void TEKerberosSaslTransport::open()
{
    const std::shared_ptr<KerberosClient> context = m_authenticator->NewContext(KerberosClient::Mechanism::Kerberos);
    KerberosClient::Bytes token;
    // The first token is made before anything is sent, so that a missing
    // ticket is reported without bothering the server.
    m_authenticator->Step(context, {}, token);
    SendNegotiation(Start, "GSSAPI");
    SendNegotiation(Ok, ToText(token));
    for (;;)
    {
        std::string payload;
        const Status status = ReceiveNegotiation(payload);
        if (status == Bad || status == Error)
        {
            SetRefused();
            throw TTransportException(TTransportException::NOT_OPEN,
                                      payload.empty() ? std::string("no reason given") : payload);
        }
        if (status == Complete && (context->IsEstablished() || payload.empty()))
        {
            if (!context->IsEstablished())
            {
                throw TTransportException(TTransportException::CORRUPTED_DATA,
                                          "the server ended the GSSAPI negotiation before the context was established");
            }
            return;
        }
        if (status != Ok && status != Complete)
        {
            throw TTransportException(TTransportException::CORRUPTED_DATA,
                                      "unexpected SASL negotiation status " + std::to_string(status));
        }
        if (!context->IsEstablished())
        {
            m_authenticator->Step(context, ToBytes(payload), token);
            if (status == Complete)
            {
                return;
            }
            SendNegotiation(Ok, ToText(token));
            continue;
        }
        // The established context protects the layer negotiation.
        KerberosClient::Bytes offer;
        if (!context->Unwrap(ToBytes(payload), offer))
        {
            m_authenticator->Fail(*context);
        }
        const std::string choice = ChooseSecurityLayer(ToText(offer), m_authenticator->GetServicePrincipal());
        KerberosClient::Bytes wrapped;
        if (!context->Wrap(ToBytes(choice), wrapped))
        {
            m_authenticator->Fail(*context);
        }
        SendNegotiation(Ok, ToText(wrapped));
    }
}
}  // namespace Tarni::ThriftExtension
