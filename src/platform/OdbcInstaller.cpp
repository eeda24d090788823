#include "platform/OdbcInstaller.h"

#include <algorithm>
#include <memory>
#include <mutex>

#include "core/ErrorException.h"
#include "platform/DynamicLibrary.h"
#include "platform/SystemLibraryNames.h"

namespace Tarni::Platform
{
namespace
{
// The installer's entry points. BOOL is an int on both platforms, WORD an
// unsigned short, DWORD a 32-bit unsigned number, RETCODE a short, and the
// wide strings are UTF-16 on both; x64 Windows has a single calling convention.
using SQLGetConfigModeFunction = int (*)(unsigned short*);
using SQLSetConfigModeFunction = int (*)(unsigned short);
using SQLGetPrivateProfileStringWFunction = int (*)(const char16_t*, const char16_t*, const char16_t*, char16_t*,
                                                    int, const char16_t*);
using SQLWritePrivateProfileStringWFunction = int (*)(const char16_t*, const char16_t*, const char16_t*,
                                                      const char16_t*);
using SQLWriteDSNToIniWFunction = int (*)(const char16_t*, const char16_t*);
using SQLRemoveDSNFromIniWFunction = int (*)(const char16_t*);
using SQLValidDSNWFunction = int (*)(const char16_t*);
using SQLPostInstallerErrorWFunction = short (*)(std::uint32_t, const char16_t*);
using SQLInstallerErrorWFunction = short (*)(unsigned short, std::uint32_t*, char16_t*, unsigned short,
                                             unsigned short*);

/// A value no data source holds: tells an absent entry from an empty one.
constexpr const char16_t* ABSENT = u"\x1F<absent>\x1F";
/// The longest list of names read from one section or file, in characters.
constexpr int MAX_LIST_CHARS = 1 << 22;

std::mutex s_lock;
tarni_wstring s_libraryName;
// Kept loaded for the process: the installer keeps its mode in the library.
std::unique_ptr<DynamicLibrary> s_library;
tarni_wstring s_loadError;

tarni_wstring LibraryNameLocked()
{
    return s_libraryName.empty() ? SystemLibraryNames::OdbcInstallerLibrary() : s_libraryName;
}

const DynamicLibrary* LoadedLibraryLocked()
{
    if (s_library == nullptr)
    {
        s_library = DynamicLibrary::TryOpen(LibraryNameLocked(), &s_loadError);
    }
    return s_library.get();
}

/// The function, or null when the library or the function is missing.
template <typename Function>
Function TryResolve(const char* in_name)
{
    std::lock_guard<std::mutex> guard(s_lock);
    const DynamicLibrary* library = LoadedLibraryLocked();
    return library == nullptr ? nullptr : library->FindFunction<Function>(in_name);
}

/// The function; a missing library or function is an error naming both.
template <typename Function>
Function Resolve(const char* in_name)
{
    std::lock_guard<std::mutex> guard(s_lock);
    const DynamicLibrary* library = LoadedLibraryLocked();
    if (library == nullptr)
    {
        throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSInstallerMissingErr",
                                      {LibraryNameLocked(), s_loadError});
    }
    const auto function = library->FindFunction<Function>(in_name);
    if (function == nullptr)
    {
        tarni_wstring name;
        for (const char* c = in_name; *c != '\0'; ++c)
        {
            name.push_back(static_cast<char16_t>(*c));
        }
        throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR,
                                      u"DSInstallerFunctionErr", {name, LibraryNameLocked()});
    }
    return function;
}

[[noreturn]] void ThrowCallFailed(tarni_wstring_view in_function, tarni_wstring_view in_subject)
{
    tarni_wstring reason = OdbcInstaller::GetInstallerError();
    if (reason.empty())
    {
        reason = u"the installer gave no reason";
    }
    throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSInstallerCallErr",
                                  {tarni_wstring(in_function), tarni_wstring(in_subject), reason});
}

/// Names separated by NUL characters, the list ending with two.
std::vector<tarni_wstring> SplitList(const char16_t* in_list, int in_length)
{
    std::vector<tarni_wstring> names;
    tarni_wstring current;
    for (int i = 0; i < in_length; ++i)
    {
        if (in_list[i] == u'\0')
        {
            if (current.empty())
            {
                break;
            }
            names.push_back(current);
            current.clear();
        }
        else
        {
            current.push_back(in_list[i]);
        }
    }
    if (!current.empty())
    {
        names.push_back(current);
    }
    return names;
}
}  // namespace

std::optional<unsigned short> OdbcInstaller::GetConfigMode()
{
    const auto getConfigMode = TryResolve<SQLGetConfigModeFunction>("SQLGetConfigMode");
    unsigned short mode = 0;
    if (getConfigMode == nullptr || getConfigMode(&mode) == 0)
    {
        return std::nullopt;
    }
    return mode;
}

void OdbcInstaller::SetConfigMode(unsigned short in_mode)
{
    const auto setConfigMode = Resolve<SQLSetConfigModeFunction>("SQLSetConfigMode");
    if (setConfigMode(in_mode) == 0)
    {
        ThrowCallFailed(u"SQLSetConfigMode", in_mode == CONFIG_MODE_SYSTEM_DSN ? u"system" : u"user");
    }
}

std::optional<tarni_wstring> OdbcInstaller::GetProfileString(tarni_wstring_view in_section, tarni_wstring_view in_key,
                                                             tarni_wstring_view in_file)
{
    const auto getString = Resolve<SQLGetPrivateProfileStringWFunction>("SQLGetPrivateProfileStringW");
    const tarni_wstring section(in_section), key(in_key), file(in_file);
    for (int size = 1024; size <= MAX_LIST_CHARS; size *= 4)
    {
        tarni_wstring buffer(static_cast<size_t>(size), u'\0');
        const int length = getString(section.c_str(), key.c_str(), ABSENT, buffer.data(), size, file.c_str());
        if (length < 0)
        {
            ThrowCallFailed(u"SQLGetPrivateProfileStringW", section);
        }
        if (length < size - 1)
        {
            buffer.resize(static_cast<size_t>(length));
            if (buffer == ABSENT)
            {
                return std::nullopt;
            }
            return buffer;
        }
    }
    ThrowCallFailed(u"SQLGetPrivateProfileStringW", section + u"/" + key);
}

std::vector<tarni_wstring> OdbcInstaller::GetProfileKeys(tarni_wstring_view in_section, tarni_wstring_view in_file)
{
    const auto getString = Resolve<SQLGetPrivateProfileStringWFunction>("SQLGetPrivateProfileStringW");
    const tarni_wstring section(in_section), file(in_file);
    for (int size = 4096; size <= MAX_LIST_CHARS; size *= 4)
    {
        tarni_wstring buffer(static_cast<size_t>(size), u'\0');
        const int length = getString(section.empty() ? nullptr : section.c_str(), nullptr, u"", buffer.data(), size,
                                     file.c_str());
        if (length < 0)
        {
            ThrowCallFailed(u"SQLGetPrivateProfileStringW", section);
        }
        // A full buffer may have cut the list: read it again into a larger one.
        if (length < size - 2)
        {
            return SplitList(buffer.data(), length + 1);
        }
    }
    ThrowCallFailed(u"SQLGetPrivateProfileStringW", section);
}

void OdbcInstaller::WriteProfileString(tarni_wstring_view in_section, const tarni_wstring* in_key,
                                       const tarni_wstring* in_value, tarni_wstring_view in_file)
{
    const auto writeString = Resolve<SQLWritePrivateProfileStringWFunction>("SQLWritePrivateProfileStringW");
    const tarni_wstring section(in_section), file(in_file);
    if (writeString(section.c_str(), in_key != nullptr ? in_key->c_str() : nullptr,
                    in_value != nullptr ? in_value->c_str() : nullptr, file.c_str()) == 0)
    {
        ThrowCallFailed(u"SQLWritePrivateProfileStringW", in_key != nullptr ? section + u"/" + *in_key : section);
    }
}

void OdbcInstaller::WriteDSNToIni(tarni_wstring_view in_dsn, tarni_wstring_view in_driver)
{
    const auto writeDsn = Resolve<SQLWriteDSNToIniWFunction>("SQLWriteDSNToIniW");
    const tarni_wstring dsn(in_dsn), driver(in_driver);
    if (writeDsn(dsn.c_str(), driver.c_str()) == 0)
    {
        ThrowCallFailed(u"SQLWriteDSNToIniW", dsn);
    }
}

void OdbcInstaller::RemoveDSNFromIni(tarni_wstring_view in_dsn)
{
    const auto removeDsn = Resolve<SQLRemoveDSNFromIniWFunction>("SQLRemoveDSNFromIniW");
    const tarni_wstring dsn(in_dsn);
    if (removeDsn(dsn.c_str()) == 0)
    {
        ThrowCallFailed(u"SQLRemoveDSNFromIniW", dsn);
    }
}

bool OdbcInstaller::IsValidDSN(tarni_wstring_view in_dsn)
{
    const auto validDsn = TryResolve<SQLValidDSNWFunction>("SQLValidDSNW");
    const tarni_wstring dsn(in_dsn);
    return validDsn != nullptr && validDsn(dsn.c_str()) != 0;
}

void OdbcInstaller::PostInstallerError(std::uint32_t in_code, tarni_wstring_view in_text)
{
    const auto postError = TryResolve<SQLPostInstallerErrorWFunction>("SQLPostInstallerErrorW");
    if (postError != nullptr)
    {
        const tarni_wstring text(in_text);
        postError(in_code, text.c_str());
    }
}

tarni_wstring OdbcInstaller::GetInstallerError()
{
    const auto installerError = TryResolve<SQLInstallerErrorWFunction>("SQLInstallerErrorW");
    if (installerError == nullptr)
    {
        return {};
    }
    std::uint32_t code = 0;
    char16_t message[1024] = {};
    unsigned short length = 0;
    const short result = installerError(1, &code, message, 1023, &length);
    // SQL_SUCCESS 0 and SQL_SUCCESS_WITH_INFO 1 carry a message.
    if (result != 0 && result != 1)
    {
        return {};
    }
    return tarni_wstring(message, std::min<size_t>(length, 1023));
}

void OdbcInstaller::SetLibraryName(tarni_wstring_view in_libraryName)
{
    std::lock_guard<std::mutex> guard(s_lock);
    s_libraryName = tarni_wstring(in_libraryName);
    s_library.reset();
}

OdbcConfigModeScope::OdbcConfigModeScope(unsigned short in_mode) : m_previous(OdbcInstaller::GetConfigMode())
{
    OdbcInstaller::SetConfigMode(in_mode);
}

OdbcConfigModeScope::~OdbcConfigModeScope()
{
    if (m_previous)
    {
        try
        {
            OdbcInstaller::SetConfigMode(*m_previous);
        }
        catch (const Support::ErrorException&)
        {
            // The mode was set a moment ago; failing to put it back leaves the installer in that mode.
        }
    }
}
}  // namespace Tarni::Platform
