#pragma once
// The ODBC installer library ("odbccp32.dll" on Windows, unixODBC's
// "libodbcinst.so.2" on Linux), looked up by name at run time. A machine
// without a driver manager still runs the program: the calls then report
// that they could not be made.
//
// Text goes to the installer's wide entry points as UTF-16 on Windows and to
// its narrow ones as UTF-8 with unixODBC, whose wide ones would keep only the
// low byte of each character (see SystemLibraryNames). Data sources are
// read and written only through these calls, in the installer's current
// configuration mode, so the installers see what the program writes.
#include <cstdint>
#include <optional>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::Platform
{
class OdbcInstaller
{
public:
    /// Values of SQLGetConfigMode.
    static constexpr unsigned short CONFIG_MODE_BOTH_DSN = 0;
    static constexpr unsigned short CONFIG_MODE_USER_DSN = 1;
    static constexpr unsigned short CONFIG_MODE_SYSTEM_DSN = 2;

    /// Installer error codes of SQLPostInstallerError.
    static constexpr std::uint32_t ERROR_GENERAL_ERR = 1;
    static constexpr std::uint32_t ERROR_INVALID_HWND = 3;
    static constexpr std::uint32_t ERROR_INVALID_KEYWORD_VALUE = 8;
    static constexpr std::uint32_t ERROR_INVALID_NAME = 7;
    static constexpr std::uint32_t ERROR_INVALID_REQUEST_TYPE = 5;
    static constexpr std::uint32_t ERROR_REQUEST_FAILED = 11;
    static constexpr std::uint32_t ERROR_OUT_OF_MEM = 21;

    /// The data-source file name the installers map to the current mode's store.
    static constexpr const char16_t* DATA_SOURCE_FILE = u"odbc.ini";

    /// SQLGetConfigMode: the installer's configuration mode, or nothing when
    /// the library or the function is missing or the call fails.
    static std::optional<unsigned short> GetConfigMode();

    /// SQLSetConfigMode. Throws ErrorException when it cannot be set.
    static void SetConfigMode(unsigned short in_mode);

    /// SQLGetPrivateProfileString(W) of one entry: nothing when the entry is
    /// absent. Throws ErrorException when the installer cannot be reached.
    static std::optional<tarni_wstring> GetProfileString(tarni_wstring_view in_section, tarni_wstring_view in_key,
                                                         tarni_wstring_view in_file = DATA_SOURCE_FILE);

    /// The entry names of a section (the installer's list for a null entry),
    /// or the section names of the file when in_section is empty.
    static std::vector<tarni_wstring> GetProfileKeys(tarni_wstring_view in_section,
                                                     tarni_wstring_view in_file = DATA_SOURCE_FILE);

    /// SQLWritePrivateProfileString(W): writes one entry; a null value removes
    /// the entry, a null key the whole section. Throws ErrorException with the
    /// installer's own error text when the installer refuses.
    static void WriteProfileString(tarni_wstring_view in_section, const tarni_wstring* in_key,
                                   const tarni_wstring* in_value, tarni_wstring_view in_file = DATA_SOURCE_FILE);

    /// SQLWriteDSNToIni(W): registers the data source with its driver.
    static void WriteDSNToIni(tarni_wstring_view in_dsn, tarni_wstring_view in_driver);

    /// SQLRemoveDSNFromIni(W).
    static void RemoveDSNFromIni(tarni_wstring_view in_dsn);

    /// SQLValidDSN(W); false when the installer cannot be reached.
    static bool IsValidDSN(tarni_wstring_view in_dsn);

    /// SQLPostInstallerError(W): hands an error to the installer, which passes
    /// it to the program that called it. Does nothing without an installer.
    static void PostInstallerError(std::uint32_t in_code, tarni_wstring_view in_text);

    /// SQLInstallerError(W)'s first record, or empty.
    static tarni_wstring GetInstallerError();

    /// The library name to load instead of the platform's; empty restores
    /// it. Drops the loaded library. Lets a test stand in for a machine
    /// without a driver manager.
    static void SetLibraryName(tarni_wstring_view in_libraryName);
};

/// Sets the installer's configuration mode for a scope and restores the
/// previous one when it ends, so a program that called in keeps its mode.
class OdbcConfigModeScope
{
public:
    explicit OdbcConfigModeScope(unsigned short in_mode);
    ~OdbcConfigModeScope();
    OdbcConfigModeScope(const OdbcConfigModeScope&) = delete;
    OdbcConfigModeScope& operator=(const OdbcConfigModeScope&) = delete;

private:
    std::optional<unsigned short> m_previous;
};
}  // namespace Tarni::Platform
