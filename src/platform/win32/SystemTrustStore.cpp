#include "platform/SystemTrustStore.h"

#include <windows.h>
#include <wincrypt.h>

namespace Tarni::Platform
{
std::vector<std::string> SystemTrustStore::ReadRootCertificates()
{
    std::vector<std::string> certificates;
    // The current user's view of the root store includes the machine's roots.
    HCERTSTORE store = ::CertOpenSystemStoreW(0, L"ROOT");
    if (store == nullptr)
    {
        return certificates;
    }
    PCCERT_CONTEXT context = nullptr;
    while ((context = ::CertEnumCertificatesInStore(store, context)) != nullptr)
    {
        if (context->dwCertEncodingType & X509_ASN_ENCODING)
        {
            certificates.emplace_back(reinterpret_cast<const char*>(context->pbCertEncoded), context->cbCertEncoded);
        }
    }
    ::CertCloseStore(store, 0);
    return certificates;
}
}  // namespace Tarni::Platform
