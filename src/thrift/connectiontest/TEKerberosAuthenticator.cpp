#include "thrift/connectiontest/TEKerberosAuthenticator.h"

#include <algorithm>
#include <utility>

#include "driversupport/DSBase64.h"
#include "core/ILogger.h"
#include "thrift/TEException.h"
#include "thrift/TEUtils.h"
#include "thrift/connectiontest/TEConnectionTarget.h"

namespace Tarni::ThriftExtension
{
using Platform::KerberosClient;

namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEKerberosAuthenticator";
}  // namespace

TEKerberosAuthenticator::TEKerberosAuthenticator(const TEConnectionTarget& in_target, Support::ILogger* in_log)
    : m_realm(in_target.m_krbRealm), m_delegate(in_target.m_krbDelegate)
{
    // Without a log the helper keeps "_HOST" as it is; the test always wants
    // the connection's host for it.
    std::string host = in_log != nullptr
                           ? TEUtils::DeriveKerberosHostFQDN(in_target.m_host, in_target.m_krbHostFqdn, in_log)
                           : (in_target.m_krbHostFqdn == "_HOST" ? in_target.m_host : in_target.m_krbHostFqdn);
    if (in_target.m_krbCanonicalize)
    {
        const std::string canonical = KerberosClient::CanonicalHostName(host);
        if (in_log != nullptr && canonical != host)
        {
            in_log->LogInfo(NS, CLS, "TEKerberosAuthenticator", "The Kerberos host %s is canonicalised to %s.",
                            host.c_str(), canonical.c_str());
        }
        host = canonical;
    }
    m_principal = KerberosClient::PrincipalName(in_target.m_krbServiceName, host, in_target.m_krbRealm);
}

std::string TEKerberosAuthenticator::Describe(const std::string& in_mechanism) const
{
    std::string text = "Kerberos (" + in_mechanism + ")";
    if (!m_clientPrincipal.empty())
    {
        text += " as " + m_clientPrincipal;
    }
    return text + " for " + m_principal;
}

std::unique_ptr<KerberosClient> TEKerberosAuthenticator::NewContext(KerberosClient::Mechanism in_mechanism) const
{
    return std::make_unique<KerberosClient>(in_mechanism, m_principal, m_delegate);
}

void TEKerberosAuthenticator::Step(KerberosClient& io_context, const KerberosClient::Bytes& in_token,
                                   KerberosClient::Bytes& out_token)
{
    const bool ok = io_context.Step(in_token, out_token);
    if (m_clientPrincipal.empty())
    {
        m_clientPrincipal = io_context.GetClientPrincipal();
    }
    if (!ok)
    {
        Fail(io_context);
    }
}

void TEKerberosAuthenticator::Fail(const KerberosClient& in_context) const
{
    const std::string& detail = in_context.GetDetail();
    switch (in_context.GetFailure())
    {
        case KerberosClient::Failure::NoTicket:
            throw TEException(u"TEKerberosNoTicket", {TEException::ToParameter(detail)});
        case KerberosClient::Failure::TicketExpired:
            throw TEException(u"TEKerberosTicketExpired", {TEException::ToParameter(detail)});
        case KerberosClient::Failure::UnknownServicePrincipal:
            if (!m_realm.empty() && !m_clientPrincipal.empty() &&
                m_clientPrincipal.compare(m_clientPrincipal.size() - std::min(m_clientPrincipal.size(), m_realm.size() + 1),
                                          std::string::npos, "@" + m_realm) != 0)
            {
                // A service in another realm needs a trust between the realms.
                throw TEException(u"TEKerberosUnknownRealm",
                                  {TEException::ToParameter(m_realm), TEException::ToParameter(m_clientPrincipal),
                                   TEException::ToParameter(detail)});
            }
            throw TEException(u"TEKerberosUnknownService",
                              {TEException::ToParameter(m_principal), TEException::ToParameter(detail)});
        case KerberosClient::Failure::NoServiceTicket:
            throw TEException(u"TEKerberosNoServiceTicket",
                              {TEException::ToParameter(m_principal), TEException::ToParameter(detail)});
        case KerberosClient::Failure::ClockSkew:
            throw TEException(u"TEKerberosClockSkew", {TEException::ToParameter(detail)});
        case KerberosClient::Failure::RealmUnreachable:
            throw TEException(u"TEKerberosRealmUnreachable",
                              {TEException::ToParameter(m_principal), TEException::ToParameter(detail)});
        case KerberosClient::Failure::None:
        case KerberosClient::Failure::Other:
            break;
    }
    throw TEException(u"TEKerberosFailed",
                      {TEException::ToParameter(m_principal), TEException::ToParameter(detail)});
}

std::string TEKerberosAuthenticator::MakeNegotiateHeader()
{
    // Each request carries a token of a context of its own: the server
    // accepts each request on its own, and a token is never replayed.
    const std::unique_ptr<KerberosClient> context = NewContext(KerberosClient::Mechanism::Spnego);
    KerberosClient::Bytes token;
    Step(*context, {}, token);
    return "Negotiate " +
           DriverSupport::DSBase64::Encode(std::string_view(reinterpret_cast<const char*>(token.data()), token.size()));
}

void TEKerberosAuthenticator::PrepareNegotiate()
{
    m_preparedHeader = MakeNegotiateHeader();
}

std::string TEKerberosAuthenticator::NextNegotiateHeader()
{
    if (!m_preparedHeader.empty())
    {
        return std::exchange(m_preparedHeader, std::string());
    }
    return MakeNegotiateHeader();
}
}  // namespace Tarni::ThriftExtension
