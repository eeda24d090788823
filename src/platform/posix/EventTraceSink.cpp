#include "platform/EventTraceSink.h"

namespace Tarni::Platform
{
// There is no event tracing service here; the log falls back to its file.
namespace
{
constexpr unsigned long NOT_SUPPORTED = 50;
}

bool EventTraceSink::IsSupported()
{
    return false;
}

unsigned long EventTraceSink::Register(const EventPublisherId&, std::uint64_t& out_handle)
{
    out_handle = 0;
    return NOT_SUPPORTED;
}

unsigned long EventTraceSink::Unregister(std::uint64_t)
{
    return 0;
}

unsigned long EventTraceSink::Write(std::uint64_t, int, const char*)
{
    return NOT_SUPPORTED;
}
}  // namespace Tarni::Platform
