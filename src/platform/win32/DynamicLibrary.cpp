#include "platform/DynamicLibrary.h"

#include <windows.h>

#include "platform/SystemError.h"

namespace Tarni::Platform
{
std::unique_ptr<DynamicLibrary> DynamicLibrary::TryOpen(tarni_wstring_view in_name, tarni_wstring* out_error)
{
    const std::wstring name(in_name.begin(), in_name.end());
    // No error box for a missing library: the caller reports it.
    const UINT previousMode = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    HMODULE handle = LoadLibraryW(name.c_str());
    const int error = SystemError::LastErrorCode();
    SetErrorMode(previousMode);
    if (handle == nullptr)
    {
        if (out_error != nullptr)
        {
            *out_error = SystemError::Text(error);
        }
        return nullptr;
    }
    return std::unique_ptr<DynamicLibrary>(new DynamicLibrary(tarni_wstring(in_name), handle));
}

DynamicLibrary::~DynamicLibrary()
{
    FreeLibrary(static_cast<HMODULE>(m_handle));
}

void* DynamicLibrary::FindSymbol(const char* in_symbol) const
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(m_handle), in_symbol));
}
}  // namespace Tarni::Platform
