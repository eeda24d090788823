#include "platform/PlatformInitialization.h"

#include <objbase.h>

namespace Tarni::Platform
{
namespace
{
// Whether this thread's initialisation succeeded and must be undone.
thread_local bool t_initialized = false;
}  // namespace

bool PlatformInitialization::InitializePlatform(unsigned in_reserved, unsigned in_apartment)
{
    // S_FALSE: already initialised on this thread, which must be undone as well.
    const HRESULT result =
        ::CoInitializeEx(reinterpret_cast<LPVOID>(static_cast<ULONG_PTR>(in_reserved)), static_cast<DWORD>(in_apartment));
    t_initialized = SUCCEEDED(result);
    return t_initialized;
}

void PlatformInitialization::UninitializePlatform()
{
    if (t_initialized)
    {
        ::CoUninitialize();
        t_initialized = false;
    }
}
}  // namespace Tarni::Platform
