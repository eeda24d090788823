#include "platform/OdbcInstaller.h"

#include <algorithm>
#include <memory>
#include <string>
#include <mutex>

#include "core/ErrorException.h"
#include "platform/DynamicLibrary.h"
#include "platform/SystemLibraryNames.h"
#include "platform/TextConversion.h"

namespace Tarni::Platform
{
namespace
{
// The installer's entry points. BOOL is an int on both platforms, WORD an
// unsigned short, DWORD a 32-bit unsigned number, RETCODE a short, and the
// wide strings are UTF-16 on both; x64 Windows has a single calling convention.
// The entry points that take text are declared in Calls below.
using SQLGetConfigModeFunction = int (*)(unsigned short*);
using SQLSetConfigModeFunction = int (*)(unsigned short);

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

// The installer's text entry points in one character type: the wide ones
// (UTF-16) or the narrow ones (UTF-8 where SystemLibraryNames says so).
struct WideText
{
    using Char = char16_t;
    using String = tarni_wstring;
    static constexpr const char* SUFFIX = "W";
    static String In(tarni_wstring_view in_text) { return String(in_text); }
    static tarni_wstring Out(const Char* in_text, std::size_t in_length) { return tarni_wstring(in_text, in_length); }
};

struct Utf8Text
{
    using Char = char;
    using String = std::string;
    static constexpr const char* SUFFIX = "";
    static String In(tarni_wstring_view in_text) { return TextConversion::Utf16ToUtf8(in_text); }
    // Bytes that are not UTF-8 (written by another program) are replaced,
    // not refused: the entry is still shown and can be written again.
    static tarni_wstring Out(const Char* in_text, std::size_t in_length)
    {
        return TextConversion::Utf8ToUtf16(std::string_view(in_text, in_length));
    }
};

template <typename Text>
class Calls
{
    using Char = typename Text::Char;
    using String = typename Text::String;
    using GetString = int (*)(const Char*, const Char*, const Char*, Char*, int, const Char*);
    using WriteString = int (*)(const Char*, const Char*, const Char*, const Char*);
    using WriteDsn = int (*)(const Char*, const Char*);
    using OneName = int (*)(const Char*);
    using PostError = short (*)(std::uint32_t, const Char*);
    using InstallerError = short (*)(unsigned short, std::uint32_t*, Char*, unsigned short, unsigned short*);

    static std::string Name(const char* in_function) { return std::string(in_function) + Text::SUFFIX; }
    static tarni_wstring WideName(const char* in_function)
    {
        const std::string name = Name(in_function);
        return tarni_wstring(name.begin(), name.end());
    }
    static const Char* OrNull(const String& in_text) { return in_text.empty() ? nullptr : in_text.c_str(); }

    /// Names separated by NUL characters, the list ending with two.
    static std::vector<tarni_wstring> SplitList(const Char* in_list, int in_length)
    {
        std::vector<tarni_wstring> names;
        int begin = 0;
        for (int i = 0; i <= in_length; ++i)
        {
            if (i == in_length || in_list[i] == Char(0))
            {
                if (i == begin)
                {
                    break;
                }
                names.push_back(Text::Out(in_list + begin, static_cast<std::size_t>(i - begin)));
                begin = i + 1;
            }
        }
        return names;
    }

public:
    static std::optional<tarni_wstring> GetProfileString(tarni_wstring_view in_section, tarni_wstring_view in_key,
                                                         tarni_wstring_view in_file)
    {
        const auto getString = Resolve<GetString>(Name("SQLGetPrivateProfileString").c_str());
        const String section = Text::In(in_section), key = Text::In(in_key), file = Text::In(in_file);
        const String absent = Text::In(ABSENT);
        for (int size = 1024; size <= MAX_LIST_CHARS; size *= 4)
        {
            String buffer(static_cast<std::size_t>(size), Char(0));
            const int length = getString(section.c_str(), key.c_str(), absent.c_str(), buffer.data(), size,
                                         file.c_str());
            if (length < 0)
            {
                ThrowCallFailed(WideName("SQLGetPrivateProfileString"), in_section);
            }
            if (length < size - 1)
            {
                buffer.resize(static_cast<std::size_t>(length));
                if (buffer == absent)
                {
                    return std::nullopt;
                }
                return Text::Out(buffer.data(), buffer.size());
            }
        }
        ThrowCallFailed(WideName("SQLGetPrivateProfileString"), tarni_wstring(in_section) + u"/" + tarni_wstring(in_key));
    }

    static std::vector<tarni_wstring> GetProfileKeys(tarni_wstring_view in_section, tarni_wstring_view in_file)
    {
        const auto getString = Resolve<GetString>(Name("SQLGetPrivateProfileString").c_str());
        const String section = Text::In(in_section), file = Text::In(in_file), none;
        for (int size = 4096; size <= MAX_LIST_CHARS; size *= 4)
        {
            String buffer(static_cast<std::size_t>(size), Char(0));
            const int length = getString(OrNull(section), nullptr, none.c_str(), buffer.data(), size, file.c_str());
            if (length < 0)
            {
                ThrowCallFailed(WideName("SQLGetPrivateProfileString"), in_section);
            }
            // A full buffer may have cut the list: read it again into a larger one.
            if (length < size - 2)
            {
                return SplitList(buffer.data(), length + 1);
            }
        }
        ThrowCallFailed(WideName("SQLGetPrivateProfileString"), in_section);
    }

    static void WriteProfileString(tarni_wstring_view in_section, const tarni_wstring* in_key,
                                   const tarni_wstring* in_value, tarni_wstring_view in_file)
    {
        const auto writeString = Resolve<WriteString>(Name("SQLWritePrivateProfileString").c_str());
        const String section = Text::In(in_section), file = Text::In(in_file);
        const String key = in_key != nullptr ? Text::In(*in_key) : String();
        const String value = in_value != nullptr ? Text::In(*in_value) : String();
        if (writeString(section.c_str(), in_key != nullptr ? key.c_str() : nullptr,
                        in_value != nullptr ? value.c_str() : nullptr, file.c_str()) == 0)
        {
            ThrowCallFailed(WideName("SQLWritePrivateProfileString"),
                            in_key != nullptr ? tarni_wstring(in_section) + u"/" + *in_key : tarni_wstring(in_section));
        }
    }

    static void WriteDSNToIni(tarni_wstring_view in_dsn, tarni_wstring_view in_driver)
    {
        const auto writeDsn = Resolve<WriteDsn>(Name("SQLWriteDSNToIni").c_str());
        const String dsn = Text::In(in_dsn), driver = Text::In(in_driver);
        if (writeDsn(dsn.c_str(), driver.c_str()) == 0)
        {
            ThrowCallFailed(WideName("SQLWriteDSNToIni"), in_dsn);
        }
    }

    static void RemoveDSNFromIni(tarni_wstring_view in_dsn)
    {
        const auto removeDsn = Resolve<OneName>(Name("SQLRemoveDSNFromIni").c_str());
        const String dsn = Text::In(in_dsn);
        if (removeDsn(dsn.c_str()) == 0)
        {
            ThrowCallFailed(WideName("SQLRemoveDSNFromIni"), in_dsn);
        }
    }

    static bool IsValidDSN(tarni_wstring_view in_dsn)
    {
        const auto validDsn = TryResolve<OneName>(Name("SQLValidDSN").c_str());
        const String dsn = Text::In(in_dsn);
        return validDsn != nullptr && validDsn(dsn.c_str()) != 0;
    }

    static void PostInstallerError(std::uint32_t in_code, tarni_wstring_view in_text)
    {
        const auto postError = TryResolve<PostError>(Name("SQLPostInstallerError").c_str());
        if (postError != nullptr)
        {
            const String text = Text::In(in_text);
            postError(in_code, text.c_str());
        }
    }

    static tarni_wstring GetInstallerError()
    {
        const auto installerError = TryResolve<InstallerError>(Name("SQLInstallerError").c_str());
        if (installerError == nullptr)
        {
            return {};
        }
        std::uint32_t code = 0;
        Char message[1024] = {};
        unsigned short length = 0;
        const short result = installerError(1, &code, message, 1023, &length);
        // SQL_SUCCESS 0 and SQL_SUCCESS_WITH_INFO 1 carry a message.
        if (result != 0 && result != 1)
        {
            return {};
        }
        return Text::Out(message, std::min<std::size_t>(length, 1023));
    }
};
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
    return SystemLibraryNames::OdbcInstallerTakesUtf8() ? Calls<Utf8Text>::GetProfileString(in_section, in_key, in_file)
                                                        : Calls<WideText>::GetProfileString(in_section, in_key, in_file);
}

std::vector<tarni_wstring> OdbcInstaller::GetProfileKeys(tarni_wstring_view in_section, tarni_wstring_view in_file)
{
    return SystemLibraryNames::OdbcInstallerTakesUtf8() ? Calls<Utf8Text>::GetProfileKeys(in_section, in_file)
                                                        : Calls<WideText>::GetProfileKeys(in_section, in_file);
}

void OdbcInstaller::WriteProfileString(tarni_wstring_view in_section, const tarni_wstring* in_key,
                                       const tarni_wstring* in_value, tarni_wstring_view in_file)
{
    SystemLibraryNames::OdbcInstallerTakesUtf8() ? Calls<Utf8Text>::WriteProfileString(in_section, in_key, in_value, in_file)
                                                 : Calls<WideText>::WriteProfileString(in_section, in_key, in_value, in_file);
}

void OdbcInstaller::WriteDSNToIni(tarni_wstring_view in_dsn, tarni_wstring_view in_driver)
{
    SystemLibraryNames::OdbcInstallerTakesUtf8() ? Calls<Utf8Text>::WriteDSNToIni(in_dsn, in_driver)
                                                 : Calls<WideText>::WriteDSNToIni(in_dsn, in_driver);
}

void OdbcInstaller::RemoveDSNFromIni(tarni_wstring_view in_dsn)
{
    SystemLibraryNames::OdbcInstallerTakesUtf8() ? Calls<Utf8Text>::RemoveDSNFromIni(in_dsn)
                                                 : Calls<WideText>::RemoveDSNFromIni(in_dsn);
}

bool OdbcInstaller::IsValidDSN(tarni_wstring_view in_dsn)
{
    return SystemLibraryNames::OdbcInstallerTakesUtf8() ? Calls<Utf8Text>::IsValidDSN(in_dsn)
                                                        : Calls<WideText>::IsValidDSN(in_dsn);
}

void OdbcInstaller::PostInstallerError(std::uint32_t in_code, tarni_wstring_view in_text)
{
    SystemLibraryNames::OdbcInstallerTakesUtf8() ? Calls<Utf8Text>::PostInstallerError(in_code, in_text)
                                                 : Calls<WideText>::PostInstallerError(in_code, in_text);
}

tarni_wstring OdbcInstaller::GetInstallerError()
{
    return SystemLibraryNames::OdbcInstallerTakesUtf8() ? Calls<Utf8Text>::GetInstallerError()
                                                        : Calls<WideText>::GetInstallerError();
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
