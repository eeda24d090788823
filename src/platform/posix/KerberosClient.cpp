#include "platform/KerberosClient.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include <gssapi/gssapi.h>
#include <gssapi/gssapi_krb5.h>
#include <krb5/krb5.h>
#include <netdb.h>
#include <sys/socket.h>

namespace Tarni::Platform
{
namespace
{
// SPNEGO, 1.3.6.1.5.5.2.
gss_OID_desc g_spnegoOid = {6, const_cast<char*>("\x2b\x06\x01\x05\x05\x02")};

gss_buffer_desc BufferOf(const KerberosClient::Bytes& in_bytes)
{
    gss_buffer_desc buffer;
    buffer.length = in_bytes.size();
    buffer.value = const_cast<std::uint8_t*>(in_bytes.data());
    return buffer;
}

void TakeBuffer(gss_buffer_desc& io_buffer, KerberosClient::Bytes& out_bytes)
{
    const auto* bytes = static_cast<const std::uint8_t*>(io_buffer.value);
    out_bytes.assign(bytes, bytes + io_buffer.length);
    OM_uint32 minor = 0;
    gss_release_buffer(&minor, &io_buffer);
}

// The texts of a status code of one kind (GSS_C_GSS_CODE or GSS_C_MECH_CODE).
std::string StatusText(OM_uint32 in_code, int in_kind, gss_OID in_mechanism)
{
    std::string text;
    OM_uint32 more = 0;
    do
    {
        OM_uint32 minor = 0;
        gss_buffer_desc message = GSS_C_EMPTY_BUFFER;
        if (GSS_ERROR(gss_display_status(&minor, in_code, in_kind, in_mechanism, &more, &message)))
        {
            break;
        }
        if (!text.empty())
        {
            text += "; ";
        }
        text.append(static_cast<const char*>(message.value), message.length);
        gss_release_buffer(&minor, &message);
    } while (more != 0);
    return text;
}

// The Kerberos library's codes are the minor statuses of the Kerberos
// mechanism; the SPNEGO mechanism passes them through.
KerberosClient::Failure Classify(OM_uint32 in_major, OM_uint32 in_minor)
{
    switch (static_cast<krb5_error_code>(in_minor))
    {
        case KRB5_FCC_NOFILE:
        case KRB5_CC_NOTFOUND:
        case KRB5_CC_NOSUPP:
        case KRB5_CC_BADNAME:
            return KerberosClient::Failure::NoTicket;
        case KRB5KRB_AP_ERR_TKT_EXPIRED:
        case KRB5KDC_ERR_NAME_EXP:
        case KRB5KDC_ERR_TGT_REVOKED:
            return KerberosClient::Failure::TicketExpired;
        case KRB5KDC_ERR_S_PRINCIPAL_UNKNOWN:
        case KRB5KDC_ERR_WRONG_REALM:
        case KRB5_PRINC_NOMATCH:
            return KerberosClient::Failure::UnknownServicePrincipal;
        case KRB5KRB_AP_ERR_SKEW:
            return KerberosClient::Failure::ClockSkew;
        case KRB5_KDC_UNREACH:
        case KRB5_REALM_CANT_RESOLVE:
        case KRB5_REALM_UNKNOWN:
            return KerberosClient::Failure::RealmUnreachable;
        default:
            break;
    }
    switch (GSS_ROUTINE_ERROR(in_major))
    {
        case GSS_S_NO_CRED:
            return KerberosClient::Failure::NoTicket;
        case GSS_S_CREDENTIALS_EXPIRED:
            return KerberosClient::Failure::TicketExpired;
        default:
            return KerberosClient::Failure::Other;
    }
}
}  // namespace

struct KerberosClient::Context
{
    gss_cred_id_t credential = GSS_C_NO_CREDENTIAL;
    gss_name_t target = GSS_C_NO_NAME;
    gss_ctx_id_t context = GSS_C_NO_CONTEXT;
    std::string clientPrincipal;
    bool established = false;

    ~Context()
    {
        OM_uint32 minor = 0;
        if (context != GSS_C_NO_CONTEXT)
        {
            gss_delete_sec_context(&minor, &context, GSS_C_NO_BUFFER);
        }
        if (target != GSS_C_NO_NAME)
        {
            gss_release_name(&minor, &target);
        }
        if (credential != GSS_C_NO_CREDENTIAL)
        {
            gss_release_cred(&minor, &credential);
        }
    }
};

KerberosClient::KerberosClient(Mechanism in_mechanism, std::string in_principal, bool in_delegate)
    : m_mechanism(in_mechanism), m_principal(std::move(in_principal)), m_delegate(in_delegate),
      m_context(std::make_unique<Context>())
{
}

KerberosClient::~KerberosClient() = default;

std::string KerberosClient::GetClientPrincipal() const
{
    return m_context->clientPrincipal;
}

bool KerberosClient::IsEstablished() const
{
    return m_context->established;
}

bool KerberosClient::Step(const Bytes& in_token, Bytes& out_token)
{
    out_token.clear();
    Context& c = *m_context;
    OM_uint32 minor = 0;
    OM_uint32 major = 0;
    const gss_OID mechanism = m_mechanism == Mechanism::Spnego ? &g_spnegoOid : const_cast<gss_OID>(gss_mech_krb5);
    if (c.credential == GSS_C_NO_CREDENTIAL)
    {
        // The user's ticket-granting ticket from the credential cache: its
        // absence or expiry is found here, before any traffic.
        major = gss_acquire_cred(&minor, GSS_C_NO_NAME, GSS_C_INDEFINITE, GSS_C_NO_OID_SET, GSS_C_INITIATE,
                                 &c.credential, nullptr, nullptr);
        if (GSS_ERROR(major))
        {
            SetFailure(Classify(major, minor), StatusText(minor, GSS_C_MECH_CODE, GSS_C_NO_OID));
            return false;
        }
        gss_name_t name = GSS_C_NO_NAME;
        OM_uint32 lifetime = 0;
        major = gss_inquire_cred(&minor, c.credential, &name, &lifetime, nullptr, nullptr);
        if (!GSS_ERROR(major))
        {
            gss_buffer_desc text = GSS_C_EMPTY_BUFFER;
            if (!GSS_ERROR(gss_display_name(&minor, name, &text, nullptr)))
            {
                c.clientPrincipal.assign(static_cast<const char*>(text.value), text.length);
                gss_release_buffer(&minor, &text);
            }
            gss_release_name(&minor, &name);
        }
        else if (GSS_ROUTINE_ERROR(major) == GSS_S_CREDENTIALS_EXPIRED)
        {
            SetFailure(Failure::TicketExpired, StatusText(major, GSS_C_GSS_CODE, GSS_C_NO_OID));
            return false;
        }
        if (!GSS_ERROR(major) && lifetime == 0)
        {
            SetFailure(Failure::TicketExpired, "the ticket-granting ticket of " + c.clientPrincipal + " has expired");
            return false;
        }
    }
    if (c.target == GSS_C_NO_NAME)
    {
        gss_buffer_desc name;
        name.length = m_principal.size();
        name.value = const_cast<char*>(m_principal.data());
        major = gss_import_name(&minor, &name, const_cast<gss_OID>(GSS_KRB5_NT_PRINCIPAL_NAME), &c.target);
        if (GSS_ERROR(major))
        {
            SetFailure(Failure::Other, StatusText(major, GSS_C_GSS_CODE, GSS_C_NO_OID) + ": " + m_principal);
            return false;
        }
    }
    OM_uint32 flags = GSS_C_MUTUAL_FLAG | GSS_C_SEQUENCE_FLAG;
    if (m_delegate)
    {
        flags |= GSS_C_DELEG_FLAG;
    }
    gss_buffer_desc input = BufferOf(in_token);
    gss_buffer_desc output = GSS_C_EMPTY_BUFFER;
    major = gss_init_sec_context(&minor, c.credential, &c.context, c.target, mechanism, flags, 0,
                                 GSS_C_NO_CHANNEL_BINDINGS, in_token.empty() ? GSS_C_NO_BUFFER : &input, nullptr,
                                 &output, nullptr, nullptr);
    if (output.length > 0)
    {
        TakeBuffer(output, out_token);
    }
    if (GSS_ERROR(major))
    {
        std::string detail = StatusText(minor, GSS_C_MECH_CODE, GSS_C_NO_OID);
        if (detail.empty() || minor == 0)
        {
            detail = StatusText(major, GSS_C_GSS_CODE, GSS_C_NO_OID);
        }
        SetFailure(Classify(major, minor), detail);
        out_token.clear();
        return false;
    }
    c.established = major == GSS_S_COMPLETE;
    return true;
}

bool KerberosClient::Wrap(const Bytes& in_message, Bytes& out_token)
{
    OM_uint32 minor = 0;
    gss_buffer_desc input = BufferOf(in_message);
    gss_buffer_desc output = GSS_C_EMPTY_BUFFER;
    const OM_uint32 major =
        gss_wrap(&minor, m_context->context, 0, GSS_C_QOP_DEFAULT, &input, nullptr, &output);
    if (GSS_ERROR(major))
    {
        SetFailure(Failure::Other, StatusText(major, GSS_C_GSS_CODE, GSS_C_NO_OID));
        return false;
    }
    TakeBuffer(output, out_token);
    return true;
}

bool KerberosClient::Unwrap(const Bytes& in_token, Bytes& out_message)
{
    OM_uint32 minor = 0;
    gss_buffer_desc input = BufferOf(in_token);
    gss_buffer_desc output = GSS_C_EMPTY_BUFFER;
    const OM_uint32 major = gss_unwrap(&minor, m_context->context, &input, &output, nullptr, nullptr);
    if (GSS_ERROR(major))
    {
        SetFailure(Failure::Other, StatusText(major, GSS_C_GSS_CODE, GSS_C_NO_OID));
        return false;
    }
    TakeBuffer(output, out_message);
    return true;
}

std::string KerberosClient::CanonicalHostName(const std::string& in_host)
{
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* addresses = nullptr;
    if (getaddrinfo(in_host.c_str(), nullptr, &hints, &addresses) != 0 || addresses == nullptr)
    {
        return in_host;
    }
    char name[NI_MAXHOST] = {};
    const int status = getnameinfo(addresses->ai_addr, addresses->ai_addrlen, name, sizeof name, nullptr, 0,
                                   NI_NAMEREQD);
    freeaddrinfo(addresses);
    if (status != 0)
    {
        return in_host;
    }
    std::string canonical = name;
    std::transform(canonical.begin(), canonical.end(), canonical.begin(),
                   [](unsigned char in_c) { return static_cast<char>(std::tolower(in_c)); });
    return canonical;
}
}  // namespace Tarni::Platform
