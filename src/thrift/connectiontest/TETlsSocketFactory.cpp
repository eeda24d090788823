#include "thrift/connectiontest/TETlsSocketFactory.h"

#include <algorithm>

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

#include "platform/SystemTrustStore.h"
#include "thrift/connectiontest/TEConnectionTarget.h"
#include "thrift/TEException.h"
#include "thrift/TEVerifiedPeerAccessManager.h"

namespace Tarni::ThriftExtension
{
using apache::thrift::transport::SSLTLS;
using apache::thrift::transport::TSSLSocket;
using apache::thrift::transport::TSSLException;

namespace
{
// The verdict of the certificate check, per thread: a test runs on one thread
// from connect to result.
thread_local std::string t_verifyFailure;
thread_local std::string t_handshake;
thread_local bool t_selfSignedAccepted = false;

std::string NameOf(X509_NAME* in_name)
{
    if (in_name == nullptr)
    {
        return "?";
    }
    BIO* memory = BIO_new(BIO_s_mem());
    X509_NAME_print_ex(memory, in_name, 0, XN_FLAG_RFC2253);
    char* data = nullptr;
    const long length = BIO_get_mem_data(memory, &data);
    std::string text(data != nullptr ? data : "", static_cast<std::size_t>(std::max(length, 0L)));
    BIO_free(memory);
    return text;
}

// Index of the factory's switch in the context's extra data.
int SelfSignedIndex()
{
    static const int index = SSL_CTX_get_ex_new_index(0, nullptr, nullptr, nullptr, nullptr);
    return index;
}

// Index of the factory itself, for the handshake summary.
int FactoryIndex()
{
    static const int index = SSL_CTX_get_ex_new_index(0, nullptr, nullptr, nullptr, nullptr);
    return index;
}

std::string OpenSslErrors()
{
    std::string text;
    unsigned long code;
    while ((code = ERR_get_error()) != 0)
    {
        char buffer[256];
        ERR_error_string_n(code, buffer, sizeof(buffer));
        text += text.empty() ? "" : "; ";
        text += buffer;
    }
    return text.empty() ? "unknown error" : text;
}

[[noreturn]] void SetupError(const std::string& in_what)
{
    throw TEException::WithText(u"TETlsSetupError", in_what + ": " + OpenSslErrors());
}
}  // namespace

TETlsSocketFactory::TETlsSocketFactory(const TEConnectionTarget& in_target)
    : TSSLSocketFactory(SSLTLS), m_keyPassword(in_target.m_clientKeyPassword)
{
    SSL_CTX* context = ctx_->get();
    ERR_clear_error();
    const int minimum = MinimumProtocol(in_target.m_minTls);
    if (minimum != 0)
    {
        SSL_CTX_set_min_proto_version(context, minimum);
    }
    LoadTrust(in_target);
    if (in_target.m_twoWaySsl)
    {
        if (in_target.m_clientCertFile.empty() ||
            SSL_CTX_use_certificate_chain_file(context, in_target.m_clientCertFile.c_str()) != 1)
        {
            SetupError("the client certificate \"" + in_target.m_clientCertFile + "\" (ClientCert) cannot be used");
        }
        overrideDefaultPasswordCallback();
        if (in_target.m_clientKeyFile.empty() ||
            SSL_CTX_use_PrivateKey_file(context, in_target.m_clientKeyFile.c_str(), SSL_FILETYPE_PEM) != 1)
        {
            SetupError("the client private key \"" + in_target.m_clientKeyFile +
                       "\" (ClientPrivateKey) cannot be used");
        }
    }
    // The host-name check is OpenSSL's, made during the handshake; the
    // verification callback then sees every failure with its reason.
    X509_VERIFY_PARAM* parameters = SSL_CTX_get0_param(context);
    if (!in_target.m_allowHostNameMismatch)
    {
        X509_VERIFY_PARAM_set_hostflags(parameters, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
        const bool address = in_target.m_host.find_first_not_of("0123456789.") == std::string::npos ||
                             in_target.m_host.find(':') != std::string::npos;
        if (address)
        {
            X509_VERIFY_PARAM_set1_ip_asc(parameters, in_target.m_host.c_str());
        }
        else
        {
            X509_VERIFY_PARAM_set1_host(parameters, in_target.m_host.c_str(), 0);
        }
    }
    SSL_CTX_set_ex_data(context, SelfSignedIndex(), in_target.m_allowSelfSigned ? this : nullptr);
    SSL_CTX_set_verify(context, SSL_VERIFY_PEER, &VerifyCallback);
    m_checksHostName = !in_target.m_allowHostNameMismatch;
    SSL_CTX_set_ex_data(context, FactoryIndex(), this);
    SSL_CTX_set_info_callback(context, &InfoCallback);
    // Thrift's own name check would repeat the one above without the switch.
    access(std::make_shared<TEVerifiedPeerAccessManager>());
}

TETlsSocketFactory::~TETlsSocketFactory()
{
    std::fill(m_keyPassword.begin(), m_keyPassword.end(), '\0');
}

void TETlsSocketFactory::LoadTrust(const TEConnectionTarget& in_target)
{
    SSL_CTX* context = ctx_->get();
    if (!in_target.m_trustedCertsFile.empty() && !in_target.m_useSystemTrustStore)
    {
        if (SSL_CTX_load_verify_locations(context, in_target.m_trustedCertsFile.c_str(), nullptr) != 1)
        {
            SetupError("the trusted certificates file \"" + in_target.m_trustedCertsFile +
                       "\" (TrustedCerts) cannot be read");
        }
        return;
    }
    const std::vector<std::string> roots = Platform::SystemTrustStore::ReadRootCertificates();
    if (roots.empty())
    {
        SSL_CTX_set_default_verify_paths(context);
        ERR_clear_error();
        return;
    }
    X509_STORE* store = SSL_CTX_get_cert_store(context);
    for (const std::string& der : roots)
    {
        const unsigned char* bytes = reinterpret_cast<const unsigned char*>(der.data());
        if (X509* certificate = d2i_X509(nullptr, &bytes, static_cast<long>(der.size())))
        {
            X509_STORE_add_cert(store, certificate);
            X509_free(certificate);
        }
    }
    ERR_clear_error();
}

int TETlsSocketFactory::MinimumProtocol(const std::string& in_minTls)
{
    if (in_minTls == "1.0")
    {
        return TLS1_VERSION;
    }
    if (in_minTls == "1.1")
    {
        return TLS1_1_VERSION;
    }
    if (in_minTls == "1.2")
    {
        return TLS1_2_VERSION;
    }
    return 0;
}

int TETlsSocketFactory::VerifyCallback(int in_preverified, X509_STORE_CTX* in_context)
{
    if (in_preverified == 1)
    {
        return 1;
    }
    const int error = X509_STORE_CTX_get_error(in_context);
    SSL* ssl = static_cast<SSL*>(X509_STORE_CTX_get_ex_data(in_context, SSL_get_ex_data_X509_STORE_CTX_idx()));
    const bool allowSelfSigned =
        ssl != nullptr && SSL_CTX_get_ex_data(SSL_get_SSL_CTX(ssl), SelfSignedIndex()) != nullptr;
    if (allowSelfSigned &&
        (error == X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT || error == X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN))
    {
        X509_STORE_CTX_set_error(in_context, X509_V_OK);
        t_selfSignedAccepted = true;
        return 1;
    }
    t_verifyFailure = X509_verify_cert_error_string(error);
    return 0;
}

void TETlsSocketFactory::InfoCallback(const SSL* in_ssl, int in_where, int)
{
    if ((in_where & SSL_CB_HANDSHAKE_DONE) == 0)
    {
        return;
    }
    std::string text = std::string(SSL_get_version(in_ssl)) + ", " + SSL_get_cipher_name(in_ssl);
    if (X509* certificate = SSL_get1_peer_certificate(in_ssl))
    {
        text += "; server certificate " + NameOf(X509_get_subject_name(certificate)) + ", issued by " +
                NameOf(X509_get_issuer_name(certificate));
        X509_free(certificate);
    }
    const long verified = SSL_get_verify_result(in_ssl);
    if (verified != X509_V_OK)
    {
        text += "; not verified: " + std::string(X509_verify_cert_error_string(verified));
    }
    else
    {
        text += t_selfSignedAccepted ? "; self-signed, accepted (AllowSelfSignedServerCert)" : "; verified";
        const auto* factory = static_cast<const TETlsSocketFactory*>(SSL_CTX_get_ex_data(SSL_get_SSL_CTX(in_ssl), FactoryIndex()));
        if (factory != nullptr && !factory->m_checksHostName)
        {
            text += ", host name not checked (AllowHostNameCNMismatch)";
        }
    }
    t_handshake = text;
}

std::string TETlsSocketFactory::LastHandshake()
{
    return t_handshake;
}

std::string TETlsSocketFactory::LastVerifyFailure()
{
    return t_verifyFailure;
}

std::shared_ptr<TSSLSocket> TETlsSocketFactory::Wrap(THRIFT_SOCKET in_socket, const std::string& in_host)
{
    t_verifyFailure.clear();
    t_handshake.clear();
    t_selfSignedAccepted = false;
    std::shared_ptr<TSSLSocket> socket = createSocket(in_socket);
    // The name for the server name indication.
    socket->setHost(in_host);
    return socket;
}

void TETlsSocketFactory::getPassword(std::string& out_password, int in_size)
{
    out_password = m_keyPassword.substr(0, static_cast<std::size_t>(std::max(in_size, 0)));
}
}  // namespace Tarni::ThriftExtension
