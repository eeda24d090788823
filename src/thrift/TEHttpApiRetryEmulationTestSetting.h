#pragma once
// The HTTP status emulation of one API call (or of every call, "ALL"): the
// next m_numEmulation responses of the call get the configured statuses in
// turn; the response after them is real and starts the cycle again.
#include <cstdint>
#include <vector>

#include "core/ILogger.h"
#include "thrift/TEEmulatedHttpResponse.h"
#include "thrift/TEHttpStatusRanges.h"

namespace Tarni::ThriftExtension
{
class TEHttpApiRetryEmulationTestSetting
{
public:
    /// Most status codes one setting may expand to.
    static constexpr std::size_t MAX_STATUS_CODES = 65536;

    /// The ranges are expanded into the list of statuses, in order. Throws
    /// TEException "TETestError" for an empty list or one longer than
    /// MAX_STATUS_CODES.
    TEHttpApiRetryEmulationTestSetting(const TEHttpStatusRanges& in_statusRanges, std::uint32_t in_numEmulation,
                                       bool in_sendToServer, Support::ILogger* in_log);

    /// The status at the cursor; the cursor then moves on, from the last
    /// status back to the first.
    std::uint16_t GetNextHttpStatus();

    /// Emulates the next status on the response while emulations remain;
    /// otherwise leaves it real and restarts the count.
    void ApplyEmulationSettings(TEEmulatedHttpResponse& io_response);

    const std::vector<std::uint16_t>& GetHttpStatusCodes() const { return m_httpStatusCodes; }
    std::uint32_t GetNumEmulation() const { return m_numEmulation; }
    std::uint32_t GetNumEmulationRemaining() const { return m_numEmulationRemaining; }
    bool IsSendToServer() const { return m_sendToServer; }

private:
    std::vector<std::uint16_t> m_httpStatusCodes;
    std::size_t m_cursor = 0;
    std::uint32_t m_numEmulation;
    std::uint32_t m_numEmulationRemaining;
    bool m_sendToServer;
    Support::ILogger* m_log;
};
}  // namespace Tarni::ThriftExtension
