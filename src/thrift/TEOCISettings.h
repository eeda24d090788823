#pragma once
// Settings of a connection to a cloud data flow cluster: the region and the endpoints built from it, and the credentials
// read from the user's OCI configuration file.
#include <cstdint>
#include <memory>
#include <string>

namespace Tarni::ThriftExtension
{
class TEAutoEVPPKey;

struct TEOCISettings
{
    std::string m_region;
    /// Seconds before expiry at which the token is refreshed.
    std::uint32_t m_tokenRefreshBuffer = 300;
    bool m_ignoreDriverNoPrompt = false;
    /// Seconds the browser-based flow waits for the user.
    std::uint32_t m_webServerTimeout = 120;
    bool m_webServerTimeoutTakesPrecedence = false;
    /// Given by OCIConfigFile, else the "config" file in the user's ".oci" folder.
    std::string m_configFile;
    std::string m_profile = "DEFAULT";
    /// Largest security token accepted, in bytes.
    std::uint64_t m_maxTokenSize = 65536;
    std::string m_authURL;
    std::string m_tokenRefreshURL;

    // From the profile of the configuration file.
    std::string m_user;
    std::string m_fingerprint;
    std::string m_tenancy;
    std::string m_keyFile;
    std::string m_securityTokenFile;
    /// The session token (a secret: never logged).
    std::string m_securityToken;
    /// The private key of the profile, read from m_keyFile.
    std::shared_ptr<TEAutoEVPPKey> m_privateKey;

    /// No usable credentials in the configuration file: authenticate in the browser.
    bool m_useBrowserFlow = false;
};
}  // namespace Tarni::ThriftExtension
