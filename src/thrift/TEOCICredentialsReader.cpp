#include "thrift/TEOCICredentialsReader.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>

#include "platform/IniDocument.h"
#include "platform/ProcessEnvironment.h"
#include "support/StringConverter.h"
#include "thrift/TEAutoEVPPKey.h"

namespace Tarni::ThriftExtension
{
using Support::ILogger;
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEOCICredentialsReader";
const std::uint64_t MAX_TOKEN_READ = 16 * 1024 * 1024;

std::filesystem::path ToPath(const std::string& in_utf8)
{
    return std::filesystem::path(std::u8string(in_utf8.begin(), in_utf8.end()));
}

/// At most in_limit + 1 bytes of the file, so that a caller can tell a file
/// over the limit; nothing when the file cannot be opened or read.
std::optional<std::string> ReadFileHead(const std::string& in_path, std::size_t in_limit)
{
    std::ifstream file(ToPath(in_path), std::ios::binary);
    if (!file)
    {
        return std::nullopt;
    }
    std::string content;
    char buffer[4096];
    while (content.size() <= in_limit)
    {
        file.read(buffer, sizeof(buffer));
        content.append(buffer, static_cast<std::size_t>(file.gcount()));
        if (file.eof())
        {
            return content;
        }
        if (!file)
        {
            return std::nullopt;
        }
    }
    return content;
}

void EnableBrowserFlow(TEOCISettings& io_oci, ILogger* in_log, const std::string& in_reason)
{
    io_oci.m_useBrowserFlow = true;
    if (in_log != nullptr)
    {
        in_log->LogInfo(NS, CLS, "ReadCredentials",
                        "Could not get credentials from the config file. Enabling the browser-based authentication "
                        "flow. Reason: %s",
                        in_reason.c_str());
    }
}

/// Reads the session token; false (logged) when it is missing, unreadable or too large.
bool ReadSecurityToken(TEOCISettings& io_oci, ILogger* in_log)
{
    if (io_oci.m_securityTokenFile.empty())
    {
        if (in_log != nullptr)
        {
            in_log->LogError(NS, CLS, "ReadCredentials", "No security token file available.");
        }
        return false;
    }
    // A token never needs more than MAX_TOKEN_READ, whatever the setting says;
    // two more bytes leave room for a line end after a token of full size.
    const std::uint64_t maxSize = std::min<std::uint64_t>(io_oci.m_maxTokenSize, MAX_TOKEN_READ);
    const std::optional<std::string> content =
        ReadFileHead(io_oci.m_securityTokenFile, static_cast<std::size_t>(maxSize) + 2);
    if (!content)
    {
        if (in_log != nullptr)
        {
            in_log->LogError(NS, CLS, "ReadCredentials", "An error occurred while reading from the security token file %s.",
                             io_oci.m_securityTokenFile.c_str());
        }
        return false;
    }
    std::string token = *content;
    while (!token.empty() && (token.back() == '\n' || token.back() == '\r' || token.back() == ' '))
    {
        token.pop_back();
    }
    if (token.size() > maxSize)
    {
        if (in_log != nullptr)
        {
            const std::string text = "The size of the token in the security token file " +
                                     io_oci.m_securityTokenFile + " exceeds the max token size " +
                                     std::to_string(maxSize) + ".";
            in_log->LogError(NS, CLS, "ReadCredentials", "%s", text.c_str());
        }
        return false;
    }
    io_oci.m_securityToken = std::move(token);
    return true;
}
}  // namespace

std::string TEOCICredentialsReader::ExpandHome(const std::string& in_path)
{
    if (in_path.size() >= 2 && in_path[0] == '~' && (in_path[1] == '/' || in_path[1] == '\\'))
    {
        std::string home = StringConverter::ToUtf8(Platform::ProcessEnvironment::GetHomeDirectory());
        if (!home.empty() && (home.back() == '/' || home.back() == '\\'))
        {
            home.pop_back();
        }
        return home + in_path.substr(1);
    }
    return in_path;
}

void TEOCICredentialsReader::ReadCredentials(TEOCISettings& io_oci, ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadCredentials");
    const std::string configFile = ExpandHome(io_oci.m_configFile);
    const std::optional<std::string> content = ReadFileHead(configFile, MAX_CONFIG_FILE_SIZE);
    if (!content)
    {
        if (in_log != nullptr)
        {
            in_log->LogError(NS, CLS, "ReadCredentials", "Unable to open the config file %s.", configFile.c_str());
        }
        EnableBrowserFlow(io_oci, in_log, "the config file " + configFile + " cannot be opened.");
        return;
    }
    if (content->size() > MAX_CONFIG_FILE_SIZE)
    {
        EnableBrowserFlow(io_oci, in_log, "the config file " + configFile + " is larger than " +
                                              std::to_string(MAX_CONFIG_FILE_SIZE) + " bytes.");
        return;
    }
    const Platform::IniDocument document = Platform::IniDocument::Parse(*content, StringConverter::FromUtf8(configFile));
    const std::vector<Platform::StoredValue> values = document.ReadSection(StringConverter::FromUtf8(io_oci.m_profile));
    if (values.empty())
    {
        EnableBrowserFlow(io_oci, in_log,
                          "the profile " + io_oci.m_profile + " was not found in the config file " + configFile + ".");
        return;
    }
    if (in_log != nullptr)
    {
        in_log->LogInfo(NS, CLS, "ReadCredentials", "Successfully read the profile %s from the config file %s.",
                        io_oci.m_profile.c_str(), configFile.c_str());
    }
    std::string passPhrase;
    for (const Platform::StoredValue& value : values)
    {
        const std::string text = StringConverter::ToUtf8(value.value);
        if (StringConverter::EqualsIgnoreCase(value.name, u"user"))
        {
            io_oci.m_user = text;
        }
        else if (StringConverter::EqualsIgnoreCase(value.name, u"fingerprint"))
        {
            io_oci.m_fingerprint = text;
        }
        else if (StringConverter::EqualsIgnoreCase(value.name, u"tenancy"))
        {
            io_oci.m_tenancy = text;
        }
        else if (StringConverter::EqualsIgnoreCase(value.name, u"key_file"))
        {
            io_oci.m_keyFile = ExpandHome(text);
        }
        else if (StringConverter::EqualsIgnoreCase(value.name, u"security_token_file"))
        {
            io_oci.m_securityTokenFile = ExpandHome(text);
        }
        else if (StringConverter::EqualsIgnoreCase(value.name, u"pass_phrase"))
        {
            passPhrase = text;
        }
    }

    if (io_oci.m_keyFile.empty())
    {
        if (in_log != nullptr)
        {
            in_log->LogError(NS, CLS, "ReadCredentials", "No private key file available.");
        }
        EnableBrowserFlow(io_oci, in_log, "the profile names no private key file.");
        return;
    }
    io_oci.m_privateKey = TEAutoEVPPKey::ReadPrivateKeyFile(io_oci.m_keyFile, passPhrase, in_log);
    if (!io_oci.m_privateKey)
    {
        EnableBrowserFlow(io_oci, in_log, "the private key file " + io_oci.m_keyFile + " cannot be read.");
        return;
    }
    if (!ReadSecurityToken(io_oci, in_log))
    {
        io_oci.m_privateKey.reset();
        EnableBrowserFlow(io_oci, in_log, "no usable security token.");
        return;
    }
    io_oci.m_useBrowserFlow = false;
}
}  // namespace Tarni::ThriftExtension
