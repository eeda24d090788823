#pragma once
// The HTTP status emulations of a connection, one per API call name, or a
// single one for every call under "ALL".
#include <map>
#include <string>
#include <string_view>

#include "core/ILogger.h"
#include "thrift/TEHttpApiRetryEmulationTestSetting.h"

namespace Tarni::ThriftExtension
{
class TEHttpApiRetryEmulationTestSettings
{
public:
    /// Adds the emulation of one call. The name is "ALL" or a TCLIService
    /// call name (any ASCII case). Throws TEException "TETestError" for an
    /// unknown name, a second setting for the same call, or "ALL" together
    /// with any other setting.
    void AddEmulationSetting(std::string_view in_apiName, const TEHttpApiRetryEmulationTestSetting& in_setting,
                             Support::ILogger* in_log);

    /// The emulation that applies to a call: its own, else the one for
    /// "ALL", else none.
    TEHttpApiRetryEmulationTestSetting* GetEmulationSetting(std::string_view in_apiName);

    bool IsEmpty() const { return m_settings.empty(); }
    std::size_t Size() const { return m_settings.size(); }
    const std::map<std::string, TEHttpApiRetryEmulationTestSetting>& GetSettings() const { return m_settings; }

private:
    std::map<std::string, TEHttpApiRetryEmulationTestSetting> m_settings;
};
}  // namespace Tarni::ThriftExtension
