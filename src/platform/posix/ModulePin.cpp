#include "platform/ModulePin.h"

#include <dlfcn.h>

namespace Tarni::Platform
{
bool ModulePin::PinModuleOf(const void* in_address)
{
    Dl_info info{};
    if (::dladdr(in_address, &info) == 0 || info.dli_fname == nullptr)
    {
        return false;
    }
    // RTLD_NOLOAD finds the module that is loaded already (it never loads a
    // second copy); RTLD_NODELETE marks it so that no dlclose unloads it. The
    // reference this takes is never released, on purpose. For the program
    // itself dladdr names the executable, which is never unloaded anyway.
    return ::dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE) != nullptr;
}
}  // namespace Tarni::Platform
