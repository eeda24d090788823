#include "thrift/TETCLIServiceIfTestClientSettings.h"

#include "thrift/TEApiCallNames.h"

namespace Tarni::ThriftExtension
{
namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TETCLIServiceIfTestClientSettings";

const char* BoolText(bool in_value)
{
    return in_value ? "true" : "false";
}
}  // namespace

void TETCLIServiceIfTestClientSettings::LogSettings(Support::ILogger* in_log) const
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "LogSettings");
    if (in_log == nullptr)
    {
        return;
    }
    const char* const FN = "LogSettings";
    in_log->LogDebug(NS, CLS, FN, "m_thriftApiForSslErrorEmulation: %s", m_thriftApiForSslErrorEmulation.c_str());
    in_log->LogDebug(NS, CLS, FN, "m_numThriftApiCallsToSkipBeforeSslErrorEmulation: %d",
                     static_cast<int>(m_numThriftApiCallsToSkipBeforeSslErrorEmulation));
    in_log->LogDebug(NS, CLS, FN, "m_isEnableSslErrorEmulation: %s", BoolText(m_isEnableSslErrorEmulation));
    in_log->LogDebug(NS, CLS, FN, "m_isDisableSslErrorEmulationAtDestruction: %s",
                     BoolText(m_isDisableSslErrorEmulationAtDestruction));
    in_log->LogDebug(NS, CLS, FN, "m_isEmulateSslError: %s", BoolText(m_isEmulateSslError));
}

bool TETCLIServiceIfTestClientSettings::ShouldEmulateSslError(std::string_view in_apiName, Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ShouldEmulateSslError");
    if (!m_isEnableSslErrorEmulation)
    {
        return false;
    }
    const auto configured = TEApiCallNames::Canonicalize(m_thriftApiForSslErrorEmulation);
    if (!configured || TEApiCallNames::Canonicalize(in_apiName) != configured)
    {
        return false;
    }
    if (m_numCallsSkipped < m_numThriftApiCallsToSkipBeforeSslErrorEmulation)
    {
        ++m_numCallsSkipped;
        return false;
    }
    m_isEmulateSslError = true;
    if (in_log != nullptr)
    {
        in_log->LogDebug(NS, CLS, "ShouldEmulateSslError", "Emulating an SSL error for the API call %s.",
                         configured->c_str());
    }
    return true;
}

void TETCLIServiceIfTestClientSettings::OnClientDestruction(Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "OnClientDestruction");
    if (m_isDisableSslErrorEmulationAtDestruction)
    {
        m_isEnableSslErrorEmulation = false;
        m_isEmulateSslError = false;
    }
}
}  // namespace Tarni::ThriftExtension
