#include "platform/StackTrace.h"

#include <windows.h>
#include <tlhelp32.h>

#include <cstdio>

namespace Tarni::Platform
{
namespace
{
void ModuleNameOf(const void* in_address, char* out_name, DWORD in_size, ULONG_PTR& out_base)
{
    HMODULE module = nullptr;
    out_name[0] = '\0';
    out_base = 0;
    if (GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<LPCSTR>(in_address), &module) != FALSE)
    {
        out_base = reinterpret_cast<ULONG_PTR>(module);
        if (GetModuleFileNameA(module, out_name, in_size) == 0)
        {
            out_name[0] = '\0';
        }
    }
}
}  // namespace

void StackTrace::ForEachFrame(int in_skip, LineSink in_sink, void* in_context)
{
    void* frames[62];
    const USHORT count =
        CaptureStackBackTrace(static_cast<DWORD>(1 + (in_skip > 0 ? in_skip : 0)), 62, frames, nullptr);
    for (USHORT i = 0; i < count; ++i)
    {
        char module[MAX_PATH];
        ULONG_PTR base = 0;
        ModuleNameOf(frames[i], module, MAX_PATH, base);
        char line[512];
        std::snprintf(line, sizeof(line), "  #%-2u %p %s+0x%llx", static_cast<unsigned>(i), frames[i],
                      module[0] != '\0' ? module : "?",
                      static_cast<unsigned long long>(reinterpret_cast<ULONG_PTR>(frames[i]) - base));
        in_sink(in_context, line);
    }
}

void StackTrace::ForEachModule(LineSink in_sink, void* in_context)
{
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, 0);
    if (snapshot == INVALID_HANDLE_VALUE)
    {
        return;
    }
    MODULEENTRY32 entry = {};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Module32First(snapshot, &entry); more != FALSE; more = Module32Next(snapshot, &entry))
    {
        char path[MAX_PATH * 3] = {};
        WideCharToMultiByte(CP_UTF8, 0, entry.szExePath, -1, path, sizeof(path), nullptr, nullptr);
        char line[sizeof(path) + 32];
        std::snprintf(line, sizeof(line), "  0x%016llx %s",
                      static_cast<unsigned long long>(reinterpret_cast<ULONG_PTR>(entry.modBaseAddr)), path);
        in_sink(in_context, line);
    }
    CloseHandle(snapshot);
}
}  // namespace Tarni::Platform
