#include "platform/DynamicLibrary.h"

#include <dlfcn.h>

#include "platform/TextConversion.h"

namespace Tarni::Platform
{


std::unique_ptr<DynamicLibrary> DynamicLibrary::TryOpen(tarni_wstring_view in_name, tarni_wstring* out_error)
{
    const std::string name = TextConversion::Utf16ToUtf8(in_name);
    // RTLD_LOCAL keeps the library's symbols out of the global namespace, so
    // loading it cannot change what other libraries of the process resolve.
    void* handle = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
    {
        if (out_error != nullptr)
        {
            const char* reason = dlerror();
            *out_error = TextConversion::StrictUtf8ToUtf16(reason != nullptr && TextConversion::IsValidUtf8(reason)
                                                       ? reason
                                                       : "the library could not be loaded");
        }
        return nullptr;
    }
    return std::unique_ptr<DynamicLibrary>(new DynamicLibrary(tarni_wstring(in_name), handle));
}

DynamicLibrary::~DynamicLibrary()
{
    dlclose(m_handle);
}

void* DynamicLibrary::FindSymbol(const char* in_symbol) const
{
    return dlsym(m_handle, in_symbol);
}
}  // namespace Tarni::Platform
