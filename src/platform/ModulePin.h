#pragma once
// Platform seam: keeps a loaded module (the program, or a shared library such
// as the setup library inside the ODBC administrator) in memory until the
// process ends, even when its owner unloads it. A thread that is left running
// in a module's code (a wait that was given up on) needs this: unloading the
// module under it would make it run unmapped code.
namespace Tarni::Platform
{
class ModulePin
{
public:
    /// Pins the module that holds in_address (the address of a function in
    /// it). False when the system does not know such a module; pinning twice
    /// is harmless.
    static bool PinModuleOf(const void* in_address);
};
}  // namespace Tarni::Platform
