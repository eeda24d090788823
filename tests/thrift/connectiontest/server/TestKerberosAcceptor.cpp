#include "thrift/connectiontest/server/TestKerberosAcceptor.h"

#include <gssapi/gssapi.h>
#include <gssapi/gssapi_ext.h>

namespace Tarni::Testing
{
namespace
{
std::string Describe(OM_uint32 in_major, OM_uint32 in_minor)
{
    std::string text;
    for (const auto& [code, kind] : {std::pair{in_major, GSS_C_GSS_CODE}, std::pair{in_minor, GSS_C_MECH_CODE}})
    {
        OM_uint32 more = 0;
        do
        {
            OM_uint32 minor = 0;
            gss_buffer_desc message = GSS_C_EMPTY_BUFFER;
            if (GSS_ERROR(gss_display_status(&minor, code, kind, GSS_C_NO_OID, &more, &message)))
            {
                break;
            }
            text += (text.empty() ? "" : "; ") + std::string(static_cast<const char*>(message.value), message.length);
            gss_release_buffer(&minor, &message);
        } while (more != 0);
    }
    return text;
}

gss_buffer_desc BufferOf(const std::string& in_text)
{
    return gss_buffer_desc{in_text.size(), const_cast<char*>(in_text.data())};
}

std::string Take(gss_buffer_desc& io_buffer)
{
    std::string text(static_cast<const char*>(io_buffer.value), io_buffer.length);
    OM_uint32 minor = 0;
    gss_release_buffer(&minor, &io_buffer);
    return text;
}
}  // namespace

TestKerberosAcceptor::TestKerberosAcceptor(const std::string& in_keytab)
{
    const gss_key_value_element_desc element{"keytab", in_keytab.c_str()};
    const gss_key_value_set_desc store{1, const_cast<gss_key_value_element_desc*>(&element)};
    OM_uint32 minor = 0;
    gss_cred_id_t credential = GSS_C_NO_CREDENTIAL;
    gss_acquire_cred_from(&minor, GSS_C_NO_NAME, GSS_C_INDEFINITE, GSS_C_NO_OID_SET, GSS_C_ACCEPT, &store,
                          &credential, nullptr, nullptr);
    m_credential = credential;
}

TestKerberosAcceptor::~TestKerberosAcceptor()
{
    OM_uint32 minor = 0;
    auto context = static_cast<gss_ctx_id_t>(m_context);
    if (context != GSS_C_NO_CONTEXT)
    {
        gss_delete_sec_context(&minor, &context, GSS_C_NO_BUFFER);
    }
    auto credential = static_cast<gss_cred_id_t>(m_credential);
    if (credential != GSS_C_NO_CREDENTIAL)
    {
        gss_release_cred(&minor, &credential);
    }
}

bool TestKerberosAcceptor::Accept(const std::string& in_token, std::string& out_token, std::string& out_error)
{
    if (m_credential == nullptr)
    {
        out_error = "the service keytab could not be read";
        return false;
    }
    OM_uint32 minor = 0;
    auto context = static_cast<gss_ctx_id_t>(m_context);
    gss_buffer_desc input = BufferOf(in_token);
    gss_buffer_desc output = GSS_C_EMPTY_BUFFER;
    gss_name_t client = GSS_C_NO_NAME;
    gss_cred_id_t delegated = GSS_C_NO_CREDENTIAL;
    OM_uint32 flags = 0;
    const OM_uint32 major =
        gss_accept_sec_context(&minor, &context, static_cast<gss_cred_id_t>(m_credential), &input,
                               GSS_C_NO_CHANNEL_BINDINGS, &client, nullptr, &output, &flags, nullptr, &delegated);
    m_context = context;
    out_token = Take(output);
    if (GSS_ERROR(major))
    {
        out_error = Describe(major, minor);
        return false;
    }
    if (major == GSS_S_COMPLETE)
    {
        m_established = true;
        m_delegated = (flags & GSS_C_DELEG_FLAG) != 0 && delegated != GSS_C_NO_CREDENTIAL;
        gss_buffer_desc name = GSS_C_EMPTY_BUFFER;
        if (!GSS_ERROR(gss_display_name(&minor, client, &name, nullptr)))
        {
            m_client = Take(name);
        }
    }
    if (client != GSS_C_NO_NAME)
    {
        gss_release_name(&minor, &client);
    }
    if (delegated != GSS_C_NO_CREDENTIAL)
    {
        gss_release_cred(&minor, &delegated);
    }
    return true;
}

bool TestKerberosAcceptor::Wrap(const std::string& in_message, std::string& out_token)
{
    OM_uint32 minor = 0;
    gss_buffer_desc input = BufferOf(in_message);
    gss_buffer_desc output = GSS_C_EMPTY_BUFFER;
    if (GSS_ERROR(gss_wrap(&minor, static_cast<gss_ctx_id_t>(m_context), 0, GSS_C_QOP_DEFAULT, &input, nullptr,
                           &output)))
    {
        return false;
    }
    out_token = Take(output);
    return true;
}

bool TestKerberosAcceptor::Unwrap(const std::string& in_token, std::string& out_message)
{
    OM_uint32 minor = 0;
    gss_buffer_desc input = BufferOf(in_token);
    gss_buffer_desc output = GSS_C_EMPTY_BUFFER;
    if (GSS_ERROR(gss_unwrap(&minor, static_cast<gss_ctx_id_t>(m_context), &input, &output, nullptr, nullptr)))
    {
        return false;
    }
    out_message = Take(output);
    return true;
}
}  // namespace Tarni::Testing
