#pragma once
// Platform seam: a shared library loaded by name at run time (dlopen on
// Linux, LoadLibraryW on Windows). The program links against no optional
// library; it loads what it needs here and resolves the functions it calls,
// so a missing library becomes a clear error at the point of use instead of a
// program that does not start.
#include <memory>

#include "core/TarniString.h"

namespace Tarni::Platform
{
class DynamicLibrary
{
public:
    /// Loads the library by name (the system's search rules apply to a bare
    /// name; a path is loaded as given). Returns null when it cannot be
    /// loaded; out_error then receives the system's reason.
    static std::unique_ptr<DynamicLibrary> TryOpen(tarni_wstring_view in_name, tarni_wstring* out_error = nullptr);

    ~DynamicLibrary();
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    /// The name the library was opened with.
    const tarni_wstring& GetName() const { return m_name; }

    /// Address of an exported symbol, or null when the library has none.
    void* FindSymbol(const char* in_symbol) const;

    /// Typed form of FindSymbol for a function pointer type.
    template <typename FunctionPointer>
    FunctionPointer FindFunction(const char* in_symbol) const
    {
        return reinterpret_cast<FunctionPointer>(FindSymbol(in_symbol));
    }

private:
    DynamicLibrary(tarni_wstring in_name, void* in_handle) : m_name(std::move(in_name)), m_handle(in_handle) {}

    tarni_wstring m_name;
    void* m_handle;
};
}  // namespace Tarni::Platform
