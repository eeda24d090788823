#include "platform/EventTraceSink.h"

#include <windows.h>
#include <evntprov.h>

#include <cstring>
#include <string>

namespace Tarni::Platform
{
bool EventTraceSink::IsSupported()
{
    return true;
}

unsigned long EventTraceSink::Register(const EventPublisherId& in_publisher, std::uint64_t& out_handle)
{
    GUID guid;
    guid.Data1 = in_publisher.data1;
    guid.Data2 = in_publisher.data2;
    guid.Data3 = in_publisher.data3;
    std::memcpy(guid.Data4, in_publisher.data4, sizeof(guid.Data4));
    REGHANDLE handle = 0;
    const ULONG status = EventRegister(&guid, nullptr, nullptr, &handle);
    out_handle = status == ERROR_SUCCESS ? handle : 0;
    return status;
}

unsigned long EventTraceSink::Unregister(std::uint64_t in_handle)
{
    return EventUnregister(static_cast<REGHANDLE>(in_handle));
}

unsigned long EventTraceSink::Write(std::uint64_t in_handle, int in_level, const char* in_text)
{
    // Event levels: 1 critical, 2 error, 3 warning, 4 information, 5 verbose.
    EVENT_DESCRIPTOR descriptor = {};
    descriptor.Level = static_cast<UCHAR>(in_level <= 1 ? 1 : in_level >= 5 ? 5 : in_level);

    // The payload is the line as a null-terminated UTF-16 string.
    const int units = MultiByteToWideChar(CP_UTF8, 0, in_text, -1, nullptr, 0);
    std::wstring text(units > 0 ? static_cast<size_t>(units) : 1, L'\0');
    if (units > 0)
    {
        MultiByteToWideChar(CP_UTF8, 0, in_text, -1, text.data(), units);
    }
    EVENT_DATA_DESCRIPTOR data;
    EventDataDescCreate(&data, text.c_str(), static_cast<ULONG>(text.size() * sizeof(wchar_t)));
    return EventWrite(static_cast<REGHANDLE>(in_handle), &descriptor, 1, &data);
}
}  // namespace Tarni::Platform
