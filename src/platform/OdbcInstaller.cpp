#include "platform/OdbcInstaller.h"

#include <memory>
#include <mutex>

#include "platform/DynamicLibrary.h"
#include "platform/SystemLibraryNames.h"

namespace Tarni::Platform
{
namespace
{
// BOOL SQLGetConfigMode(UWORD*): BOOL is an int on both platforms, and x64
// Windows has a single calling convention.
using SQLGetConfigModeFunction = int (*)(unsigned short*);

std::mutex s_lock;
tarni_wstring s_libraryName;
// Kept loaded for the process: the installer keeps its mode in the library.
std::unique_ptr<DynamicLibrary> s_library;

const DynamicLibrary* LoadedLibrary()
{
    if (s_library == nullptr)
    {
        s_library = DynamicLibrary::TryOpen(s_libraryName.empty() ? SystemLibraryNames::OdbcInstallerLibrary()
                                                                  : s_libraryName);
    }
    return s_library.get();
}
}  // namespace

std::optional<unsigned short> OdbcInstaller::GetConfigMode()
{
    std::lock_guard<std::mutex> guard(s_lock);
    const DynamicLibrary* library = LoadedLibrary();
    if (library == nullptr)
    {
        return std::nullopt;
    }
    const auto getConfigMode = library->FindFunction<SQLGetConfigModeFunction>("SQLGetConfigMode");
    unsigned short mode = 0;
    if (getConfigMode == nullptr || getConfigMode(&mode) == 0)
    {
        return std::nullopt;
    }
    return mode;
}

void OdbcInstaller::SetLibraryName(tarni_wstring_view in_libraryName)
{
    std::lock_guard<std::mutex> guard(s_lock);
    s_libraryName = tarni_wstring(in_libraryName);
    s_library.reset();
}
}  // namespace Tarni::Platform
