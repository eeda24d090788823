#include "thrift/TEHTTPSettings.h"

#include "thrift/TEApiCallNames.h"

namespace Tarni::ThriftExtension
{
namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEHTTPSettings";

const char* BoolText(bool in_value)
{
    return in_value ? "true" : "false";
}
}  // namespace

TEHTTPSettings::TEHTTPSettings()
    : m_retriableHttpApiNames(TEApiCallNames::GetAll()),
      m_retriableHttpStatusCodes({{400, 400}, {402, 402}, {404, 406}, {408, 599}})
{
}

std::string TEHTTPSettings::FormatStatusRanges(const TEHttpStatusRanges& in_ranges)
{
    std::string text;
    for (const auto& [first, last] : in_ranges)
    {
        if (!text.empty())
        {
            text += '+';
        }
        text += std::to_string(first);
        if (last != first)
        {
            text += '-' + std::to_string(last);
        }
    }
    return text;
}

void TEHTTPSettings::LogSettings(Support::ILogger* in_log) const
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "LogSettings");
    if (in_log == nullptr || !in_log->IsEnabled(Support::LOG_DEBUG))
    {
        return;
    }
    const char* const FN = "LogSettings";
    in_log->LogDebug(NS, CLS, FN, "m_retriableHttpApiNames: %s", TEApiCallNames::Join(m_retriableHttpApiNames).c_str());
    in_log->LogDebug(NS, CLS, FN, "m_retriableHttpStatusCodes: %s", FormatStatusRanges(m_retriableHttpStatusCodes).c_str());
    // These formats put "ll" after the conversion, so a line shows the value
    // as a 32-bit number followed by the letters "ll"; the lines keep that
    // form. The value is passed at the width the conversion expects, so the
    // output is well defined and the same on every platform.
    in_log->LogDebug(NS, CLS, FN, "m_maxNumHttpApiRtries: %ull", static_cast<unsigned>(m_maxNumHttpApiRtries));
    in_log->LogDebug(NS, CLS, FN, "m_httpApiRetryInterval: %ill", static_cast<int>(m_httpApiRetryInterval));
    in_log->LogDebug(NS, CLS, FN, "m_httpEmulatedApiIdleTime: %ull", static_cast<unsigned>(m_httpEmulatedApiIdleTime));
    in_log->LogDebug(NS, CLS, FN, "m_httpRequestCount: %ull", static_cast<unsigned>(m_httpRequestCount));
    in_log->LogDebug(NS, CLS, FN, "m_numHttpReqsToTriggerHttpCxnReset: %ull",
                     static_cast<unsigned>(m_numHttpReqsToTriggerHttpCxnReset));
    in_log->LogDebug(NS, CLS, FN, "m_resetHttpConnectionInterval: %ull",
                     static_cast<unsigned>(m_resetHttpConnectionInterval));
    in_log->LogDebug(NS, CLS, FN, "m_processAuthTokenErr: %s", BoolText(m_processAuthTokenErr));
    in_log->LogDebug(NS, CLS, FN, "m_processRetryAfter: %s", BoolText(m_processRetryAfter));
    in_log->LogDebug(NS, CLS, FN, "m_processThriftErrorMsg: %s", BoolText(m_processThriftErrorMsg));
    in_log->LogDebug(NS, CLS, FN, "m_enableSessionTag: %s", BoolText(m_enableSessionTag));
    in_log->LogDebug(NS, CLS, FN, "m_resetCxnWhenRetryOrException: %s", BoolText(m_resetCxnWhenRetryOrException));
    in_log->LogDebug(NS, CLS, FN, "m_enableHttpApiRetryEmulationTest: %s", BoolText(m_enableHttpApiRetryEmulationTest));
    in_log->LogDebug(NS, CLS, FN, "m_enableHttpApiRetry: %s", BoolText(m_enableHttpApiRetry));
    in_log->LogDebug(NS, CLS, FN, "m_enableHttpApiIdleEmulationTest: %s", BoolText(m_enableHttpApiIdleEmulationTest));
    in_log->LogDebug(NS, CLS, FN, "m_enableResetHttpConnectionWithApiInterval: %s",
                     BoolText(m_enableResetHttpConnectionWithApiInterval));
    in_log->LogDebug(NS, CLS, FN, "m_enableHttpConnectionResetWithHttpReqCount: %s",
                     BoolText(m_enableHttpConnectionResetWithHttpReqCount));
    in_log->LogDebug(NS, CLS, FN, "m_isEnableRecreateThriftClientBeforeRetry: %s",
                     BoolText(m_isEnableRecreateThriftClientBeforeRetry));
}
}  // namespace Tarni::ThriftExtension
