#pragma once
// Reads the credentials of an OCI connection from the profile of the user's
// OCI configuration file (an INI file): the private key file and the session
// token file it names. When the file, the profile, the key or the token is
// not usable, the connection falls back to the browser-based flow.
#include <string>

#include "core/ILogger.h"
#include "thrift/TEOCISettings.h"

namespace Tarni::ThriftExtension
{
class TEOCICredentialsReader
{
public:
    /// Largest configuration file read, in bytes.
    static constexpr std::size_t MAX_CONFIG_FILE_SIZE = 1024 * 1024;

    /// Reads io_oci.m_profile from io_oci.m_configFile into io_oci. Sets
    /// m_useBrowserFlow when no credentials were found. Throws ErrorException
    /// ("DSIniSyntaxErr" and kin) naming the file and line when the file is
    /// malformed.
    static void ReadCredentials(TEOCISettings& io_oci, Support::ILogger* in_log);

    /// A path of the file; "~/" at its start stands for the home folder.
    static std::string ExpandHome(const std::string& in_path);
};
}  // namespace Tarni::ThriftExtension
