#include "platform/ModulePin.h"

#include <windows.h>

namespace Tarni::Platform
{
bool ModulePin::PinModuleOf(const void* in_address)
{
    // GET_MODULE_HANDLE_EX_FLAG_PIN keeps the module loaded until the process
    // ends, whatever FreeLibrary calls follow.
    HMODULE module = nullptr;
    return ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                                static_cast<LPCWSTR>(in_address), &module) != FALSE;
}
}  // namespace Tarni::Platform
