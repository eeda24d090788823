#pragma once
// A logger that writes its lines as events to Event Tracing for Windows,
// under the publisher identifier the host registers for the process before
// logging starts. The provider is registered with the first ETWLogger and
// unregistered with the last.
#include <cstdint>
#include <optional>

#include "platform/EventTraceSink.h"
#include "support/log/DSILogger.h"

namespace Tarni::Support
{
class ETWLogger : public DSILogger
{
public:
    explicit ETWLogger(LogLevel in_level);
    ~ETWLogger() override;

    /// The process's event publisher (set by the host; nothing clears it).
    static void SetPublisherId(const std::optional<Platform::EventPublisherId>& in_publisher);
    /// True when a publisher is registered and this platform has event tracing.
    static bool IsAvailable();

protected:
    void WriteLine(LogLevel in_level, const std::string& in_line) override;
    bool UsesMilliseconds() const override { return false; }
};
}  // namespace Tarni::Support
