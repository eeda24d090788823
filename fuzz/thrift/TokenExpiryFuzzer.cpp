// GetTokenExpiry on arbitrary text, and on arbitrary bytes encoded as a
// token's payload (so that the JSON reader sees them): a number or one of
// the documented diagnostics, nothing else.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "driversupport/DSBase64.h"
#include "FormattingLogger.h"
#include "core/ErrorException.h"
#include "thrift/TEUtils.h"

using namespace Tarni;

namespace
{
void Check(const std::string& in_token, Support::ILogger* in_log)
{
    try
    {
        ThriftExtension::TEUtils::GetTokenExpiry(in_token, in_log);
    }
    catch (const Support::ErrorException& e)
    {
        const tarni_wstring& key = e.GetMessageKey();
        if (key != u"JSONParseError" && key != u"DSInvalidBase64EncodedStringLenError" &&
            key != u"DSInvalidBase64EncodedStringCharError")
        {
            std::abort();
        }
    }
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* in_data, std::size_t in_size)
{
    Fuzzing::FormattingLogger log;
    const std::string bytes(reinterpret_cast<const char*>(in_data), in_size);
    Check(bytes, &log);
    Check("h." + DriverSupport::DSBase64::Encode(bytes) + ".s", &log);
    return 0;
}
