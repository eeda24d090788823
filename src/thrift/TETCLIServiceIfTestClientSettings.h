#pragma once
// Settings of the test client, with which a test configuration makes one
// chosen Thrift call fail with an emulated SSL error: the first
// m_numThriftApiCallsToSkipBeforeSslErrorEmulation calls of that name go
// through, every later one fails. With
// m_isDisableSslErrorEmulationAtDestruction the emulation ends when the
// client is destroyed, so a client recreated for a retry succeeds.
#include <cstdint>
#include <string>
#include <string_view>

#include "core/ILogger.h"

namespace Tarni::ThriftExtension
{
class TETCLIServiceIfTestClientSettings
{
public:
    /// Writes every field, one line each, at DEBUG level.
    void LogSettings(Support::ILogger* in_log) const;

    /// Called by the test client before each call; true when this call must
    /// fail with an emulated SSL error.
    bool ShouldEmulateSslError(std::string_view in_apiName, Support::ILogger* in_log);

    /// Called when the test client is destroyed.
    void OnClientDestruction(Support::ILogger* in_log);

    /// The name of the Thrift call to fail (a TCLIService call name).
    std::string m_thriftApiForSslErrorEmulation;
    std::uint32_t m_numThriftApiCallsToSkipBeforeSslErrorEmulation = 0;
    bool m_isEnableSslErrorEmulation = false;
    bool m_isDisableSslErrorEmulationAtDestruction = false;
    /// Set once calls of the chosen name are being failed.
    bool m_isEmulateSslError = false;

private:
    std::uint32_t m_numCallsSkipped = 0;
};
}  // namespace Tarni::ThriftExtension
