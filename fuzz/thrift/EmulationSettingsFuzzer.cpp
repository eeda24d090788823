// ParseHttpStatusEmulationSettings on arbitrary text; a value that parses is
// then applied to a few responses, as the HTTP client would.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "FormattingLogger.h"
#include "core/ErrorException.h"
#include "thrift/TEConnectionUtils.h"

using namespace Tarni;
using namespace Tarni::ThriftExtension;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* in_data, std::size_t in_size)
{
    Fuzzing::FormattingLogger log;
    const std::string text(reinterpret_cast<const char*>(in_data), in_size);
    TEHttpApiRetryEmulationTestSettings settings;
    try
    {
        TEConnectionUtils::ParseHttpStatusEmulationSettings(text, settings, &log);
    }
    catch (const Support::ErrorException&)
    {
        return 0;
    }
    if (settings.IsEmpty())
    {
        std::abort();
    }
    for (const auto& [name, setting] : settings.GetSettings())
    {
        TEHttpApiRetryEmulationTestSetting* applied = settings.GetEmulationSetting(name);
        TEEmulatedHttpResponse response;
        for (int i = 0; i < 4; ++i)
        {
            applied->ApplyEmulationSettings(response);
            if (response.m_isEmulated && response.m_statusLine.rfind("HTTP/1.1 ", 0) != 0)
            {
                std::abort();
            }
        }
    }
    return 0;
}
