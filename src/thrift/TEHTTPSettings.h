#pragma once
// The HTTP group of the Thrift connection settings: which calls are retried
// on which statuses, how often and how long apart, when the HTTP connection
// is reset, and the switches of the HTTP client's reply handling.
#include <cstdint>
#include <string>
#include <vector>

#include "core/ILogger.h"
#include "thrift/TEHttpStatusRanges.h"

namespace Tarni::ThriftExtension
{
class TEHTTPSettings
{
public:
    TEHTTPSettings();

    /// Writes every field, one line each, at DEBUG level.
    void LogSettings(Support::ILogger* in_log) const;

    /// The ranges in configuration syntax: "400+402+404-406".
    static std::string FormatStatusRanges(const TEHttpStatusRanges& in_ranges);

    /// Default: every TCLIService call.
    std::vector<std::string> m_retriableHttpApiNames;
    /// Default: 400, 402, 404-406, 408-599 ("400+402+404-406+408-599").
    TEHttpStatusRanges m_retriableHttpStatusCodes;
    std::uint64_t m_maxNumHttpApiRtries = 5;
    /// Seconds between two attempts.
    std::int64_t m_httpApiRetryInterval = 1;
    std::uint64_t m_httpEmulatedApiIdleTime = 0;
    /// Requests sent since the last reset of the HTTP connection (run-time state).
    std::uint64_t m_httpRequestCount = 0;
    std::uint64_t m_numHttpReqsToTriggerHttpCxnReset = 1000;
    /// Seconds.
    std::uint64_t m_resetHttpConnectionInterval = 3600;
    bool m_processAuthTokenErr = true;
    bool m_processRetryAfter = true;
    bool m_processThriftErrorMsg = true;
    bool m_enableSessionTag = false;
    bool m_resetCxnWhenRetryOrException = false;
    bool m_enableHttpApiRetryEmulationTest = false;
    bool m_enableHttpApiRetry = true;
    bool m_enableHttpApiIdleEmulationTest = false;
    bool m_enableResetHttpConnectionWithApiInterval = false;
    bool m_enableHttpConnectionResetWithHttpReqCount = false;
    bool m_isEnableRecreateThriftClientBeforeRetry = false;
};
}  // namespace Tarni::ThriftExtension
