#include "platform/InitializePlatform.h"

#include <objbase.h>

#include <mutex>

namespace Tarni::Platform
{
namespace
{
std::mutex s_lock;
unsigned s_depth = 0;
bool s_comInitialized = false;
}  // namespace

void InitializePlatform(unsigned, unsigned in_apartmentModel)
{
    std::lock_guard<std::mutex> guard(s_lock);
    if (s_depth++ != 0)
    {
        return;
    }
    // S_OK and S_FALSE both take a reference that CoUninitialize returns; a
    // thread already in another apartment (RPC_E_CHANGED_MODE) keeps it.
    const HRESULT result = CoInitializeEx(nullptr, static_cast<DWORD>(in_apartmentModel));
    s_comInitialized = SUCCEEDED(result);
}

void UninitializePlatform() noexcept
{
    std::lock_guard<std::mutex> guard(s_lock);
    if (s_depth == 0 || --s_depth != 0)
    {
        return;
    }
    if (s_comInitialized)
    {
        CoUninitialize();
        s_comInitialized = false;
    }
}
}  // namespace Tarni::Platform
