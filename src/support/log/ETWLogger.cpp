#include "support/log/ETWLogger.h"

#include <cstdio>
#include <mutex>

namespace Tarni::Support
{
namespace
{
std::mutex s_lock;
std::optional<Platform::EventPublisherId> s_publisher;
int s_instances = 0;
std::uint64_t g_publisherHandle = 0;
}  // namespace

void ETWLogger::SetPublisherId(const std::optional<Platform::EventPublisherId>& in_publisher)
{
    std::lock_guard<std::mutex> guard(s_lock);
    s_publisher = in_publisher;
}

bool ETWLogger::IsAvailable()
{
    std::lock_guard<std::mutex> guard(s_lock);
    return s_publisher.has_value() && Platform::EventTraceSink::IsSupported();
}

ETWLogger::ETWLogger(LogLevel in_level) : DSILogger(in_level, "ETW")
{
    std::lock_guard<std::mutex> guard(s_lock);
    if (s_instances++ == 0 && s_publisher)
    {
        const unsigned long status = Platform::EventTraceSink::Register(*s_publisher, g_publisherHandle);
        if (status != 0)
        {
            std::fprintf(stderr,
                         "ERROR: EventRegister(&in_publisherGuid, NULL, NULL, &g_publisherHandle) Failed with "
                         "Status code = %d\n",
                         static_cast<int>(status));
        }
    }
}

ETWLogger::~ETWLogger()
{
    std::lock_guard<std::mutex> guard(s_lock);
    if (--s_instances == 0 && g_publisherHandle != 0)
    {
        const unsigned long status = Platform::EventTraceSink::Unregister(g_publisherHandle);
        if (status != 0)
        {
            std::fprintf(stderr, "ERROR: EventUnregister(g_publisherHandle) Failed with Status code = %d\n",
                         static_cast<int>(status));
        }
        g_publisherHandle = 0;
    }
}

void ETWLogger::WriteLine(LogLevel in_level, const std::string& in_line)
{
    if (g_publisherHandle != 0)
    {
        Platform::EventTraceSink::Write(g_publisherHandle, in_level, in_line.c_str());
    }
}
}  // namespace Tarni::Support
