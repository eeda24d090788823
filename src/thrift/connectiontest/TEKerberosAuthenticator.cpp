#include "thrift/connectiontest/TEKerberosAuthenticator.h"

#include <algorithm>
#include <utility>

#include "driversupport/DSBase64.h"
#include "core/ILogger.h"
#include "thrift/TEException.h"
#include "thrift/TEUtils.h"
#include "thrift/connectiontest/TEBoundedCall.h"
#include "thrift/connectiontest/TEConnectionTarget.h"

namespace Tarni::ThriftExtension
{
using Platform::KerberosClient;

namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEKerberosAuthenticator";
}  // namespace

TEKerberosAuthenticator::TEKerberosAuthenticator(const TEConnectionTarget& in_target,
                                                 DriverSupport::DSCancellation& io_cancellation,
                                                 Support::ILogger* in_log)
    : m_serviceName(in_target.m_krbServiceName), m_canonicalize(in_target.m_krbCanonicalize),
      m_timeoutMs(in_target.m_timeoutMs), m_cancellation(io_cancellation), m_log(in_log),
      m_realm(in_target.m_krbRealm), m_delegate(in_target.m_krbDelegate)
{
    // Without a log the helper keeps "_HOST" as it is; the test always wants
    // the connection's host for it.
    m_host = in_log != nullptr
                 ? TEUtils::DeriveKerberosHostFQDN(in_target.m_host, in_target.m_krbHostFqdn, in_log)
                 : (in_target.m_krbHostFqdn == "_HOST" ? in_target.m_host : in_target.m_krbHostFqdn);
}

void TEKerberosAuthenticator::DerivePrincipal()
{
    if (!m_principal.empty())
    {
        return;
    }
    std::string host = m_host;
    if (m_canonicalize)
    {
        const std::string canonical = CanonicalHostName(host);
        if (m_log != nullptr && canonical != host)
        {
            m_log->LogInfo(NS, CLS, "DerivePrincipal", "The Kerberos host %s is canonicalised to %s.", host.c_str(),
                           canonical.c_str());
        }
        host = canonical;
    }
    m_principal = KerberosClient::PrincipalName(m_serviceName, host, m_realm);
}

std::string TEKerberosAuthenticator::CanonicalHostName(const std::string& in_host)
{
    // The reverse lookup asks the name service, which may not answer for
    // long; the worker owns its copy of the host and its result.
    auto canonical = std::make_shared<std::string>();
    const TEBoundedCall::Outcome outcome = TEBoundedCall::Run(
        [host = in_host, canonical] { *canonical = KerberosClient::CanonicalHostName(host); }, m_timeoutMs,
        m_cancellation);
    if (outcome == TEBoundedCall::Outcome::Cancelled)
    {
        throw TEException(u"TETestCancelled", {});
    }
    if (outcome == TEBoundedCall::Outcome::TimedOut)
    {
        throw TEException::WithTexts(u"TEKerberosLookupTimeout", {in_host, std::to_string(m_timeoutMs / 1000)});
    }
    return *canonical;
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

std::shared_ptr<KerberosClient> TEKerberosAuthenticator::NewContext(KerberosClient::Mechanism in_mechanism)
{
    DerivePrincipal();
    return std::make_shared<KerberosClient>(in_mechanism, m_principal, m_delegate);
}

void TEKerberosAuthenticator::Step(const std::shared_ptr<KerberosClient>& in_context,
                                   const KerberosClient::Bytes& in_token, KerberosClient::Bytes& out_token)
{
    // A round may ask a KDC for a service ticket, and the Kerberos library
    // waits for it by its own timeouts. The round runs on a worker that owns
    // the context, a copy of the token and the result, so the test can stop
    // waiting at its limit or on a cancel and leave the worker behind.
    struct Round
    {
        bool ok = false;
        KerberosClient::Bytes token;
    };
    auto round = std::make_shared<Round>();
    const TEBoundedCall::Outcome outcome = TEBoundedCall::Run(
        [context = in_context, token = in_token, round] { round->ok = context->Step(token, round->token); },
        m_timeoutMs, m_cancellation);
    if (outcome == TEBoundedCall::Outcome::Cancelled)
    {
        throw TEException(u"TETestCancelled", {});
    }
    if (outcome == TEBoundedCall::Outcome::TimedOut)
    {
        throw TEException::WithTexts(u"TEKerberosTimeout", {m_principal, std::to_string(m_timeoutMs / 1000)});
    }
    out_token = std::move(round->token);
    if (m_clientPrincipal.empty())
    {
        m_clientPrincipal = in_context->GetClientPrincipal();
    }
    if (!round->ok)
    {
        Fail(*in_context);
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
    const std::shared_ptr<KerberosClient> context = NewContext(KerberosClient::Mechanism::Spnego);
    KerberosClient::Bytes token;
    Step(context, {}, token);
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
