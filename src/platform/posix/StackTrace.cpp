#include "platform/StackTrace.h"

#include <execinfo.h>
#include <link.h>

#include <cstdio>
#include <cstdlib>

namespace Tarni::Platform
{
void StackTrace::ForEachFrame(int in_skip, LineSink in_sink, void* in_context)
{
    void* frames[64];
    const int count = backtrace(frames, 64);
    char** symbols = backtrace_symbols(frames, count);
    // Frame 0 is this function.
    for (int i = 1 + (in_skip > 0 ? in_skip : 0); i < count; ++i)
    {
        char line[512];
        std::snprintf(line, sizeof(line), "  #%-2d %p %s", i, frames[i],
                      symbols != nullptr ? symbols[i] : "");
        in_sink(in_context, line);
    }
    std::free(symbols);
}

namespace
{
struct ModuleVisit
{
    StackTrace::LineSink sink;
    void* context;
};

int VisitModule(dl_phdr_info* in_info, size_t, void* in_data)
{
    const auto* visit = static_cast<const ModuleVisit*>(in_data);
    char line[1024];
    const char* name = in_info->dlpi_name != nullptr && *in_info->dlpi_name != '\0'
                           ? in_info->dlpi_name
                           : "(main program)";
    std::snprintf(line, sizeof(line), "  0x%016llx %s",
                  static_cast<unsigned long long>(in_info->dlpi_addr), name);
    visit->sink(visit->context, line);
    return 0;
}
}  // namespace

void StackTrace::ForEachModule(LineSink in_sink, void* in_context)
{
    ModuleVisit visit{in_sink, in_context};
    dl_iterate_phdr(VisitModule, &visit);
}
}  // namespace Tarni::Platform
