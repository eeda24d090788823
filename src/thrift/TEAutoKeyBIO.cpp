#include "thrift/TEAutoKeyBIO.h"

#include "support/StringConverter.h"

namespace Tarni::ThriftExtension
{
using Support::LibCrypto;

TEAutoKeyBIO::TEAutoKeyBIO(std::shared_ptr<const LibCrypto> in_crypto, const std::string& in_path,
                           std::string& out_error)
    : m_crypto(std::move(in_crypto))
{
    const LibCrypto& c = *m_crypto;
    c.ERR_clear_error();
    m_bio = c.BIO_new(c.BIO_s_file());
    // BIO_read_filename: the path is UTF-8 on every platform.
    if (m_bio == nullptr ||
        c.BIO_ctrl(m_bio, LibCrypto::BIO_C_SET_FILENAME, LibCrypto::BIO_CLOSE | LibCrypto::BIO_FP_READ,
                   const_cast<char*>(in_path.c_str())) <= 0)
    {
        out_error = Support::StringConverter::ToUtf8(c.TakeErrorText());
        if (m_bio != nullptr)
        {
            c.BIO_free(m_bio);
            m_bio = nullptr;
        }
    }
}

TEAutoKeyBIO::~TEAutoKeyBIO()
{
    if (m_bio != nullptr)
    {
        m_crypto->BIO_free(m_bio);
    }
}
}  // namespace Tarni::ThriftExtension
