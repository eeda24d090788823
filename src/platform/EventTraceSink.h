#pragma once
// The event tracing sink of the log: an event provider registered under the
// host's publisher identifier, receiving one event per log line. Available on
// Windows only; elsewhere IsSupported() is false and the log uses its file.
#include <cstdint>

namespace Tarni::Platform
{
/// A publisher identifier in the layout of a Windows GUID.
struct EventPublisherId
{
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::uint8_t data4[8] = {};
};

class EventTraceSink
{
public:
    static bool IsSupported();

    /// Registers the provider; returns the system's status (0 = success).
    static unsigned long Register(const EventPublisherId& in_publisher, std::uint64_t& out_handle);

    static unsigned long Unregister(std::uint64_t in_handle);

    /// Writes one event with the log level and the UTF-8 line as its payload.
    static unsigned long Write(std::uint64_t in_handle, int in_level, const char* in_text);
};
}  // namespace Tarni::Platform
