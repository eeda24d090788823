#include "driversupport/DSConfigurationFile.h"

#include <optional>
#include <vector>

#include "core/ErrorException.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSDSNConfiguration.h"
#include "driversupport/DSEncryptionUtils.h"
#include "platform/SystemError.h"
#include "platform/WholeFile.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using Support::ErrorException;
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSConfigurationFile";

/// The machine's logging settings: never exported, kept by an import.
constexpr tarni_wstring_view LOGGING_KEYS[] = {Keys::LogLevel, Keys::LogPath, Keys::LogNamespace, Keys::LogFileCount,
                                               Keys::LogFileSize};

[[noreturn]] void Fail(tarni_wstring_view in_key, std::vector<tarni_wstring> in_parameters)
{
    throw ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, tarni_wstring(in_key),
                         std::move(in_parameters));
}

tarni_wstring Number(std::size_t in_value)
{
    return StringConverter::FromNumber(static_cast<unsigned long long>(in_value));
}

bool IsBlank(char16_t in_unit) { return in_unit == u' ' || in_unit == u'\t'; }

/// A name every store can hold: not empty, no surrounding blanks, not
/// beginning like an INI section or comment, within the registry's limit.
/// Nor may it begin with U+FEFF, which a reader takes for a byte-order mark.
bool IsStorableKey(tarni_wstring_view in_key)
{
    return !in_key.empty() && in_key.size() <= DSConfigurationFile::MAX_KEY_CHARS && !IsBlank(in_key.front()) &&
           !IsBlank(in_key.back()) && in_key.front() != u'[' && in_key.front() != u';' && in_key.front() != u'#' &&
           in_key.front() != u'\uFEFF';
}

bool HasLineBreakOrNul(tarni_wstring_view in_text)
{
    return in_text.find_first_of(tarni_wstring_view(u"\r\n\0", 3)) != tarni_wstring_view::npos;
}
}  // namespace

ConfigurationMap DSConfigurationFile::GetExportMap(const DSDSNConfiguration& in_configuration)
{
    TARNI_LOG_ENTRY(in_configuration.GetLog(), NS, CLS, "GetExportMap");
    ConfigurationMap map = in_configuration.GetMap();
    for (const tarni_wstring_view key : LOGGING_KEYS)
    {
        map.Remove(key);
    }
    // The refresh token has no protected form, yet grants access as the access token does.
    map.Remove(Keys::Auth_RefreshToken);
    for (const DSUidPwdConfiguration* credential : in_configuration.GetCredentialComponents())
    {
        map.Remove(credential->GetKeySet().Pwd());
        map.Remove(credential->GetKeySet().EncryptedPwd());
    }
    for (auto it = map.begin(); it != map.end();)
    {
        // A protected value decrypts only for this user or machine, and a
        // never-stored key is a plain secret of some component.
        if (in_configuration.IsNeverStoredKey(it->first) || DSEncryptionUtils::HasProtectedForm(it->second))
        {
            it = map.erase(it);
        }
        else
        {
            ++it;
        }
    }
    return map;
}

std::string DSConfigurationFile::Format(const ConfigurationMap& in_map)
{
    std::string bytes;
    for (const auto& [key, value] : in_map)
    {
        if (!IsStorableKey(key) || key.find(u'=') != tarni_wstring::npos || HasLineBreakOrNul(key) ||
            HasLineBreakOrNul(value))
        {
            Fail(u"DSConfigFileEntryErr", {key});
        }
        bytes += StringConverter::ToUtf8(key);
        bytes += '=';
        bytes += StringConverter::ToUtf8(value);
        bytes += '\n';
    }
    return bytes;
}

ConfigurationMap DSConfigurationFile::Parse(std::string_view in_bytes, tarni_wstring_view in_source)
{
    const tarni_wstring source(in_source);
    if (in_bytes.size() > MAX_FILE_BYTES)
    {
        Fail(u"DSConfigFileSizeErr", {source, Number(MAX_FILE_BYTES)});
    }
    if (in_bytes.substr(0, 3) == "\xEF\xBB\xBF")
    {
        in_bytes.remove_prefix(3);
    }
    ConfigurationMap values;
    std::size_t lineNumber = 0;
    while (!in_bytes.empty())
    {
        ++lineNumber;
        const std::size_t end = in_bytes.find('\n');
        std::string_view line = in_bytes.substr(0, end);
        in_bytes.remove_prefix(end == std::string_view::npos ? in_bytes.size() : end + 1);
        if (!line.empty() && line.back() == '\r')
        {
            line.remove_suffix(1);
        }
        if (line.find('\0') != std::string_view::npos)
        {
            Fail(u"DSConfigFileNulErr", {source, Number(lineNumber)});
        }
        if (!StringConverter::IsValidUtf8(line))
        {
            Fail(u"DSConfigFileEncodingErr", {source, Number(lineNumber)});
        }
        if (line.find('\r') != std::string_view::npos)
        {
            Fail(u"DSConfigFileLineEndErr", {source, Number(lineNumber)});
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos)
        {
            continue;
        }
        const tarni_wstring key = StringConverter::FromUtf8(line.substr(0, equals));
        if (!IsStorableKey(key))
        {
            // Long names are cut for the message; the line number finds them.
            Fail(u"DSConfigFileKeyErr", {source, Number(lineNumber), key.substr(0, 80)});
        }
        values.SetValue(key, StringConverter::FromUtf8(line.substr(equals + 1)));
    }
    return values;
}

void DSConfigurationFile::Export(const DSDSNConfiguration& in_configuration, const tarni_wstring& in_path)
{
    TARNI_LOG_ENTRY(in_configuration.GetLog(), NS, CLS, "Export");
    const std::string bytes = Format(GetExportMap(in_configuration));
    if (const int error = Platform::WholeFile::Replace(in_path, bytes); error != 0)
    {
        Fail(u"DSConfigFileWriteErr", {in_path, Platform::SystemError::Text(error)});
    }
}

ConfigurationMap DSConfigurationFile::Read(const tarni_wstring& in_path)
{
    const Platform::WholeFile::Contents contents = Platform::WholeFile::Read(in_path, MAX_FILE_BYTES + 1);
    if (contents.status == Platform::WholeFile::Status::Folder)
    {
        Fail(u"DSConfigFileFolderErr", {in_path});
    }
    if (contents.status == Platform::WholeFile::Status::Failed)
    {
        Fail(u"DSConfigFileReadErr", {in_path, Platform::SystemError::Text(contents.errorCode)});
    }
    return Parse(contents.bytes, in_path);
}

void DSConfigurationFile::Import(DSDSNConfiguration& io_configuration, const ConfigurationMap& in_values)
{
    TARNI_LOG_ENTRY(io_configuration.GetLog(), NS, CLS, "Import");
    std::vector<std::pair<tarni_wstring, tarni_wstring>> kept;
    for (const tarni_wstring_view key : LOGGING_KEYS)
    {
        if (!in_values.Contains(key) && io_configuration.GetMap().Contains(key))
        {
            kept.emplace_back(key, io_configuration.GetValue(key));
        }
    }
    io_configuration.Load(in_values);
    for (const auto& [key, value] : kept)
    {
        io_configuration.SetValue(key, value);
    }
}
}  // namespace Tarni::DriverSupport
